#include "platform/appkit/BoundText.h"
#include "platform/appkit/VisibleText.h"
#include "platform/foundation/Format.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSNumber.h"
#include <QVariant>

namespace mac {

BoundText::BoundText(QLabel* label, KeyPathScope const& scope) : m_label(label) {
    label->setTextFormat(Qt::PlainText);
    for (QString const& keyPath : label->property("displayKeyPaths").toStringList())
        m_values.push_back(std::make_unique<BoundValue>(scope, keyPath, [this] { follow(); }));
    follow();
}

NSString BoundText::pattern(id const& first) const {
    auto const text = [&](char const* name) { return stringOf(m_label->property(name).toString()); };
    auto const has = [&](char const* name) { return m_label->property(name).isValid(); };
    NSNumber const number = as<NSNumber>(first);
    if (number != nil && number.longLongValue() == 0 && has("displayPatternForZero"))
        return text("displayPatternForZero");
    bool const counts = number != nil && number.longLongValue() >= 0 && has("displayPatternForOne");
    if (!counts) return text("displayPattern");
    auto const count = static_cast<NSUInteger>(number.longLongValue());
    return localizedCount(count, text("displayPatternForOne"), text("displayPattern"), nil);
}

void BoundText::follow() {
    if (!m_label) return;
    std::vector<FormatArgument> arguments;
    for (auto const& value : m_values)
        arguments.emplace_back(value->value());
    id const first = m_values.empty() ? id() : m_values.front()->value();
    m_label->setText(visibleText(formatString(pattern(first), arguments)));
}

} // namespace mac
