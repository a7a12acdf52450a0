#pragma once

#include "platform/desktop/browser/FileBrowserSession.h"
#include "platform/desktop/session/Patience.h"
#include "tests/platform/desktop/VirtualSession.h"
#include <chrono>
#include <memory>

namespace mac::test {

// A real file browser in a session of the test's own. Skipped if it is not installed.
class ThunarDesktop : public testing::Test {
protected:
    void SetUp() override {
        std::optional<std::string> const obstacle = VirtualSession::obstacle();
        if (obstacle) GTEST_SKIP() << *obstacle;
        if (::access("/usr/bin/thunar", X_OK) != 0) GTEST_SKIP() << "thunar is not installed";
        m_folder.makeFile("config/mimeapps.list", "[Default Applications]\ninode/directory=thunar.desktop\n");
        m_session = std::make_unique<VirtualSession>(m_folder.makeFolder("runtime"));
    }
    void TearDown() override {
        if (!m_session) return;
        EXPECT_TRUE(quitBrowser());
    }

    static bool showsWindow(std::string const& title) { return VirtualSession::showsWindow(title); }
    static bool showsElement(std::string const& beginning) { return VirtualSession::showsElement(beginning); }

    // On a busy computer it starts, answers and quits later than a user would wait for it.
    Patience const m_patience{std::chrono::minutes(5)};
    FileBrowserSession const m_browser{LongTimeouts};
    TemporaryFolder const m_folder{};

private:
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.path("data")};
    EnvironmentVariable const m_dataFolders{"XDG_DATA_DIRS", "/usr/share"};
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", m_folder.path("config")};
    EnvironmentVariable const m_home{"HOME", m_folder.makeFolder("home")};
    std::unique_ptr<VirtualSession> m_session{};
};

} // namespace mac::test
