#include "platform/desktop/browser/FileBrowser.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <chrono>
#include <gtest/gtest.h>
#include <string>

namespace mac::test {

namespace {

// A desktop whose default application for folders changes, and a clock that the test sets.
class RecentFileBrowserTest : public testing::Test {
protected:
    void install(std::string const& name) const {
        m_folder.makeFile("data/applications/" + name + ".desktop",
                          "[Desktop Entry]\nName=" + name + "\nExec=/bin/cat %U\nType=Application\n");
        m_folder.makeFile("config/mimeapps.list", "[Default Applications]\ninode/directory=" + name + ".desktop\n");
    }
    std::string nameOfBrowser() {
        std::optional<FileBrowser> const& browser = m_browser.get();
        return browser ? browser->application.name : "";
    }

    TemporaryFolder const m_folder{};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.path("data")};
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", m_folder.path("config")};
    std::chrono::steady_clock::time_point m_now{};
    RecentFileBrowser m_browser{[this] { return m_now; }};
};

TEST_F(RecentFileBrowserTest, IsLookedUpAgainAfterASecond) {
    install("first");
    EXPECT_EQ(nameOfBrowser(), "first");
    install("second");
    m_now += std::chrono::seconds(1);
    EXPECT_EQ(nameOfBrowser(), "first");
    m_now += std::chrono::milliseconds(1);
    EXPECT_EQ(nameOfBrowser(), "second");
}

TEST_F(RecentFileBrowserTest, IsLookedUpAgainOnceForgotten) {
    install("first");
    EXPECT_EQ(nameOfBrowser(), "first");
    install("second");
    m_browser.forget();
    EXPECT_EQ(nameOfBrowser(), "second");
}

} // namespace

} // namespace mac::test
