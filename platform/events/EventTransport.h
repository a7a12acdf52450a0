#pragma once

#include "platform/events/EventQueue.h"
#include "platform/system/processes/ProcessList.h"
#include <chrono>
#include <cstddef>
#include <memory>
#include <vector>

// Events between processes, for implementations.

namespace mac {

// Begins to answer events of other processes, now or as soon as there is an event loop; does nothing if this process
// answers already. Failures show when an event is sent. Any thread.
void openEventEndpoint();
// Makes each new event loop open the endpoint if openEventEndpoint was called before. For registerEvents.
void prepareEventEndpoint();

// What the sender of an event waits for. ReplyUntilDeadline: the reply, and nothing but the deadline, which travels
// with the event, ends the wait. Reply: a wait that may be given up earlier, or a reply that is queued.
enum class Expectation { Nothing, Reply, ReplyUntilDeadline };

// An event to another process, and where its outcome is reported.
struct OutgoingEvent {
    ProcessIdentity process{};
    // The bytes that flattened() wrote.
    std::vector<std::byte> event{};
    Expectation expectation{Expectation::Nothing};
    EventDeadline deadline{};
    std::shared_ptr<PendingReply> pending{};
    // When the sender began to wait.
    std::chrono::steady_clock::time_point since{std::chrono::steady_clock::now()};
};

// Sends an event, and answers other processes from then on. The pending reply is notified when the event is under way
// and, if a reply is wanted, when that has come. An event whose deadline has passed is not sent, and the receiver
// refuses one that arrives later. The main thread creates the event loop that this needs; other threads fail without
// one.
void sendToProcess(OutgoingEvent event);

} // namespace mac
