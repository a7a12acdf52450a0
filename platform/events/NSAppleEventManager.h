#pragma once

#include "platform/events/NSAppleEventDescriptor.h"

namespace mac {

// The registry of handlers for the Apple events that this program receives, as objects with selectors; it shares the
// table of AEInstallEventHandler. There is one object of this class. Main thread; nil does nothing.
class NSAppleEventManager : public Handle<NSAppleEventManager, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSAppleEventManager sharedAppleEventManager();

    // Registers a handler, in place of an earlier one for the class and ID. The selector takes two arguments, the event
    // and the reply to be filled (null if none is wanted), such as handleEvent:withReplyEvent:. The handler is not
    // retained; once it is freed, the events count as not handled. A nil handler raises NSInvalidArgumentException.
    void setEventHandler_andSelector_forEventClass_andEventID_(id const& handler, SEL handleEventSelector,
                                                               AEEventClass eventClass, AEEventID eventID) const;
    void removeEventHandlerForEventClass_andEventID_(AEEventClass eventClass, AEEventID eventID) const;

    // The event that is being handled and its reply; nil if no event is being handled.
    NSAppleEventDescriptor currentAppleEvent() const;
    NSAppleEventDescriptor currentReplyAppleEvent() const;
};

} // namespace mac
