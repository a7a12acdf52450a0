#pragma once

#include "platform/appkit/interface/KeyPathScope.h"
#include "platform/appkit/views/NSControl.h"
#include <QAction>
#include <QPointer>
#include <QWidget>

namespace mac {

// Enables a button, or an action with all its buttons, while every requirement holds. The first one that does not is
// told in the tool tip and, for assistive technology, as the description. Dynamic property enabledWhen: a list of
// "KEYPATH=REASON"; "!" before the key path negates it, "KEYPATH|TRANSFORMER" takes what the value transformer makes of
// the value, and %@ in the reason, which is translated, stands for that. Nothing in this class keeps an action from
// being sent.
class Requirements {
public:
    // The tool tip that the owner has by then stands above the reason.
    Requirements(QObject* owner, NSControl const& control, KeyPathScope const& scope);

private:
    struct Requirement {
        std::unique_ptr<BoundValue> value;
        bool isNegated;
        NSString reason;
    };

    void follow();
    void tell(QString const& reason) const;

    QPointer<QAction> m_action;
    QPointer<QWidget> m_widget;
    NSControl m_control;
    QString m_toolTip;
    std::vector<Requirement> m_requirements;
};

} // namespace mac
