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

// Sends a flat event; the pending reply is told when it is under way and, where one is wanted, when the reply has come.
// Nothing is sent when the deadline has passed. The main thread makes the event loop for it; another one fails without.
void sendToProcess(ProcessIdentity const& process, std::vector<std::byte> flatEvent, bool wantsReply,
                   EventDeadline const& deadline, std::shared_ptr<PendingReply> const& pending);

} // namespace mac
