#pragma once

#include "platform/events/AEDataModel.h"
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

// Where the thread that reads from other processes meets the one that handles events.

namespace mac {

// How the sending of an event went.
struct SendingOutcome {
    OSStatus status{noErr};
    // The process runs, and no event can reach it: nothing in it answers events, or there is no bus.
    bool hasNoEndpoint{false};
    // Null where none is wanted, and after a failure.
    AppleEvent reply{};
};

// An event on its way, which one thread waits for and another one sends.
struct PendingReply {
    // Called when the outcome is there after the event was sent; on the thread that fulfils.
    std::function<void(SendingOutcome const&)> whenDone{};
    bool isSent{false};
    bool isDone{false};
    // Nobody waits any more: what has not been sent yet is not to be sent.
    bool isAbandoned{false};
    SendingOutcome outcome{};
};

// Tells whoever waits that the event is under way, or how it went in the end. Any thread.
void noteSent(PendingReply& pending);
void fulfil(PendingReply& pending, SendingOutcome const& outcome);
// From whoever waited, and for the one who sends. Any thread.
void abandon(PendingReply& pending);
bool isAbandoned(PendingReply const& pending);

struct IncomingEvent {
    AppleEvent event;
    bool wantsReply{false};
    // The size it came in.
    std::size_t size{0};
    // Called once, on the main thread, when the event has been handled.
    std::function<void(OSErr status, AppleEvent const& reply)> answer{};
};

// Has the event handled on the main thread, by the run loop or by a wait for a reply, whichever comes first. False when
// too many wait already. Any thread.
bool enqueue(IncomingEvent event);

using EventDeadline = std::optional<std::chrono::steady_clock::time_point>;

// What is waited for: that the event is under way, or its reply.
enum class Until { Sent, Replied };

// Nothing when the time is over first. On the main thread incoming events are handled while a reply is waited for, and
// nothing else is.
std::optional<SendingOutcome> waitFor(PendingReply const& pending, EventDeadline deadline, Until until);

} // namespace mac
