#pragma once

#include "tests/platform/desktop/VirtualSession.h"
#include "tests/support/Commands.h"
#include <memory>
#include <sstream>
#include <string>

namespace framekeeper::test {

using namespace mac::test;

// The files of the program, of the script that makes the sample home, and of the one that uses a window.
std::string programFile();
std::string sampleHomeScript();
std::string windowScript();

// The program on a display and a bus of its own with the sample home, used as a person does who cannot see it.
class ProgramInASession : public testing::Test {
protected:
    void SetUp() override {
        std::optional<std::string> const obstacle = VirtualSession::obstacle();
        if (obstacle) GTEST_SKIP() << *obstacle;
        outputOf({sampleHomeScript(), m_home});
        m_session = std::make_unique<VirtualSession>(m_folder.makeFolder("runtime"));
        // A program makes itself known to assistive technology once, as it starts: the registry must be there by then.
        ASSERT_TRUE(waitUntil([] { return outputOf({windowScript(), "0", "wake"}) == "awake\n"; }));
    }

    void startProgram() {
        // The log (standard error) is read together with standard output.
        m_program = std::make_unique<ChildProcess>(
            std::vector<std::string>{"/bin/sh", "-c", "exec \"$0\" 2>&1", programFile()});
    }

    std::string pathOfCopy(std::string const& place) const { return m_home + "/" + place + "/Mirror Frame.app"; }
    std::unique_ptr<ChildProcess> startCopy(std::string const& place) const {
        auto copy = std::make_unique<ChildProcess>(std::vector{pathOfCopy(place) + "/Contents/Linux/Mirror Frame"});
        EXPECT_NE(copy->readLine(), "") << "it runs";
        return copy;
    }

    std::vector<std::string> row(std::string const& path) const {
        std::string const output = use({"row", path});
        if (output == NoRow) return {};
        std::istringstream lines(output);
        std::vector<std::string> cells;
        for (std::string line; std::getline(lines, line);)
            cells.push_back(line);
        return cells;
    }
    bool showsAsRunning(std::string const& path, std::string const& answer) const {
        return waitUntil([&] {
            std::vector<std::string> const cells = row(path);
            return cells.size() > RunningColumn && cells[RunningColumn] == answer;
        });
    }
    void quit(std::string const& path) const {
        std::vector<std::string> const command{windowScript(), std::to_string(m_program->pid()), "quit", path};
        EXPECT_TRUE(waitUntil([&] { return outputOf(command) == "pressed\n"; }));
    }
    // The next line of its log that has the text.
    std::string logLineWith(std::string const& text) const {
        std::string line = "first";
        while (!line.empty() && line.find(text) == std::string::npos)
            line = m_program->readLine();
        return line;
    }

    // The output of use_window.py for the program's window; the script documents its verbs.
    std::string use(std::vector<std::string> const& words) const {
        std::vector<std::string> command{windowScript(), std::to_string(m_program->pid())};
        command.insert(command.end(), words.begin(), words.end());
        return outputOf(command);
    }
    // Waits until the status line says this.
    bool says(std::string const& line) const {
        bool const isSaid = waitUntil([&] { return use({"status"}) == line + "\n"; });
        EXPECT_TRUE(isSaid) << "it says: " << use({"status"});
        return isSaid;
    }
    // Waits until the button is enabled, or is not and says why.
    bool isEnabled(std::string const& button) const {
        return waitUntil([&] { return use({"button", button}) == "enabled\n"; });
    }
    bool isDisabled(std::string const& button, std::string const& reason) const {
        return waitUntil([&] { return use({"button", button}) == "disabled: " + reason + "\n"; });
    }
    // Selects the row with the path alone and gives the table the keyboard.
    void select(std::string const& path) const {
        EXPECT_TRUE(waitUntil([&] { return use({"select", path}) == "selected\n"; })) << path;
    }
    // Presses keys, such as "ctrl+z", on the window that has the keyboard.
    void press(std::string const& keys) const { EXPECT_EQ(use({"press", keys}), "pressed\n"); }
    bool lists(std::string const& path) const {
        return waitUntil([&] { return !row(path).empty(); });
    }
    bool listsNoMore(std::string const& path) const {
        return waitUntil([&] { return use({"row", path}) == NoRow; });
    }

    static constexpr std::size_t RunningColumn = 3;
    // What use_window.py prints for a table that was read and has no such row.
    static constexpr std::string_view NoRow = "no row\n";

    TemporaryFolder const m_folder{};
    std::string const m_home{m_folder.path("home")};
    std::unique_ptr<VirtualSession> m_session{};
    std::unique_ptr<ChildProcess> m_program{};

private:
    EnvironmentVariable const m_homeVariable{"HOME", m_home};
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", m_home + "/.config"};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_home + "/.local/share"};
    EnvironmentVariable const m_cache{"XDG_CACHE_HOME", m_home + "/.cache"};
    EnvironmentVariable const m_state{"XDG_STATE_HOME", m_home + "/.local/state"};
    EnvironmentVariable const m_computer{"FRAMEKEEPER_LOCAL_COMPUTER", m_home};
    // Stricter checks take texts of a known length, as the keyboard's library has them, for texts without an end.
    EnvironmentVariable const m_checks{"ASAN_OPTIONS", "detect_stack_use_after_return=1"};
    EnvironmentVariable const m_platform{"QT_QPA_PLATFORM", "xcb"};
    EnvironmentVariable const m_accessibility{"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"};
};

} // namespace framekeeper::test
