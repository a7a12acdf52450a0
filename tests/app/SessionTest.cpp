#include "tests/platform/desktop/VirtualSession.h"
#include "tests/support/CommandOutput.h"
#include <csignal>
#include <memory>
#include <sstream>

// The program on a display and a bus, with copies that run, used as a person does who cannot see it.

namespace framekeeper::test {
namespace {

using namespace mac::test;

class ProgramInASession : public testing::Test {
protected:
    void SetUp() override {
        std::optional<std::string> const obstacle = VirtualSession::obstacle();
        if (obstacle) GTEST_SKIP() << *obstacle;
        outputOf({MAKE_SAMPLE_HOME, m_home});
        m_session = std::make_unique<VirtualSession>(m_folder.makeFolder("runtime"));
    }

    void startProgram() {
        // What it logs is read with what it prints.
        m_program =
            std::make_unique<ChildProcess>(std::vector<std::string>{"/bin/sh", "-c", "exec \"$0\" 2>&1", PROGRAM});
    }

    std::string pathOfCopy(std::string const& place) const { return m_home + "/" + place + "/Mirror Frame.app"; }
    std::unique_ptr<ChildProcess> startCopy(std::string const& place) const {
        auto copy = std::make_unique<ChildProcess>(std::vector{pathOfCopy(place) + "/Contents/Linux/Mirror Frame"});
        EXPECT_NE(copy->readLine(), "") << "it runs";
        return copy;
    }

    std::vector<std::string> row(std::string const& path) const {
        std::istringstream lines(outputOf({USE_WINDOW, std::to_string(m_program->pid()), "row", path}));
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
        std::vector<std::string> const command{USE_WINDOW, std::to_string(m_program->pid()), "quit", path};
        EXPECT_TRUE(waitUntil([&] { return outputOf(command) == "pressed\n"; }));
    }
    // The next line of its log that has the text.
    std::string logLineWith(std::string const& text) const {
        std::string line = "first";
        while (!line.empty() && line.find(text) == std::string::npos)
            line = m_program->readLine();
        return line;
    }

    static constexpr std::size_t RunningColumn = 3;

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

TEST_F(ProgramInASession, QuitsTheSelectedCopyAndTellsOfOneThatRefuses) {
    std::unique_ptr<ChildProcess> const willing = startCopy("Applications");
    std::unique_ptr<ChildProcess> const refusing = startCopy("Downloads/Old Versions/1.9");
    std::string const first = pathOfCopy("Applications");
    std::string const second = pathOfCopy("Downloads/Old Versions/1.9");
    startProgram();
    ASSERT_TRUE(showsAsRunning(first, "Yes"));
    ASSERT_TRUE(showsAsRunning(second, "Yes"));

    quit(first);
    EXPECT_TRUE(showsAsRunning(first, "No"));
    EXPECT_EQ(willing->wait(), -SIGTERM) << "a script takes no events";

    quit(second);
    EXPECT_NE(logLineWith("Could not quit process."), "") << "it says why";
    EXPECT_TRUE(showsAsRunning(second, "Yes"));
    EXPECT_TRUE(showsAsRunning(first, "No"));
}

} // namespace
} // namespace framekeeper::test
