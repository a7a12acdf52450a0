#include "platform/system/items/ItemIdentity.h"
#include "tests/platform/files/trash/TrashHome.h"
#include "tests/support/Failures.h"
#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

class TrashContents : public testing::Test {
protected:
    TrashedItem trash(std::string const& relative, std::string const& contents = "") const {
        return moveToTrash(m_home.folder.makeFile(relative, contents)).takeValue();
    }

    // Puts an item into the trash as another program would, with files for the user alone.
    void put(std::string const& name, std::string const& information) const {
        m_home.folder.makeFile("data/Trash/files/" + name, "");
        m_home.folder.makeFile("data/Trash/info/" + name + ".trashinfo", information);
    }

    TrashHome const m_home{};
};

TEST_F(TrashContents, AreListedTheLastFirst) {
    EnvironmentVariable const zone("TZ", "Europe/Berlin");
    ::tzset();
    put("old", "[Trash Info]\nPath=/somewhere/old%20name\nDeletionDate=2001-02-03T04:05:06\n");
    put("new", "[Trash Info]\nPath=relative/new\nDeletionDate=2026-07-01T12:00:00\n");
    put("unknown", "no information");
    m_home.folder.makeFile("data/Trash/files/alone", "");
    std::vector<TrashedItem> const items = trashedItems();
    ASSERT_EQ(items.size(), 4U);
    EXPECT_EQ(items[0].path, m_home.files("new"));
    EXPECT_EQ(items[0].originalPath, m_home.path("data/relative/new"));
    EXPECT_EQ(items[0].deletionTime, 1782900000);
    EXPECT_EQ(items[1].originalPath, "/somewhere/old name");
    EXPECT_EQ(items[1].deletionTime, 981169506);
    EXPECT_EQ(items[2].path, m_home.files("alone"));
    EXPECT_EQ(items[2].originalPath, "");
    EXPECT_EQ(items[2].deletionTime, std::nullopt);
    EXPECT_EQ(items[3].originalPath, "");
}

TEST_F(TrashContents, AreNoneWithoutATrash) {
    EXPECT_TRUE(trashedItems().empty());
    EXPECT_EQ(emptyTrash().removed, 0U);
    EXPECT_FALSE(isThere(m_home.path("data")));
}

TEST_F(TrashContents, DoNotWaitForAPipeThatStandsForInformation) {
    m_home.folder.makeFile("data/Trash/files/a", "");
    m_home.folder.makeFolder("data/Trash/info");
    ASSERT_EQ(::mkfifo(m_home.information("a.trashinfo").c_str(), 0600), 0);
    ASSERT_EQ(trashedItems().size(), 1U);
    EXPECT_EQ(trashedItems()[0].originalPath, "");
}

// Another program may have made no records, and who looks changes nothing.
TEST_F(TrashContents, AreLookedAtWithoutMakingWhatIsMissing) {
    std::string const item = m_home.folder.makeFile("data/Trash/files/a", "");
    ASSERT_EQ(trashedItems().size(), 1U);
    EXPECT_EQ(trashedItems()[0].originalPath, "");
    EXPECT_TRUE(trashedItemsFrom("/a").empty());
    Result<std::optional<PlaceInTrash>, TrashProblem> const place = placeInTrash(item);
    ASSERT_TRUE(place.hasValue() && place.value());
    EXPECT_EQ(place.value()->trashed.path, item);
    Result<std::string, TrashProblem> const back = putBackItemAtPath(item);
    ASSERT_FALSE(back.hasValue());
    EXPECT_EQ(back.problem().kind, TrashProblem::NotInTrash);
    EXPECT_EQ(trashFolderOf(m_home.path(), MissingTrash::IsMissing), m_home.path("data/Trash/files"));
    EXPECT_EQ(namesIn(m_home.path("data/Trash")), Names{"files"});

    EmptiedTrash const emptied = emptyTrash();
    EXPECT_EQ(emptied.removed, 1U);
    EXPECT_EQ(emptied.left, 0U);
    EXPECT_EQ(namesIn(m_home.path("data/Trash")), Names{"files"});
}

// What is trashed next has its record.
TEST_F(TrashContents, AreRecordedThoughTheFolderOfRecordsWasMissing) {
    m_home.folder.makeFolder("data/Trash/files");
    TrashedItem const item = trash("a/file", "x");
    EXPECT_EQ(namesIn(m_home.information()), Names{"file.trashinfo"});
    EXPECT_EQ(item.originalPath, m_home.path("a/file"));
}

TEST_F(TrashContents, GoBackToWhereTheyWere) {
    TrashedItem const item = trash("a/file", "x");
    Result<std::string, TrashProblem> const back = putBack(item);
    ASSERT_TRUE(back.hasValue()) << back.problem().text();
    EXPECT_EQ(back.value(), m_home.path("a/file"));
    EXPECT_EQ(textOf(m_home.path("a/file")), "x");
    EXPECT_TRUE(namesIn(m_home.files()).empty());
    EXPECT_TRUE(namesIn(m_home.information()).empty());
    Result<std::string, TrashProblem> const again = putBack(item);
    ASSERT_FALSE(again.hasValue());
    EXPECT_EQ(again.problem().kind, TrashProblem::NotThere);
}

TEST_F(TrashContents, StayWhereSomethingElseHasTheirPlace) {
    TrashedItem const item = trash("a/file", "old");
    m_home.folder.makeFile("a/file", "new");
    Result<std::string, TrashProblem> const back = putBack(item);
    ASSERT_FALSE(back.hasValue());
    EXPECT_EQ(back.problem().kind, TrashProblem::NameTaken);
    EXPECT_EQ(textOf(m_home.path("a/file")), "new");
    EXPECT_EQ(textOf(item.path), "old");
    EXPECT_TRUE(isThere(m_home.information("file.trashinfo")));
}

