#pragma once

#include "platform/desktop/browser/FileBrowserSession.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace mac::test {

// Runs the run loop until the condition holds, which it asks every 10 ms. False after a minute.
inline bool waitUntil(std::function<bool()> const& condition) {
    NSDate const end = NSDate::dateWithTimeIntervalSinceNow_(60);
    while (!condition()) {
        if (end.timeIntervalSinceNow() < 0) return false;
        NSRunLoop::currentRunLoop().runMode_beforeDate_(NSDefaultRunLoopMode,
                                                        NSDate::dateWithTimeIntervalSinceNow_(0.01));
    }
    return true;
}

// The program of FakeFileBrowser.cpp.
std::string fakeFileBrowser();

// A data folder with the computer's content types alone.
inline std::string const& folderWithContentTypes() {
    static TemporaryFolder const folder;
    static bool const isLinked = ::symlink("/usr/share/mime", folder.path("mime").c_str()) == 0;
    EXPECT_TRUE(isLinked);
    return folder.path();
}

// A session bus of the test's own, which starts no services but those in the test's data folders.
class PrivateBus {
public:
    PrivateBus() : m_daemon(endingWithThisProcess({"dbus-daemon", "--session", "--nofork", "--print-address"})) {}

    std::string const& address() const { return m_address; }
    void sendSignal(int signal) const { m_daemon.sendSignal(signal); }

private:
    ChildProcess m_daemon;
    std::string m_address{m_daemon.readLine()};
};

// A desktop that holds only what the test puts into it.
class Desktop {
public:
    TemporaryFolder const folder{};

    std::string log() const { return folder.path("log"); }
    std::string fake(std::string const& mode) const { return fakeFileBrowser() + " " + mode + " " + log(); }

    // The default application for folders.
    void install(std::string const& command, std::string const& rest = "") const {
        folder.makeFile("data/applications/browser.desktop",
                        "[Desktop Entry]\nName=Browser\nExec=" + command + "\n" + rest);
        folder.makeFile("data/applications/mimeapps.list",
                        "[Default Applications]\ninode/directory=browser.desktop\ntext/plain=editor.desktop\n");
    }
    // How the bus would start the program that offers FileManager1.
    void installService(std::string const& command) const {
        folder.makeFile("data/dbus-1/services/browser.service",
                        "[D-BUS Service]\nName=org.freedesktop.FileManager1\nExec=" + command + "\n");
    }

    std::vector<std::string> lines() const {
        std::ifstream file(log());
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);)
            lines.push_back(line);
        return lines;
    }
    // Waits until the log has so many lines.
    std::vector<std::string> lines(std::size_t count) const {
        waitUntil([&] { return lines().size() >= count; });
        return lines();
    }

    PrivateBus const& bus() const { return m_bus; }

    // Empty without a line.
    std::string lastLine() const {
        std::vector<std::string> const all = lines();
        return all.empty() ? "" : all.back();
    }

private:
    EnvironmentVariable const m_data{"XDG_DATA_HOME", folder.path("data")};
    EnvironmentVariable const m_dataFolders{"XDG_DATA_DIRS", folderWithContentTypes()};
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", folder.path("config")};
    EnvironmentVariable const m_configFolders{"XDG_CONFIG_DIRS", folder.path("none")};
    EnvironmentVariable const m_display{"DISPLAY", ":of-nobody"};
    EnvironmentVariable const m_wayland{"WAYLAND_DISPLAY", ""};
    EnvironmentVariable const m_home{"HOME", folder.makeFolder("home")};
    PrivateBus const m_bus{};
    EnvironmentVariable const m_address{"DBUS_SESSION_BUS_ADDRESS", m_bus.address()};
};

// For a browser that does not start, answer or quit.
inline constexpr FileBrowserTimeouts ShortTimeouts{.start = std::chrono::milliseconds(100),
                                                   .answer = std::chrono::milliseconds(100),
                                                   .quit = std::chrono::milliseconds(100)};

// For a browser that does what it is asked to, however busy the computer is.
inline constexpr FileBrowserTimeouts LongTimeouts{
    .start = std::chrono::minutes(1), .answer = std::chrono::minutes(1), .quit = std::chrono::minutes(1)};

// Starts the session's file browser before a program under test shows anything in it: on a busy computer its first
// start may exceed the time that a user is kept waiting. Waits until it offers its service; false after a minute.
bool launchBrowser();

// Asks the session's file browser to quit and waits until it has ended; false after a minute.
bool quitBrowser();

// nullopt for what was done.
inline std::optional<DesktopProblem::Kind> kindOf(DesktopOutcome const& outcome) {
    return outcome.isDone() ? std::nullopt : std::optional(outcome.problem().kind);
}
// Empty for what was done.
inline std::string textOf(DesktopOutcome const& outcome) { return outcome.isDone() ? "" : outcome.problem().text; }

} // namespace mac::test
