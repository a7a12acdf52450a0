#include "platform/desktop/browser/FileBrowser.h"
#include "platform/system/processes/ProcessList.h"
#include "tests/platform/processes/Programs.h"
#include "tests/support/Environment.h"
#include "tests/support/OrdinaryUser.h"
#include <memory>

namespace mac::test {

namespace {

// A desktop whose default application for folders is the test's.
class FindersRole : public testing::Test {
protected:
    void install(std::string const& command) const {
        m_folder.makeFile("data/applications/browser.desktop",
                          "[Desktop Entry]\nName=Files\nExec=" + command + " %U\nType=Application\n");
        m_folder.makeFile("config/mimeapps.list", "[Default Applications]\ninode/directory=browser.desktop\n");
    }
    // The processes that are the Finder for a walk through the Process Manager.
    static std::vector<ProcessSerialNumber> finders() {
        std::vector<ProcessSerialNumber> found;
        for (ProcessSerialNumber const& psn : everyProcess()) {
            if (textAt(informationOf(psn), kCFBundleIdentifierKey) == "com.apple.finder") found.push_back(psn);
        }
        return found;
    }

    TemporaryFolder const m_folder{};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.path("data")};
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", m_folder.path("config")};
    EnvironmentVariable const m_address{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus,guid=1"};
};

constexpr char Script[] = "echo ready\nread line\n";

} // namespace

TEST_F(FindersRole, IsTheFileBrowsersAlone) {
    std::string const program = copyOfCat(m_folder, "bin/browser");
    install("\"" + program + "\"");
    ChildProcess const other({"/bin/cat"});
    ChildProcess const browser({program});
    waitUntilCatRuns(browser);
    EXPECT_EQ(finders(), std::vector{numberOf(browser)});
    EXPECT_EQ(textAt(informationOf(numberOf(browser)), kCFBundleNameKey), "Files");
}

TEST_F(FindersRole, IsThatOfTheFirstStartedFirst) {
    std::string const program = copyOfCat(m_folder, "bin/browser");
    install(program);
    ChildProcess const first({program});
    waitUntilCatRuns(first);
    ChildProcess const second({program});
    waitUntilCatRuns(second);
    EXPECT_EQ(finders(), (std::vector{numberOf(first), numberOf(second)}));
}

TEST_F(FindersRole, IsNotPlayedByAnInterpreterThatRunsSomethingElse) {
    install("/bin/sh browser");
    ChildProcess const other({"/bin/sh", "-c", "read line; :"});
    EXPECT_TRUE(finders().empty());
    install("/bin/sh -c true");
    EXPECT_TRUE(finders().empty());
}

TEST_F(FindersRole, MayBePlayedByAScript) {
    std::string const script = makeScript(m_folder, "bin/browser", std::string("#!/bin/sh\n") + Script);
    std::string const other = makeScript(m_folder, "bin/other", std::string("#!/bin/sh\n") + Script);
    ChildProcess const browser({script});
    ChildProcess const different({other});
    ASSERT_EQ(browser.readLine(), "ready");
    ASSERT_EQ(different.readLine(), "ready");
    install(script);
    EXPECT_EQ(finders(), std::vector{numberOf(browser)});
    install("/bin/sh " + script);
    EXPECT_EQ(finders(), std::vector{numberOf(browser)});
}

TEST_F(FindersRole, IsNotPlayedInAnotherSession) {
    std::string const program = copyOfCat(m_folder, "bin/browser");
    install(program);
    ChildProcess const browser({program});
    waitUntilCatRuns(browser);
    ASSERT_EQ(finders().size(), 1U);
    {
        EnvironmentVariable const other("DBUS_SESSION_BUS_ADDRESS", "unix:path=/elsewhere/bus,guid=1");
        EXPECT_TRUE(finders().empty());
    }
    EnvironmentVariable const same("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
    EXPECT_EQ(finders().size(), 1U) << "not all processes know the number of the bus";
}

TEST_F(FindersRole, IsNotPlayedAtAnotherDisplay) {
    std::string const program = copyOfCat(m_folder, "bin/browser");
    install(program);
    EnvironmentVariable const wayland("WAYLAND_DISPLAY", "");
    EnvironmentVariable const first("DISPLAY", ":1.0");
    ChildProcess const browser({program});
    waitUntilCatRuns(browser);
    ASSERT_EQ(finders().size(), 1U);
    for (char const* const display : {":2", ":10", "elsewhere:1", "1.0:"}) {
        EnvironmentVariable const other("DISPLAY", display);
        EXPECT_TRUE(finders().empty()) << display;
    }
    for (char const* const display : {":1", ":1.1", ""}) {
        EnvironmentVariable const same("DISPLAY", display);
        EXPECT_EQ(finders().size(), 1U) << display;
    }
}

TEST_F(FindersRole, MayBePlayedByAProcessThatNamesNoSession) {
    std::string const program = copyOfCat(m_folder, "bin/browser");
    install(program);
    EnvironmentVariable const folder("XDG_RUNTIME_DIR", "");
    std::unique_ptr<ChildProcess> browser;
    {
        EnvironmentVariable const none("DBUS_SESSION_BUS_ADDRESS", "");
        browser = std::make_unique<ChildProcess>(std::vector{program});
        waitUntilCatRuns(*browser);
    }
    EXPECT_EQ(finders(), std::vector{numberOf(*browser)});
}

TEST_F(FindersRole, IsNotPlayedByAProcessWithoutAnEnvironment) {
    std::string const program = copyOfCat(m_folder, "bin/browser");
    install(program);
    ChildProcess const starting({"/usr/bin/env", "-i", program});
    waitUntilCatRuns(starting);
    EXPECT_TRUE(finders().empty()) << "it may be anybody's that is being started";
}

TEST_F(FindersRole, IsNotPlayedByAnotherUsersProcess) {
    std::string const program = copyOfCat(m_folder, "bin/browser");
    install(program);
    if (!OrdinaryUser::isAnother()) GTEST_SKIP() << "nobody else can be played here";
    ASSERT_EQ(::chmod(m_folder.path("").c_str(), 0755), 0);
    ChildProcess const others(
        {"/usr/bin/setpriv", "--reuid", std::to_string(OrdinaryUser::ID), "--clear-groups", program});
    waitUntilCatRuns(others);
    ChildProcess const own({program});
    waitUntilCatRuns(own);
    EXPECT_EQ(finders(), std::vector{numberOf(own)});
}

} // namespace mac::test
