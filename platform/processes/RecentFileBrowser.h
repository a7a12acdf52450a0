#pragma once

#include "platform/desktop/browser/FileBrowser.h"
#include <chrono>
#include <functional>
#include <optional>
#include <utility>

namespace mac {

// The desktop's file browser as it was a second ago at most: to look it up takes as long as to read a hundred
// processes, each of which is compared with it. One thread at a time.
class RecentFileBrowser {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    explicit RecentFileBrowser(Clock clock = &std::chrono::steady_clock::now) : m_now(std::move(clock)) {}

    // nullopt if there is no file browser.
    std::optional<FileBrowser> const& get();
    // Has the next get look it up, however short the last one is ago.
    void forget() { m_readAt.reset(); }

private:
    Clock m_now;
    std::optional<FileBrowser> m_fileBrowser;
    std::optional<std::chrono::steady_clock::time_point> m_readAt;
};

} // namespace mac
