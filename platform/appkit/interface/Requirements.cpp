#include "platform/appkit/interface/Requirements.h"
#include "platform/appkit/interface/VisibleText.h"
#include "platform/foundation/text/Format.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include <algorithm>

namespace mac {

Requirements::Requirements(QObject* owner, NSControl const& control, KeyPathScope const& scope)
    : m_action(qobject_cast<QAction*>(owner)), m_widget(qobject_cast<QWidget*>(owner)), m_control(control),
      m_toolTip(owner->property("toolTip").toString()) {
    for (QString const& line : owner->property("enabledWhen").toStringList()) {
        bool const isNegated = line.startsWith('!');
        QString const keyPath = line.section('=', 0, 0).trimmed().sliced(isNegated ? 1 : 0);
        m_requirements.push_back({std::make_unique<BoundValue>(scope, keyPath, [this] { follow(); }), isNegated,
                                  NSLocalizedString(stringOf(line.section('=', 1).trimmed()), nil)});
    }
    follow();
}

void Requirements::follow() {
    auto const missing = std::ranges::find_if(m_requirements, [](Requirement const& requirement) {
        return isTruth(requirement.value->value()) == requirement.isNegated;
    });
    bool const isMet = missing == m_requirements.end();
    m_control.setEnabled_(BOOL(isMet));
    if (isMet) return tell({});
    std::vector<FormatArgument> const arguments{missing->value->value()};
    tell(visibleText(formatString(missing->reason, arguments)));
}

void Requirements::tell(QString const& reason) const {
    QString const toolTip = reason.isEmpty() ? m_toolTip : plainToolTip(m_toolTip + "\n" + reason);
    if (m_widget) {
        m_widget->setToolTip(toolTip);
        m_widget->setAccessibleDescription(reason);
    }
    if (!m_action) return;
    m_action->setToolTip(toolTip);
    for (QObject* const object : m_action->associatedObjects()) {
        auto* const button = qobject_cast<QWidget*>(object);
        if (button && button->inherits("QToolButton")) button->setAccessibleDescription(reason);
    }
}

} // namespace mac
