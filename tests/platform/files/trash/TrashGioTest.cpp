#include "tests/platform/files/trash/TrashHome.h"
#include "tests/support/Commands.h"
#include "tests/support/PrivateMounts.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

// A home with a trash, and the environment that makes gio use it.
struct GioHome : TrashHome {
    EnvironmentVariable user{"HOME", folder.makeFolder("home")};
    EnvironmentVariable locale{"LC_ALL", "C.UTF-8"};
    EnvironmentVariable runtime{"XDG_RUNTIME_DIR", folder.makeFolder("home")};
};

class TrashBesideGio : public testing::Test {
protected:
    void SetUp() override {
        if (!gioKnowsTrash()) GTEST_SKIP() << GioKnowsNoTrash;
    }

    GioHome const m_home{};
};

class TrashOnADiskBesideGio : public PrivateMounts {
protected:
    void SetUp() override {
        PrivateMounts::SetUp();
        if (IsSkipped()) return;
        if (!gioKnowsTrash()) GTEST_SKIP() << GioKnowsNoTrash;
        mountImage(m_home.path("image"), m_point);
    }

    GioHome const m_home{};
    std::string const m_point = m_home.folder.makeFolder("disk");
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
    Result<std::string, TrashProblem> const back = putBack(items[0]);
    ASSERT_TRUE(back.hasValue()) << back.problem().text();
    EXPECT_EQ(putBack(items[1]).problem().kind, TrashProblem::NameTaken);
    EXPECT_EQ(emptyTrash().removed, 1U);
    EXPECT_EQ(gio({"trash", "--list"}), "");
}

TEST_F(TrashBesideGio, RestoresByPathWhatItTrashed) {
    std::string const file = m_home.folder.makeFile("a b/letter 100%.txt", "x");
    gio({"trash", file});
    Result<std::optional<PlaceInTrash>, TrashProblem> const place = placeInTrash(m_home.files("letter 100%.txt"));
    ASSERT_TRUE(place.hasValue() && place.value());
    EXPECT_EQ(place.value()->originalPath, file);
    Result<std::string, TrashProblem> const back = putBackItemAtPath(m_home.files("letter 100%.txt"));
    ASSERT_TRUE(back.hasValue()) << back.problem().text();
    EXPECT_EQ(textOf(file), "x");
    EXPECT_EQ(gio({"trash", "--list"}), "");
    ASSERT_TRUE(moveToTrash(file).hasValue());
    gio({"trash", "--restore", "trash:///letter%20100%25.txt"});
    EXPECT_EQ(textOf(file), "x");
}

TEST_F(TrashBesideGio, EmptiesWhatWasTrashedHere) {
    m_home.folder.makeFile("folder/file", "");
    ASSERT_TRUE(moveToTrash(m_home.path("folder")).hasValue());
    ASSERT_TRUE(moveToTrash(m_home.folder.makeFile("file", "")).hasValue());
    gio({"trash", "--empty"});
    EXPECT_TRUE(trashedItems().empty());
    EXPECT_TRUE(namesIn(m_home.information()).empty());
}

TEST_F(TrashOnADiskBesideGio, GoesToOneFolderFromBoth) {
    std::string const file = m_home.folder.makeFile("disk/a b/file 1", "1");
    std::string const other = m_home.folder.makeFile("disk/file 2", "2");
    gio({"trash", file});
    Result<TrashedItem, TrashProblem> const result = moveToTrash(other);
    ASSERT_TRUE(result.hasValue()) << result.problem().text();
    std::vector<TrashedItem> const items = trashedItems();
    ASSERT_EQ(items.size(), 2U);
    for (TrashedItem const& item : items)
        EXPECT_TRUE(item.path.starts_with(m_point + "/.Trash-")) << item.path;
    std::string const list = gio({"trash", "--list"});
    EXPECT_NE(list.find("\t" + other + "\n"), std::string::npos) << list;
    for (TrashedItem const& item : items) {
        Result<std::string, TrashProblem> const back = putBack(item);
        ASSERT_TRUE(back.hasValue()) << back.problem().text();
        EXPECT_EQ(back.value(), item.originalPath);
    }
    EXPECT_EQ(textOf(file), "1");
    EXPECT_EQ(textOf(other), "2");
    EXPECT_EQ(gio({"trash", "--list"}), "");
}

} // namespace
} // namespace mac::test
