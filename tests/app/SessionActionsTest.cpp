#include "tests/app/ProgramInASession.h"
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
        startProgram();
    }
    void TearDown() override {
        if (!m_program) return;
        EXPECT_TRUE(mac::FileBrowserSession().quit().isDone());
    }

    std::string inTrash(std::string const& name) const { return m_home + "/.local/share/Trash/files/" + name; }
    std::string informationOf(std::string const& copy) const {
        std::ifstream file(copy + "/Contents/Info.plist", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // How many items lie in the trash.
    std::size_t countInTrash() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(m_home + "/.local/share/Trash/files"), {}));
    }

private:
    EnvironmentVariable const m_dataFolders{"XDG_DATA_DIRS", "/usr/share"};
};

TEST_F(ActionsInASession, MoveACopyToTheTrashAndBack) {
    std::string const path = pathOfCopy("Downloads");
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
    EXPECT_TRUE(listsNoMore(former));
    EXPECT_TRUE(says("")) << "the old refusal is gone";
    EXPECT_FALSE(std::filesystem::exists(former));
    EXPECT_TRUE(isDisabled("Undo", "Nothing to undo"));
    select(trashed);
    press("ctrl+shift+p");
    EXPECT_TRUE(says("Put back."));
    EXPECT_TRUE(lists(former));
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

TEST_F(ActionsInASession, SayWhyACopyCannotBeQuit) {
    select(pathOfCopy("Applications"));
    EXPECT_TRUE(isDisabled("Quit Copy", "Not running"));
    EXPECT_TRUE(isDisabled("Remove from Login Items", "Not a login item"));
    EXPECT_TRUE(isDisabled("Remove from Toolbar", "Not in the places"));
}

} // namespace
} // namespace framekeeper::test
