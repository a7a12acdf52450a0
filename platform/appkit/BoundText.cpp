#include "platform/appkit/BoundText.h"
#include "platform/appkit/VisibleText.h"
#include "platform/foundation/Format.h"
#include "platform/foundation/NSNumber.h"
#include <QVariant>

namespace mac {

BoundText::BoundText(QLabel* label, KeyPathScope const& scope) : m_label(label) {
    label->setTextFormat(Qt::PlainText);
    for (QString const& keyPath : label->property("displayKeyPaths").toStringList())
        m_values.push_back(std::make_unique<BoundValue>(scope, keyPath, [this] { follow(); }));
    follow();
}

QString BoundText::pattern(id const& first) const {
    NSNumber const number = as<NSNumber>(first);
    QVariant special;
    if (number != nil && number.longLongValue() == 0) special = m_label->property("displayPatternForZero");
    if (number != nil && number.longLongValue() == 1) special = m_label->property("displayPatternForOne");
    return special.isValid() ? special.toString() : m_label->property("displayPattern").toString();
}

void BoundText::follow() {
    if (!m_label) return;
    std::vector<FormatArgument> arguments;
    for (auto const& value : m_values)
        arguments.emplace_back(value->value());
    id const first = m_values.empty() ? id() : m_values.front()->value();
    m_label->setText(visibleText(formatString(stringOf(pattern(first)), arguments)));
}

} // namespace mac
