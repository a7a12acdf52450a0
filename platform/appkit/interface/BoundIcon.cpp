#include "platform/appkit/interface/BoundIcon.h"
#include <QVariant>
#include <algorithm>

namespace mac {

BoundIcon::BoundIcon(QLabel* label, KeyPathScope const& scope) : m_label(label) {
    QString const keyPath = label->property("iconKeyPath").toString();
    m_path = std::make_unique<BoundValue>(scope, keyPath, [this] { follow(); });
    follow();
}

void BoundIcon::follow() {
    if (!m_label) return;
    constexpr int usualSize = 64;
    constexpr int largestSize = 512;
    QVariant const given = m_label->property("iconSize");
    int const size = given.isValid() ? std::clamp(given.toInt(), 1, largestSize) : usualSize;
    NSString const path = as<NSString>(m_path->value());
    QIcon const icon = path == nil ? QIcon() : m_icons.iconOfBundle(path);
    m_label->setPixmap(icon.pixmap(QSize(size, size), m_label->devicePixelRatioF()));
}

} // namespace mac
