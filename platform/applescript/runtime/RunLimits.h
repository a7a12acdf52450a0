#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <optional>

namespace mac::applescript {

// How long a run may go on, for whatever takes its time in it. Runs lie within one another, and an inner one ends with
// the outer one; the limits of the innermost are current as long as the object lives. Main thread.
class RunLimits {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr double StandardReplySeconds = 120;

    // `cancelled` may be null: never; so may 0 seconds.
    RunLimits(std::atomic<bool> const* cancelled, double seconds);
    // For a run that another program waits for: it ends when `shouldContinue`, which may be empty, answers false, and
    // at the deadline.
    RunLimits(std::function<bool()> shouldContinue, std::optional<Clock::time_point> deadline);
    ~RunLimits();
    RunLimits(RunLimits const&) = delete;
    RunLimits& operator=(RunLimits const&) = delete;

    // Null where no script runs.
    static RunLimits* current();

    // Throws ScriptStopped when the run is to end, and what `shouldContinue` throws.
    void stopIfAsked() const;
    // How many seconds the reply of another program is waited for; a script may say it.
    double replySeconds() const { return m_replySeconds; }
    void setReplySeconds(double seconds) { m_replySeconds = seconds; }

private:
    friend Clock::time_point endOfReply();

    RunLimits* m_outer;
    std::atomic<bool> const* m_cancelled{nullptr};
    std::function<bool()> m_shouldContinue{};
    std::optional<Clock::time_point> m_deadline{};
    double m_replySeconds{StandardReplySeconds};
};

// Look at the limits of the current run, where one goes on. The first throws ScriptStopped when it is to end; the
// second is for what must not be left by an exception. The third answers when a wait for a reply that begins now is
// over: with the run, or before it.
void stopRunIfAsked();
bool mayRunGoOn();
RunLimits::Clock::time_point endOfReply();

} // namespace mac::applescript
