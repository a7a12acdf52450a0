#pragma once

#include "platform/events/EventQueue.h"
#include "platform/system/processes/ProcessList.h"
#include <cstddef>
#include <memory>
#include <vector>

// Events between processes, for implementations.

namespace mac {

// Begins to answer other processes, unless this one does already: now, or as soon as there is an event loop. What goes
// wrong is noticed when an event is sent. Any thread.
void openEventEndpoint();
// Has each new event loop open the endpoint that was asked for before it. For registerEvents.
void prepareEventEndpoint();

// What the sender of an event waits for. ReplyUntilDeadline: the reply, and nothing but the deadline, which travels
// with the event, ends the wait. Reply: a wait that may be given up earlier, or a reply that is queued.
enum class Expectation { Nothing, Reply, ReplyUntilDeadline };

// An event to another process, and where its sender is told.
struct OutgoingEvent {
    ProcessIdentity process{};
    // As flattened() writes it.
    std::vector<std::byte> event{};
    Expectation expectation{Expectation::Nothing};
    EventDeadline deadline{};
    std::shared_ptr<PendingReply> pending{};
};

// Sends an event; the pending reply is told when it is under way and, where one is wanted, when the reply has come.
// Nothing is sent when the deadline has passed, and what arrives later than that is refused there. The main thread
// makes the event loop for it; another one fails without.
void sendToProcess(OutgoingEvent event);

} // namespace mac
