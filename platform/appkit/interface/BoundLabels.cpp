#include "platform/appkit/interface/BoundLabels.h"
#include "platform/appkit/interface/VisibleText.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/text/Format.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include <QAbstractButton>
#include <QLabel>
#include <QVariant>
#include <algorithm>

namespace mac {

namespace {

void showText(QWidget& widget, QString text) {
    if (auto* const label = qobject_cast<QLabel*>(&widget)) return label->setText(text);
    auto* const button = qobject_cast<QAbstractButton*>(&widget);
    if (!button) return;
    // A button takes a single one for the mark of its mnemonic.
    text.replace("&", "&&");
    // A label goes by the letters of its text; a button from right to left would show "2 folders" as "folders 2".
    constexpr QChar leftToRightMark(0x200E);
    bool const isAgainstButton = button->isRightToLeft() && !text.isEmpty() && !text.isRightToLeft();
    button->setText(isAgainstButton ? leftToRightMark + text : text);
}

} // namespace

BoundText::BoundText(QWidget* widget, KeyPathScope const& scope) : m_widget(widget) {
    if (auto* const label = qobject_cast<QLabel*>(widget)) label->setTextFormat(Qt::PlainText);
    for (QString const& keyPath : widget->property("displayKeyPaths").toStringList())
        m_values.push_back(std::make_unique<BoundValue>(scope, keyPath, [this] { follow(); }));
    follow();
}

NSString BoundText::pattern(id const& first) const {
    auto const text = [&](char const* name) { return stringOf(m_widget->property(name).toString()); };
    auto const has = [&](char const* name) { return m_widget->property(name).isValid(); };
    NSNumber const number = as<NSNumber>(first);
    if (number != nil && number.longLongValue() == 0 && has("displayPatternForZero"))
        return text("displayPatternForZero");
    bool const counts = number != nil && number.longLongValue() >= 0 && has("displayPatternForOne");
    if (!counts) return text("displayPattern");
    auto const count = static_cast<NSUInteger>(number.longLongValue());
    return localizedCount(count, text("displayPatternForOne"), text("displayPattern"), nil);
}

void BoundText::follow() {
    if (!m_widget) return;
    std::vector<FormatArgument> arguments;
    for (auto const& value : m_values)
        arguments.emplace_back(value->value());
    id const first = m_values.empty() ? id() : m_values.front()->value();
    showText(*m_widget, visibleText(formatString(pattern(first), arguments)));
}

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
