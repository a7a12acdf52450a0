#pragma once

#include "tests/app/Controller.h"
#include "tests/platform/desktop/Desktop.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Environment.h"
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace framekeeper::test {

// What the command did in a process of its own.
struct CommandRun {
    // The exit status, or minus the number of the signal that ended it.
    int status{};
    std::string output{};
    std::string errors{};
};

inline std::string bytesOfFile(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Copies in a home of the test's own, on a desktop whose file browser writes down what it is asked for. The search is
// narrowed to that home.
class CommandTest : public testing::Test {
protected:
    void SetUp() override {
        m_desktop.install(m_desktop.fake("serve"));
        m_desktop.installService(m_desktop.fake("serve"));
    }

    // With the output going through this redirection of a shell.
    CommandRun runInto(std::string const& redirection, std::vector<std::string> const& words) const {
        std::string const errors = m_desktop.folder.path("errors");
        std::vector<std::string> arguments{
            "/bin/sh", "-c", "exec \"$@\" " + redirection + " 2>'" + errors + "' </dev/null", "sh", FRAMEKEEPER_CLI};
        arguments.insert(arguments.end(), words.begin(), words.end());
        mac::test::ChildProcess process(arguments);
        int const status = process.wait();
        return {status, "", bytesOfFile(errors)};
    }
    CommandRun run(std::vector<std::string> const& words) const {
        std::string const output = m_desktop.folder.path("output");
        CommandRun done = runInto(">'" + output + "'", words);
        done.output = bytesOfFile(output);
        return done;
    }

    std::string home(std::string const& relative = "") const {
        return m_desktop.folder.path("home") + (relative.empty() ? "" : "/" + relative);
    }
    std::string copyAt(std::string const& place, std::string const& version = "2.1") const {
        return m_desktop.folder.makeBundle(
            "home/" + place + "/Mirror Frame.app",
            "<plist><dict><key>CFBundleIdentifier</key><string>com.tidelark.mirrorframe</string>"
            "<key>CFBundleIconFile</key><string>mirrorframe1</string><key>CFBundleVersion</key><string>" +
                version + "</string><key>CFBundleShortVersionString</key><string>" + version +
                "</string></dict></plist>");
    }
    static bool isThere(std::string const& path) { return ::access(path.c_str(), F_OK) == 0; }

    mac::test::Desktop const m_desktop{};
    mac::test::EnvironmentVariable const m_narrowed{"FRAMEKEEPER_LOCAL_COMPUTER", home()};
};

} // namespace framekeeper::test