TEST_F(TrashContents, StayWhereTheirFolderIsGone) {
    TrashedItem const item = trash("a/file");
    ASSERT_EQ(::rmdir(m_home.path("a").c_str()), 0);
    EXPECT_EQ(putBack(item).problem().kind, TrashProblem::NotThere);
    EXPECT_TRUE(isThere(item.path));
}

TEST_F(TrashContents, StayWhereNothingTellsWhereTheyCameFrom) {
    TrashedItem const item = trash("a/file");
    ASSERT_EQ(::unlink(m_home.information("file.trashinfo").c_str()), 0);
    EXPECT_EQ(putBack(item).problem().kind, TrashProblem::NotInTrash);
    EXPECT_TRUE(isThere(item.path));
    EXPECT_EQ(putBack({}).problem().kind, TrashProblem::NotThere);
}

TEST_F(TrashContents, AreOnlyThoseThatLieInATrash) {
    std::string const file = m_home.folder.makeFile("file", "");
    TrashedItem item = trash("other");
    item.path = file;
    EXPECT_EQ(putBack(item).problem().kind, TrashProblem::Changed);
    Result<OpenItem> const open = openItemAtPath(file, LinkAtEnd::IsNotFollowed);
    item.identity = identify(open.value().item).value().identity;
    EXPECT_EQ(putBack(item).problem().kind, TrashProblem::NotInTrash);
    EXPECT_TRUE(isThere(file));
}

TEST_F(TrashContents, AreNotWhatTookTheirNames) {
    TrashedItem const item = trash("file");
    ASSERT_EQ(::rename(item.path.c_str(), m_home.path("moved").c_str()), 0);
    m_home.folder.makeFile("data/Trash/files/file", "new");
    EXPECT_EQ(putBack(item).problem().kind, TrashProblem::Changed);
    EXPECT_EQ(textOf(item.path), "new");
}

TEST_F(TrashContents, AreEmptiedWithoutFollowingLinks) {
    std::string const kept = m_home.folder.makeFile("kept/file", "");
    ASSERT_TRUE(isThere(m_home.folder.makeFolder("folder/a/b")));
    m_home.folder.makeFile("folder/a/file", "");
    ASSERT_EQ(::symlink(m_home.path("kept").c_str(), m_home.path("folder/a/b/link").c_str()), 0);
    ASSERT_EQ(::symlink(m_home.path("kept").c_str(), m_home.path("link").c_str()), 0);
    ASSERT_TRUE(moveToTrash(m_home.path("folder")).hasValue());
    ASSERT_TRUE(moveToTrash(m_home.path("link")).hasValue());
    EmptiedTrash const emptied = emptyTrash();
    EXPECT_EQ(emptied.removed, 2U);
    EXPECT_EQ(emptied.left, 0U);
    EXPECT_TRUE(isThere(kept));
    EXPECT_TRUE(namesIn(m_home.files()).empty());
    EXPECT_TRUE(namesIn(m_home.information()).empty());
}

TEST_F(TrashContents, AreNotTakenForAnotherItemsAppleDoubleFile) {
    std::string const appleDouble("\x00\x05\x16\x07\x00\x02\x00\x00Mac OS X        \x00\x00", 26);
    TrashedItem const stray = trash("a/._song", appleDouble);
    TrashedItem const song = trash("b/song", "la");
    EXPECT_EQ(trashedItems().size(), 2U);
    ASSERT_TRUE(putBack(song).hasValue());
    EXPECT_EQ(namesIn(m_home.path("b")), Names{"song"});
    ASSERT_TRUE(isThere(stray.path));
    ASSERT_TRUE(moveToTrash(m_home.path("b/song")).hasValue());
    ASSERT_TRUE(putBack(stray).hasValue());
    EXPECT_EQ(textOf(m_home.path("a/._song")), appleDouble);
    ASSERT_TRUE(moveToTrash(m_home.path("a/._song")).hasValue());
    EXPECT_EQ(emptyTrash().removed, 2U);
}

TEST_F(TrashContents, AreNotSaidToBeGoneWhereTheyCannotBeListed) {
    TrashedItem const item = trash("a/file");
    EmptiedTrash emptied;
    withRefusedCall(SYS_getdents64, EIO, [&] { emptied = emptyTrash(); });
    EXPECT_EQ(emptied.removed, 0U);
    EXPECT_EQ(emptied.left, 1U);
    EXPECT_EQ(emptied.firstProblem.kind, TrashProblem::Other);
    EXPECT_TRUE(isThere(item.path));
}

TEST_F(TrashContents, AreEmptiedWithInformationAboutNothing) {
    put("gone", "[Trash Info]\nPath=/gone\n");
    ASSERT_EQ(::unlink(m_home.files("gone").c_str()), 0);
    put("coming", "[Trash Info]\nPath=/coming\n");
    ASSERT_EQ(::unlink(m_home.files("coming").c_str()), 0);
    std::array<timespec, 2> times{};
    times[0].tv_sec = times[1].tv_sec = ::time(nullptr) - 7'200;
    ASSERT_EQ(::utimensat(AT_FDCWD, m_home.information("gone.trashinfo").c_str(), times.data(), 0), 0);
    emptyTrash();
    // What is young can be of an item that another program is about to move.
    EXPECT_EQ(namesIn(m_home.information()), Names{"coming.trashinfo"});
}

} // namespace
} // namespace mac::test
