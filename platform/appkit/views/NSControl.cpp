#include "platform/appkit/views/ViewBody.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

ClassDescription NSControl::describeClass() {
    using Self = NSControl;
    return {
        .name = "NSControl",
        .superclass = classOf<NSView>(),
        .methods =
            {
                method<&Self::target>("target"),
                method<&Self::setTarget_>("setTarget:"),
                method<&Self::isEnabled>("isEnabled"),
                method<&Self::setEnabled_>("setEnabled:"),
            },
        .properties =
            {
                property<&Self::target, &Self::setTarget_>("target"),
                property<&Self::isEnabled, &Self::setEnabled_>("enabled"),
            },
    };
}

id NSControl::target() const { return *this == nil ? id() : bodyOf(*this)->target.load(); }

void NSControl::setTarget_(id const& target) const {
    if (*this != nil) bodyOf(*this)->target = target;
}

SEL NSControl::action() const { return *this == nil ? SEL() : bodyOf(*this)->action; }

void NSControl::setAction_(SEL action) const {
    if (*this != nil) bodyOf(*this)->action = action;
}

bool NSControl::isEnabled() const {
    if (*this == nil) return false;
    if (QAction const* const shared = bodyOf(*this)->sharedAction()) return shared->isEnabled();
    QWidget const* const widget = bodyOf(*this)->widget();
    return widget && widget->isEnabled();
}

void NSControl::setEnabled_(BOOL enabled) const {
    if (*this == nil) return;
    if (QAction* const shared = bodyOf(*this)->sharedAction()) shared->setEnabled(static_cast<bool>(enabled));
    if (QWidget* const widget = bodyOf(*this)->widget()) widget->setEnabled(static_cast<bool>(enabled));
}

bool NSControl::sendAction_to_(SEL action, id const& target) const {
    if (*this == nil || !action || !target.respondsToSelector_(action)) return false;
    target.performSelector_withObject_(action, *this);
    return true;
}

} // namespace mac
