#pragma once

#include <functional>
#include <stop_token>

namespace mac {

// Work in a thread of its own, such as reading much of the disk, whose results come to the main run loop. For
// implementations; made and destroyed on the main thread.
class BackgroundWork {
public:
    // Hands a function to the main run loop. It is not called if the work was stopped before its turn comes.
    using Tell = std::function<void(std::function<void()> function)>;
    // Runs in the thread, and ends soon after it is asked to stop. It touches nothing of the main thread's.
    using Work = std::function<void(std::stop_token const& stop, Tell const& tell)>;

    // Begins at once. `ended` is told behind all else: when the work is over, also by an exception, which is logged,
    // and where the system gives no thread for it.
    explicit BackgroundWork(Work work, std::function<void()> ended = {});
    // Asks the work to stop and does not wait for it, since a disk may keep it. Nothing is told from then on.
    ~BackgroundWork();
    BackgroundWork(BackgroundWork const&) = delete;
    BackgroundWork& operator=(BackgroundWork const&) = delete;

private:
    std::stop_source m_stop;
};

} // namespace mac
