#include "tests/files/TrashHome.h"
#include "tests/support/CommandOutput.h"
#include <gtest/gtest.h>
#include <stdexcept>

namespace mac::test {
namespace {

// What another program of the desktop makes of the trash, each time on a session bus of its own.
class TrashBesideGio : public testing::Test {
protected:
    void SetUp() override {
        try {
            gio({"list", "trash:///"});
        } catch (std::runtime_error const&) {
            GTEST_SKIP() << "gio knows no trash here; the package gvfs has what it needs";
        }
    }

    static std::string gio(std::vector<std::string> const& arguments) {
        std::vector<std::string> command{"dbus-run-session", "--", "gio"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return outputOf(command);
    }

    TrashHome const m_home{};
    EnvironmentVariable const m_user{"HOME", m_home.folder.makeFolder("home")};
    EnvironmentVariable const m_locale{"LC_ALL", "C.UTF-8"};
    EnvironmentVariable const m_runtime{"XDG_RUNTIME_DIR", m_home.folder.makeFolder("home")};
};

TEST_F(TrashBesideGio, ListsAndRestoresWhatWasTrashedHere) {
    std::string const file = m_home.folder.makeFile("a b/letter 100%.txt", "x");
    m_home.folder.makeFile("folder.app/Contents/Info.plist", "y");
    ASSERT_TRUE(moveToTrash(file).hasValue());
    ASSERT_TRUE(moveToTrash(m_home.path("folder.app")).hasValue());
    std::string const list = gio({"trash", "--list"});
    EXPECT_NE(list.find("trash:///letter%20100%25.txt\t" + file + "\n"), std::string::npos) << list;
    EXPECT_NE(list.find("trash:///folder.app\t" + m_home.path("folder.app") + "\n"), std::string::npos) << list;
    gio({"trash", "--restore", "trash:///letter%20100%25.txt"});
    EXPECT_EQ(textOf(file), "x");
    gio({"trash", "--restore", "trash:///folder.app"});
    EXPECT_EQ(textOf(m_home.path("folder.app/Contents/Info.plist")), "y");
    EXPECT_TRUE(trashedItems().empty());
    EXPECT_TRUE(namesIn(m_home.information()).empty());
}

// To bytes past ASCII it cannot restore by itself: it takes its own way of showing them for the name.
TEST_F(TrashBesideGio, ListsAnyBytes) {
    ASSERT_TRUE(moveToTrash(m_home.folder.makeFile("\xE9t\xC3\xA9", "x")).hasValue());
    EXPECT_EQ(gio({"trash", "--list"}), "trash:///%E9t%C3%A9\t" + m_home.path("\\xe9t\\xc3\\xa9") + "\n");
}

TEST_F(TrashBesideGio, FillsTheTrashThatIsListedAndPutBackHere) {
    std::string const file = m_home.folder.makeFile("a b/caf\xC3\xA9 100%.txt", "x");
    std::int64_t const before = ::time(nullptr);
    gio({"trash", file});
    std::vector<TrashedItem> items = trashedItems();
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].originalPath, file);
    EXPECT_GE(items[0].deletionTime, before);
    m_home.folder.makeFile("a b/caf\xC3\xA9 100%.txt", "second");
    gio({"trash", file});
    items = trashedItems();
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].originalPath, file);
    EXPECT_EQ(items[1].originalPath, file);
    TrashResult<std::string> const back = putBack(items[0]);
    ASSERT_TRUE(back.hasValue()) << back.failure().reason;
    EXPECT_EQ(putBack(items[1]).failure().problem, TrashProblem::NameTaken);
    EXPECT_EQ(emptyTrash().removed, 1U);
    EXPECT_EQ(gio({"trash", "--list"}), "");
}

TEST_F(TrashBesideGio, EmptiesWhatWasTrashedHere) {
    m_home.folder.makeFile("folder/file", "");
    ASSERT_TRUE(moveToTrash(m_home.path("folder")).hasValue());
    ASSERT_TRUE(moveToTrash(m_home.folder.makeFile("file", "")).hasValue());
    gio({"trash", "--empty"});
    EXPECT_TRUE(trashedItems().empty());
    EXPECT_TRUE(namesIn(m_home.information()).empty());
}

} // namespace
} // namespace mac::test
