#include "platform/events/EventQueue.h"
#include "platform/events/EventDispatch.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/NSRunLoop.h"
#include <condition_variable>
#include <deque>
#include <mutex>

namespace mac {

namespace {

// The most events in the queue while the main thread is busy.
constexpr std::size_t MostEvents = 1024;
constexpr std::size_t MostBytes = std::size_t{64} << 20;

struct Queue {
    std::mutex lock;
    std::condition_variable changed;
    std::deque<IncomingEvent> events;
    std::size_t bytes{0};
};

// Never destroyed: another thread may still enqueue an event at the program's exit.
Queue& queue() {
    static Queue& queue = *std::make_unique<Queue>().release();
    return queue;
}

std::optional<IncomingEvent> takeFirst(Queue& queue) {
    if (queue.events.empty()) return std::nullopt;
    IncomingEvent event = std::move(queue.events.front());
    queue.events.pop_front();
    queue.bytes -= event.size;
    return event;
}

void handle(IncomingEvent const& incoming) {
    AppleEvent reply;
    OSErr const status = dispatchEvent(incoming.event, incoming.wantsReply, reply);
    if (incoming.answer) incoming.answer(status, reply);
}

void handleOne() {
    std::optional<IncomingEvent> event;
    {
        std::lock_guard const guard(queue().lock);
        event = takeFirst(queue());
    }
    if (event) handle(*event);
}

} // namespace

void noteSent(PendingReply& pending) {
    {
        std::lock_guard const guard(queue().lock);
        pending.isSent = true;
    }
    queue().changed.notify_all();
}

void fulfil(PendingReply& pending, SendingOutcome const& outcome) {
    bool isAnswer = false;
    {
        std::lock_guard const guard(queue().lock);
        isAnswer = pending.isSent && pending.whenDone;
        pending.outcome = outcome;
        pending.isDone = true;
    }
    queue().changed.notify_all();
    if (isAnswer) pending.whenDone(outcome);
}

void abandon(PendingReply& pending) {
    std::lock_guard const guard(queue().lock);
    pending.isAbandoned = true;
}

bool isAbandoned(PendingReply const& pending) {
    std::lock_guard const guard(queue().lock);
    return pending.isAbandoned;
}

bool enqueue(IncomingEvent event) {
    {
        std::lock_guard const guard(queue().lock);
        if (queue().events.size() >= MostEvents || queue().bytes + event.size > MostBytes) return false;
        queue().bytes += event.size;
        queue().events.push_back(std::move(event));
    }
    queue().changed.notify_all();
    // One call for each event; it does nothing if a wait for a reply has handled the event already.
    performOnMainRunLoop(handleOne);
    return true;
}

std::optional<SendingOutcome> waitFor(PendingReply const& pending, EventDeadline deadline, Until until) {
    bool const takesEvents = until == Until::Replied && isMainThread();
    auto const isOver = [&] { return pending.isDone || (until == Until::Sent && pending.isSent); };
    auto const isSomethingThere = [&] { return isOver() || (takesEvents && !queue().events.empty()); };
    std::unique_lock lock(queue().lock);
    while (!isOver()) {
        if (!deadline)
            queue().changed.wait(lock, isSomethingThere);
        else if (!queue().changed.wait_until(lock, *deadline, isSomethingThere))
            return std::nullopt;
        if (isOver()) break;
        IncomingEvent const event = takeFirst(queue()).value();
        lock.unlock();
        handle(event);
        lock.lock();
        bool const isLate = deadline && std::chrono::steady_clock::now() >= *deadline;
        if (isLate && !isOver()) return std::nullopt;
    }
    // A wait for Sent ends before the reply is looked at, also if that has come already.
    bool const isUnderWay = until == Until::Sent && pending.isSent;
    return isUnderWay ? SendingOutcome{} : pending.outcome;
}

} // namespace mac
