#pragma once

#include "platform/events/AEDataModel.h"
#include "platform/events/AppleEvents.h"
#include "platform/events/EventQueue.h"
#include "platform/system/processes/ProcessList.h"
#include <functional>
#include <optional>

// Sending beyond what AESend offers; for implementations.

namespace mac {

// How long the sender of an event waits for its reply.
struct EventWait {
    // nullopt: no deadline.
    EventDeadline deadline{};
    // Called repeatedly on the sender's thread; false ends the wait, and so does an exception, which propagates to the
    // sender. Empty: only the deadline ends the wait.
    std::function<bool()> shouldContinue{};
};

// Does what AESendMessage does with kAEWaitReply, up to the deadline. `shouldContinue` is called repeatedly on this
// thread during the wait, and may raise; if it answers false, the wait ends with errAETimeout.
OSStatus sendAndWait(AppleEvent const& event, AppleEvent& reply, EventDeadline const& deadline,
                     std::function<bool()> const& shouldContinue);

// Asks a process to quit by other means than an event. False if it could not be asked.
using QuitRequest = bool (*)(ProcessIdentity const& process);

// Sets what the event 'quit' does to a process that receives no events. Without a handler the process is sent SIGTERM
// (askToEnd). Any thread.
void setUnansweredQuitHandler(QuitRequest handler);

// Replies to an event in place of a process; nullopt if it does not stand in for that process. It ends what it does
// when the wait is over, and replies with the error errAETimeout then.
using EventStandIn = std::optional<AppleEvent> (*)(AppleEvent const& event, ProcessIdentity const& process,
                                                   EventWait const& wait);

// Sets what answers events other than 'quit' for processes that receive none; without it, as at first, sending them
// fails with procNotFound or connectionInvalid. The stand-in is called while the event is being sent. If no reply is
// wanted, the error number in its reply is the status of the sending, so that noErr means that the event was carried
// out; nothing ends the wait then. Any thread.
void setEventStandIn(EventStandIn standIn);

// Where an event goes; for implementations.
struct EventTarget {
    // The running process that the address names.
    ProcessIdentity process;
    bool isThisProcess{false};
};

// The running process that an address descriptor names; nullopt if there is none, or if the descriptor is of no type of
// address. Main thread for addresses by identifier or signature.
std::optional<EventTarget> targetOfAddress(AEDesc const& address);

} // namespace mac
