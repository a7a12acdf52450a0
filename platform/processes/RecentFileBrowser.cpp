#include "platform/processes/RecentFileBrowser.h"

namespace mac {

std::optional<FileBrowser> const& RecentFileBrowser::get() {
    constexpr std::chrono::seconds longest(1);
    std::chrono::steady_clock::time_point const now = m_now();
    if (!m_readAt || now - *m_readAt > longest) {
        m_fileBrowser = defaultFileBrowser();
        m_readAt = now;
    }
    return m_fileBrowser;
}

} // namespace mac
