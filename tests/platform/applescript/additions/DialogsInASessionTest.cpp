#include "tests/platform/desktop/VirtualSession.h"
#include "tests/support/Commands.h"
#include <gtest/gtest.h>
#include <memory>

// Scripts that ask the person at the screen, on a display of their own, answered as assistive technology does.

namespace mac::applescript::test {

namespace {

using mac::test::ChildProcess;
using mac::test::EnvironmentVariable;
using mac::test::VirtualSession;
using mac::test::waitUntil;

class DialogsInASession : public testing::Test {
protected:
    void SetUp() override {
        std::optional<std::string> const obstacle = VirtualSession::obstacle();
        if (obstacle) GTEST_SKIP() << *obstacle;
        m_session = std::make_unique<VirtualSession>(m_folder.makeFolder("runtime"));
    }

    static std::unique_ptr<ChildProcess> run(std::string const& script) {
        return std::make_unique<ChildProcess>(std::vector<std::string>{OSA, "-s", "s", "-e", script});
    }
    // Waits until the script's dialog has the element; false after a minute.
    static bool answer(ChildProcess const& script, std::string const& verb, std::string const& text) {
        bool const isDone = waitUntil([&] {
            return mac::test::outputOf({ANSWER_DIALOG, std::to_string(script.pid()), verb, text}) == "done\n";
        });
        EXPECT_TRUE(isDone) << verb << ' ' << text;
        return isDone;
    }

    mac::test::TemporaryFolder const m_folder{};
    EnvironmentVariable const m_home{"HOME", m_folder.makeFolder("home")};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.path("data")};
    EnvironmentVariable const m_dataFolders{"XDG_DATA_DIRS", "/usr/share"};

private:
    EnvironmentVariable const m_platform{"QT_QPA_PLATFORM", "xcb"};
    EnvironmentVariable const m_accessibility{"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"};
    std::unique_ptr<VirtualSession> m_session{};
};

TEST_F(DialogsInASession, AURLIsTyped) {
    auto const script = run("choose URL");
    if (!answer(*script, "type", "https://example.org/") || !answer(*script, "click", "Choose")) return;
    EXPECT_EQ(script->readLine(), "\"https://example.org/\"");
}

TEST_F(DialogsInASession, AnApplicationIsChosenFromTheList) {
    m_folder.makeFile("data/applications/alpha.desktop",
                      "[Desktop Entry]\nType=Application\nName=Alpha One\nExec=/bin/true\n");
    auto const script = run("choose application");
    if (!answer(*script, "choose", "Alpha One") || !answer(*script, "click", "OK")) return;
    EXPECT_EQ(script->readLine(), "application \"Alpha One\"");
}

TEST_F(DialogsInASession, AColorIsChosen) {
    auto const script = run("choose color default color {65535, 0, 257}");
    if (!answer(*script, "click", "OK")) return;
    EXPECT_EQ(script->readLine(), "{65535, 0, 257}");
}

// An event loop is made first, for what the Finder is told.
TEST_F(DialogsInASession, ADialogComesAfterWordsToTheFinder) {
    auto const script = run("tell application \"Finder\" to running\ndisplay dialog \"Go on?\" buttons {\"Yes\"}");
    if (!answer(*script, "click", "Yes")) return;
    EXPECT_EQ(script->readLine(), "{button returned:\"Yes\"}");
}

TEST_F(DialogsInASession, ACanceledChoiceEndsTheScript) {
    auto const script = run("choose color");
    answer(*script, "click", "Cancel");
    EXPECT_EQ(script->wait(), 1);
}

} // namespace

} // namespace mac::applescript::test
