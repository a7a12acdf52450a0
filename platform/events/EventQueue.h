#pragma once

#include "platform/events/AEDataModel.h"
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

// Queue between the thread that reads from other processes and the main thread, which handles events.

namespace mac {

// The outcome of sending an event.
struct SendingOutcome {
    OSStatus status{noErr};
    // The process runs, but no event can reach it: it answers no events, or there is no bus.
    bool hasNoEndpoint{false};
    // Null if no reply is wanted, and after a failure.
    AppleEvent reply{};
};

// An event that one thread sends while another waits for its outcome.
struct PendingReply {
    // Called with the outcome of an event that was sent, on the thread that calls fulfil().
    std::function<void(SendingOutcome const&)> whenDone{};
    bool isSent{false};
    bool isDone{false};
    // The waiting thread has given up: an event that is not sent yet must not be sent.
    bool isAbandoned{false};
    SendingOutcome outcome{};
};

// noteSent tells the waiting thread that the event is under way, fulfil the outcome. Any thread.
void noteSent(PendingReply& pending);
void fulfil(PendingReply& pending, SendingOutcome const& outcome);
// The waiting thread calls abandon to give up; the sending thread asks isAbandoned. Any thread.
void abandon(PendingReply& pending);
bool isAbandoned(PendingReply const& pending);

struct IncomingEvent {
    AppleEvent event;
    bool wantsReply{false};
    // Its size in bytes as it was received.
    std::size_t size{0};
    // Called once, on the main thread, when the event has been handled.
    std::function<void(OSErr status, AppleEvent const& reply)> answer{};
};

// Queues the event to be handled on the main thread, by the run loop or by a wait for a reply, whichever comes first.
// False if the queue is full. Any thread.
bool enqueue(IncomingEvent event);

using EventDeadline = std::optional<std::chrono::steady_clock::time_point>;

// What a wait ends with: the event is under way, or its reply has come.
enum class Until { Sent, Replied };

// Waits for the outcome; nullopt if the deadline passes first. On the main thread, incoming events are handled during a
// wait for a reply, and nothing else is.
std::optional<SendingOutcome> waitFor(PendingReply const& pending, EventDeadline deadline, Until until);

} // namespace mac
