#include "tests/platform/files/trash/TrashHome.h"
#include "tests/support/Commands.h"
#include "tests/support/PrivateMounts.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

// The trash beside that of trash-cli's commands, which share no code with the desktop's.

namespace mac::test {
namespace {

struct CommandsHome : TrashHome {
    EnvironmentVariable user{"HOME", folder.makeFolder("home")};
    EnvironmentVariable locale{"LC_ALL", "C.UTF-8"};
};

// What the command lists: lines of a date, a time and a path.
std::string listed() { return outputOf({"trash-list"}); }

bool isListed(std::string const& path) { return listed().find(" " + path + "\n") != std::string::npos; }

void put(std::string const& path) { outputOf({"trash-put", "--", path}); }

// Restores one of the items that lay below the folder; the command asks which one.
void restoreFirst(std::string const& folder) { outputOf({"sh", "-c", R"(echo 0 | trash-restore "$0")", folder}); }

class TrashBesideCommands : public testing::Test {
protected:
    CommandsHome const m_home{};
};

TEST_F(TrashBesideCommands, ListAndRestoreWhatWasTrashedHere) {
    std::string const file = m_home.folder.makeFile("a b/letter 100% caf\xC3\xA9.txt", "x");
    std::string const inner = m_home.folder.makeFile("folder.app/Contents/Info.plist", "y");
    std::string const bundle = m_home.path("folder.app");
    std::string const link = m_home.path("link");
    ASSERT_EQ(::symlink("nowhere", link.c_str()), 0);
    for (std::string const& path : {file, bundle, link}) {
        ASSERT_TRUE(moveToTrash(path).hasValue()) << path;
        EXPECT_TRUE(isListed(path)) << path << '\n' << listed();
        restoreFirst(m_home.path());
        EXPECT_FALSE(isListed(path));
    }
    EXPECT_EQ(textOf(file), "x");
    EXPECT_EQ(textOf(inner), "y");
    struct stat status {};
    EXPECT_EQ(::lstat(link.c_str(), &status), 0);
    EXPECT_TRUE(trashedItems().empty());
    EXPECT_TRUE(namesIn(m_home.information()).empty());
}

TEST_F(TrashBesideCommands, FillTheTrashThatIsListedAndPutBackHere) {
    std::string const file = m_home.folder.makeFile("a b/caf\xC3\xA9 100%.txt", "x");
    std::string const inner = m_home.folder.makeFile("folder/file", "y");
    put(file);
    put(m_home.path("folder"));
    std::vector<TrashedItem> const items = trashedItems();
    ASSERT_EQ(items.size(), 2U);
    for (TrashedItem const& item : items) {
        Result<std::string, TrashProblem> const back = putBack(item);
        ASSERT_TRUE(back.hasValue()) << back.problem().text();
        EXPECT_EQ(back.value(), item.originalPath);
    }
    EXPECT_EQ(textOf(file), "x");
    EXPECT_EQ(textOf(inner), "y");
    EXPECT_EQ(listed().find(m_home.path()), std::string::npos);
}

TEST_F(TrashBesideCommands, KeepTwoItemsOfOneNameApart) {
    std::string const file = m_home.folder.makeFile("file", "theirs");
    put(file);
    m_home.folder.makeFile("file", "ours");
    ASSERT_TRUE(moveToTrash(file).hasValue());
    EXPECT_EQ(trashedItems().size(), 2U);
    restoreFirst(m_home.path());
    EXPECT_TRUE(textOf(file) == "theirs" || textOf(file) == "ours");
    EXPECT_EQ(trashedItems().size(), 1U);
}

// Their own command to empty is not tried: it empties the trashes of all volumes.
TEST_F(TrashBesideCommands, HaveTheirItemsErasedHere) {
    put(m_home.folder.makeFile("file", ""));
    EXPECT_EQ(emptyTrash().removed, 1U);
    EXPECT_EQ(listed().find(m_home.path()), std::string::npos);
}

// A trash at the top of another volume.
class TrashOnADiskBesideCommands : public PrivateMounts {
protected:
    CommandsHome const m_home{};
    std::string const m_point = m_home.folder.makeFolder("disk");
};

TEST_F(TrashOnADiskBesideCommands, IsOneFolderForBoth) {
    ASSERT_NO_FATAL_FAILURE(mountImage(m_home.path("image"), m_point));
    if (IsSkipped()) return;
    std::string const file = m_home.folder.makeFile("disk/a b/file 1", "1");
    std::string const other = m_home.folder.makeFile("disk/file 2", "2");
    put(file);
    ASSERT_TRUE(moveToTrash(other).hasValue());
    EXPECT_TRUE(isListed(other)) << listed();
    std::vector<TrashedItem> const items = trashedItems();
    ASSERT_EQ(items.size(), 2U);
    for (TrashedItem const& item : items)
        EXPECT_TRUE(item.path.starts_with(m_point + "/.Trash-")) << item.path;
    restoreFirst(m_point);
    std::vector<TrashedItem> const left = trashedItems();
    ASSERT_EQ(left.size(), 1U);
    Result<std::string, TrashProblem> const back = putBack(left.front());
    ASSERT_TRUE(back.hasValue()) << back.problem().text();
    EXPECT_EQ(textOf(file), "1");
    EXPECT_EQ(textOf(other), "2");
}

} // namespace
} // namespace mac::test
