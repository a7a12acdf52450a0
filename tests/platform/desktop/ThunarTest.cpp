#include "tests/platform/desktop/ThunarDesktop.h"

namespace mac::test {
namespace {

using Thunar = ThunarDesktop;

TEST_F(Thunar, ShowsItemsFoldersAndInformation) {
    std::string const file = m_folder.makeFile("my items/letter.txt", "");
    DesktopOutcome const revealed = m_browser.revealItems({file});
    ASSERT_TRUE(revealed.isDone()) << textOf(revealed);
    EXPECT_TRUE(showsWindow("my items - Thunar"));
    EXPECT_EQ(fileBrowserProcesses().size(), 1U) << "the bus has started no other";
    EXPECT_TRUE(m_browser.showInformation({file}).isDone());
    EXPECT_TRUE(showsWindow("letter.txt - Properties"));
    EXPECT_TRUE(m_browser.openItem(m_folder.makeFolder("other folder")).isDone());
    EXPECT_TRUE(showsWindow("other folder - Thunar"));
    EXPECT_EQ(fileBrowserProcesses().size(), 1U);
}

TEST_F(Thunar, ShowsNamesThatAreNoText) {
    std::string const file = m_folder.makeFile("caf\xE9 %41/\xFF", "");
    DesktopOutcome const revealed = m_browser.revealItems({file});
    ASSERT_TRUE(revealed.isDone()) << textOf(revealed);
    EXPECT_TRUE(m_browser.openFolders({m_folder.path("caf\xE9 %41")}).isDone());
    EXPECT_EQ(fileBrowserProcesses().size(), 1U);
}

TEST_F(Thunar, QuitsAndIsStartedAgain) {
    ASSERT_TRUE(m_browser.openFolders({m_folder.makeFolder("first")}).isDone());
    std::vector<ProcessIdentity> const before = fileBrowserProcesses();
    ASSERT_EQ(before.size(), 1U);
    DesktopOutcome const outcome = m_browser.quit();
    EXPECT_TRUE(outcome.isDone()) << textOf(outcome);
    EXPECT_TRUE(m_browser.launch().isDone());
    std::vector<ProcessIdentity> const after = fileBrowserProcesses();
    ASSERT_EQ(after.size(), 1U);
    EXPECT_FALSE(after[0] == before[0]);
    EXPECT_TRUE(m_browser.openFolders({m_folder.makeFolder("second")}).isDone());
    EXPECT_TRUE(showsWindow("second - Thunar"));
}

TEST_F(Thunar, ShowsTheHomeFolderWhenItIsActivated) {
    DesktopOutcome const outcome = m_browser.activate();
    EXPECT_TRUE(outcome.isDone()) << textOf(outcome);
    EXPECT_TRUE(showsWindow("home - Thunar"));
}

} // namespace
} // namespace mac::test
