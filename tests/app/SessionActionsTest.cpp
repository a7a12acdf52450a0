#include "tests/app/ProgramInASession.h"
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

// Each action, done and undone by the keyboard, read as assistive technology reads it and looked for on the disk.

namespace framekeeper::test {
namespace {

class ActionsInASession : public ProgramInASession {
protected:
    void SetUp() override {
        if (::access("/usr/bin/thunar", X_OK) != 0) GTEST_SKIP() << "thunar is not installed";
        ProgramInASession::SetUp();
        if (IsSkipped()) return;
        std::filesystem::create_directories(m_home + "/.config");
        std::ofstream(m_home + "/.config/mimeapps.list") << "[Default Applications]\ninode/directory=thunar.desktop\n";
        ASSERT_TRUE(launchBrowser());
        startProgram();
    }
    void TearDown() override {
        if (!m_program) return;
        EXPECT_TRUE(quitBrowser());
    }

    std::string inTrash(std::string const& name) const { return m_home + "/.local/share/Trash/files/" + name; }
    static std::string contentsOf(std::string const& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static std::string informationOf(std::string const& copy) { return contentsOf(copy + "/Contents/Info.plist"); }
    // The contents of the files in the autostart folder.
    std::vector<std::string> loginItems() const {
        std::vector<std::string> items;
        std::error_code none;
        for (auto const& entry : std::filesystem::directory_iterator(m_home + "/.config/autostart", none))
            items.push_back(contentsOf(entry.path()));
        return items;
    }
    bool shows(std::string const& path, std::size_t column, std::string const& answer) const {
        return waitUntil([&] {
            std::vector<std::string> const cells = row(path);
            return cells.size() > column && cells[column] == answer;
        });
    }

    static constexpr std::size_t ExistsColumn = 2;
    static constexpr std::size_t LoginItemColumn = 4;
    static constexpr std::size_t InToolbarColumn = 5;
    // How many items lie in the trash.
    std::size_t countInTrash() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(m_home + "/.local/share/Trash/files"), {}));
    }

private:
    EnvironmentVariable const m_dataFolders{"XDG_DATA_DIRS", "/usr/share"};
};

TEST_F(ActionsInASession, MoveACopyToTheTrashAndBack) {
    std::string const path = pathOfCopy("media/Mirror Frame 2.1");
    select(path);
    EXPECT_TRUE(isDisabled("Undo", "Nothing to undo"));
    EXPECT_TRUE(isDisabled("Put Back", "Not in the trash"));
    press("delete");
    EXPECT_TRUE(says("Moved to the trash."));
    EXPECT_TRUE(listsNoMore(path));
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(countInTrash(), 2U);
    EXPECT_TRUE(isEnabled("Undo"));
    press("ctrl+z");
    EXPECT_TRUE(says("Put back."));
    EXPECT_TRUE(lists(path));
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_EQ(countInTrash(), 1U);
    EXPECT_TRUE(isDisabled("Undo", "Nothing to undo"));
}

TEST_F(ActionsInASession, PutACopyBackThatWasTrashedBefore) {
    std::string const trashed = inTrash("Mirror Frame.app");
    std::string const former = pathOfCopy("Downloads");
    select(trashed);
    EXPECT_TRUE(isDisabled("Move to Trash", "Already in the trash"));
    press("ctrl+shift+p");
    EXPECT_TRUE(waitUntil([&] { return use({"status"}).find("Mirror Frame.app") != std::string::npos; }))
        << "another copy lies there by now";
    EXPECT_TRUE(std::filesystem::exists(trashed));
    select(former);
    press("shift+delete");
    EXPECT_TRUE(shows(former, ExistsColumn, "No")) << "the places still name it";
    EXPECT_TRUE(says("Deleted for good.")) << "in place of the old refusal";
    EXPECT_FALSE(std::filesystem::exists(former));
    EXPECT_TRUE(isDisabled("Undo", "Nothing to undo"));
    select(trashed);
    press("ctrl+shift+p");
    EXPECT_TRUE(says("Put back."));
    EXPECT_TRUE(shows(former, ExistsColumn, "Yes"));
    EXPECT_EQ(countInTrash(), 0U);
}

