#pragma once

#include "platform/events/AppleEvents.h"
#include <functional>

// The table of handlers, for implementations. Main thread.

namespace mac {

using EventHandler = std::function<OSErr(AppleEvent const& event, AppleEvent& reply)>;

struct RegisteredHandler {
    EventHandler handler;
    // Set if the handler was installed as a procedure.
    AEEventHandlerProcPtr procedure{nullptr};
};

void setEventHandler(AEEventClass eventClass, AEEventID eventID, RegisteredHandler handler);
// False if no handler is registered for exactly this class and ID, or if a procedure is given and the handler is
// another one.
bool removeEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerProcPtr procedure);

// The attribute as a four-character code; 0 if the event lacks it.
std::uint32_t codeAttribute(AppleEvent const& event, AEKeyword keyword);
// Whether the descriptor is an event with a class and an ID.
bool isEvent(AEDesc const& desc);

// Calls the handler. If a reply is wanted it is created and filled, also with the error of a handler that failed; the
// status is then noErr. errAEEventNotHandled if there is no handler, or too many events are being handled within each
// other.
OSErr dispatchEvent(AppleEvent const& event, bool wantsReply, AppleEvent& reply);

// An empty reply to the event.
AppleEvent makeReply(AppleEvent const& event);
// A reply to the event that holds nothing but the error.
AppleEvent failedReply(AppleEvent const& event, OSStatus status);

// The event that is being handled and its reply; null pointers if no event is being handled.
struct CurrentEvent {
    AppleEvent const* event{nullptr};
    AppleEvent const* reply{nullptr};
};
CurrentEvent currentEvent();

} // namespace mac
