#include "platform/applescript/runtime/RunLimits.h"
#include "platform/applescript/runtime/ScriptError.h"
#include <algorithm>
#include <utility>

namespace mac::applescript {

namespace {

RunLimits* s_current = nullptr;

RunLimits::Clock::time_point timeIn(double seconds) {
    constexpr double longest = 1e8;
    std::chrono::duration<double> const duration(std::clamp(seconds, 0.0, longest));
    return RunLimits::Clock::now() + std::chrono::duration_cast<RunLimits::Clock::duration>(duration);
}

// Whoever waits may look at the limits of its own run, which are not those of what it waits for.
bool askedAmong(RunLimits* limits, std::function<bool()> const& shouldContinue) {
    struct Restore {
        RunLimits* inner;
        ~Restore() { s_current = inner; }
    } const restore{std::exchange(s_current, limits)};
    return shouldContinue();
}

} // namespace

RunLimits::RunLimits(std::atomic<bool> const* cancelled, double seconds) : m_outer(s_current), m_cancelled(cancelled) {
    if (seconds > 0) m_deadline = timeIn(seconds);
    s_current = this;
}

RunLimits::RunLimits(std::function<bool()> shouldContinue, std::optional<Clock::time_point> deadline)
    : m_outer(s_current), m_shouldContinue(std::move(shouldContinue)), m_deadline(deadline) {
    s_current = this;
}

RunLimits::~RunLimits() { s_current = m_outer; }

RunLimits* RunLimits::current() { return s_current; }

void RunLimits::stopIfAsked() const {
    if (m_cancelled && m_cancelled->load(std::memory_order_relaxed))
        throw ScriptStopped{plainError(errors::UserCanceled)};
    if (m_deadline && Clock::now() >= *m_deadline) throw ScriptStopped{plainError(errors::TimedOut)};
    if (m_shouldContinue && !askedAmong(m_outer, m_shouldContinue)) throw ScriptStopped{plainError(errors::TimedOut)};
    if (m_outer) m_outer->stopIfAsked();
}

void stopRunIfAsked() {
    if (s_current) s_current->stopIfAsked();
}

bool mayRunGoOn() {
    try {
        stopRunIfAsked();
        return true;
    } catch (...) {
        // What is thrown here comes again when the run looks at its limits the next time.
        return false;
    }
}

RunLimits::Clock::time_point endOfReply() {
    RunLimits::Clock::time_point end = timeIn(s_current ? s_current->m_replySeconds : RunLimits::StandardReplySeconds);
    for (RunLimits const* limits = s_current; limits; limits = limits->m_outer)
        if (limits->m_deadline) end = std::min(end, *limits->m_deadline);
    return end;
}

} // namespace mac::applescript