TEST_F(ActionsInASession, SwapAnIconAndBack) {
    std::string const path = pathOfCopy("Applications");
    select(path);
    press("ctrl+i");
    EXPECT_TRUE(says("Icon swapped."));
    EXPECT_NE(informationOf(path).find("mirrorframe2"), std::string::npos);
    EXPECT_TRUE(m_session->showsWindow("Applications - Thunar")) << "the copy is shown";
    select(path);
    press("ctrl+z");
    EXPECT_TRUE(says("The former icon is back."));
    EXPECT_NE(informationOf(path).find("mirrorframe1"), std::string::npos);
}

TEST_F(ActionsInASession, ShowACopyByTheReturnKey) {
    select(pathOfCopy("media/Mirror Frame 2.1"));
    press("return");
    EXPECT_TRUE(m_session->showsWindow("Mirror Frame 2.1 - Thunar"));
    EXPECT_TRUE(says(""));
}

TEST_F(ActionsInASession, AddALoginItemAndTakeThatBack) {
    std::string const path = pathOfCopy("media/Mirror Frame 2.1");
    std::string const former = pathOfCopy("Applications");
    std::vector<std::string> const before = loginItems();
    ASSERT_EQ(before.size(), 1U) << "of the sample home";
    select(path);
    press("ctrl+l");
    EXPECT_TRUE(says("Added to the login items."));
    EXPECT_NE(loginItems(), before);
    EXPECT_TRUE(shows(path, LoginItemColumn, "Yes"));
    EXPECT_TRUE(shows(former, LoginItemColumn, "No")) << "one copy alone is a login item";
    press("ctrl+z");
    EXPECT_TRUE(says("The login items are as before."));
    EXPECT_EQ(loginItems(), before);
    EXPECT_TRUE(shows(path, LoginItemColumn, "No"));
    EXPECT_TRUE(shows(former, LoginItemColumn, "Yes"));
}

TEST_F(ActionsInASession, RemoveALoginItemAndTakeThatBack) {
    std::string const path = pathOfCopy("Applications");
    std::vector<std::string> const before = loginItems();
    select(path);
    EXPECT_TRUE(isEnabled("Remove from Login Items"));
    press("ctrl+shift+l");
    EXPECT_TRUE(says("Removed from the login items."));
    EXPECT_TRUE(loginItems().empty());
    press("ctrl+z");
    EXPECT_TRUE(says("The login items are as before."));
    EXPECT_EQ(loginItems(), before);
    EXPECT_TRUE(shows(path, LoginItemColumn, "Yes"));
}

TEST_F(ActionsInASession, RemoveAPlaceAndTakeThatBack) {
    std::string const path = pathOfCopy("Applications");
    std::string const bookmarks = m_home + "/.config/gtk-3.0/bookmarks";
    std::string const before =
        "file:///etc Settings\nfile://" + m_home + "/Applications/Mirror%20Frame.app A copy\nfile:///usr\n";
    std::filesystem::create_directories(m_home + "/.config/gtk-3.0");
    std::ofstream(bookmarks) << before;
    select(path);
    press("f5");
    EXPECT_TRUE(shows(path, InToolbarColumn, "Yes"));
    select(path);
    press("ctrl+shift+b");
    EXPECT_TRUE(says("Removed from the places."));
    EXPECT_EQ(contentsOf(bookmarks), "file:///etc Settings\nfile:///usr\n");
    select(path);
    press("ctrl+z");
    EXPECT_TRUE(says("Back in the places."));
    EXPECT_EQ(contentsOf(bookmarks), before);
    EXPECT_TRUE(shows(path, InToolbarColumn, "Yes"));
}

TEST_F(ActionsInASession, SayWhyACopyCannotBeQuit) {
    select(pathOfCopy("media/Mirror Frame 2.1"));
    EXPECT_TRUE(isDisabled("Quit Copy", "Not running"));
    EXPECT_TRUE(isDisabled("Remove from Login Items", "Not a login item"));
    EXPECT_TRUE(isDisabled("Remove from Toolbar", "Not in the places"));
}

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
