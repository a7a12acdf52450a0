#pragma once

#include "platform/events/AppleEvents.h"
#include <functional>

// The table of handlers, for implementations. Main thread.

namespace mac {

using EventHandler = std::function<OSErr(AppleEvent const& event, AppleEvent& reply)>;

struct RegisteredHandler {
    EventHandler handler;
    // Of a handler that was installed as a procedure.
    AEEventHandlerProcPtr procedure{nullptr};
};

void setEventHandler(AEEventClass eventClass, AEEventID eventID, RegisteredHandler handler);
// False when there is none for just this class and ID, or none with this procedure where one is named.
bool removeEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerProcPtr procedure);

// The attribute as a four-character code; 0 where there is none.
std::uint32_t codeAttribute(AppleEvent const& event, AEKeyword keyword);
// Whether the descriptor is an event with a class and an ID.
bool isEvent(AEDesc const& desc);

// Calls the handler. A reply that is wanted is made and filled, also with the error of a handler that failed; the
// status is then noErr. errAEEventNotHandled when there is no handler, and for events within events beyond a bound.
OSErr dispatchEvent(AppleEvent const& event, bool wantsReply, AppleEvent& reply);

// The reply to an event, still empty.
AppleEvent makeReply(AppleEvent const& event);
// One that tells of an error alone.
AppleEvent failedReply(AppleEvent const& event, OSStatus status);

// The event that is being handled and its reply; null pointers when none is.
struct CurrentEvent {
    AppleEvent const* event{nullptr};
    AppleEvent const* reply{nullptr};
};
CurrentEvent currentEvent();

} // namespace mac
