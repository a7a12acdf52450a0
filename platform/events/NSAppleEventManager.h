#pragma once

#include "platform/events/NSAppleEventDescriptor.h"

namespace mac {

// Who handles the Apple events that this program gets, as objects with messages; the same handlers as those of
// AEInstallEventHandler. There is one. Main thread; nil does nothing.
class NSAppleEventManager : public Handle<NSAppleEventManager, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSAppleEventManager sharedAppleEventManager();

    // The message has two arguments, the event and the reply to be filled (null when none is wanted), such as
    // handleEvent:withReplyEvent:. The handler is not kept alive; once it has gone, nobody handles such events. A nil
    // handler raises NSInvalidArgumentException.
    void setEventHandler_andSelector_forEventClass_andEventID_(id const& handler, SEL handleEventSelector,
                                                               AEEventClass eventClass, AEEventID eventID) const;
    void removeEventHandlerForEventClass_andEventID_(AEEventClass eventClass, AEEventID eventID) const;

    // The event that is being handled and its reply; nil when none is.
    NSAppleEventDescriptor currentAppleEvent() const;
    NSAppleEventDescriptor currentReplyAppleEvent() const;
};

} // namespace mac
