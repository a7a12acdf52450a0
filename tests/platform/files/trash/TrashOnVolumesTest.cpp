#include "tests/platform/files/trash/TrashHome.h"
#include "tests/support/PrivateMounts.h"
#include <fcntl.h>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

class TrashOnVolumes : public PrivateMounts {
protected:
    void SetUp() override {
        PrivateMounts::SetUp();
        if (!IsSkipped()) mountMemory(m_point);
    }

    Result<TrashedItem, TrashProblem> trash(std::string const& relative, std::string const& contents = "") const {
        return moveToTrash(m_home.folder.makeFile(relative, contents));
    }
    TrashProblem::Kind problemOf(std::string const& path) const {
        Result<TrashedItem, TrashProblem> const result = moveToTrash(path);
        EXPECT_FALSE(result.hasValue()) << path;
        EXPECT_TRUE(isThere(path));
        return result.problem().kind;
    }

    std::string const m_user = std::to_string(::geteuid());
    TrashHome const m_home{};
    std::string const m_point = m_home.folder.makeFolder("volume");
    std::string const m_own = m_point + "/.Trash-" + m_user;
};

TEST_F(TrashOnVolumes, GoesToATrashOfTheirOwn) {
    Result<TrashedItem, TrashProblem> const result = trash("volume/a b/file", "x");
    ASSERT_TRUE(result.hasValue()) << result.problem().text();
    EXPECT_EQ(result.value().path, m_own + "/files/file");
    EXPECT_EQ(result.value().originalPath, m_point + "/a b/file");
    EXPECT_TRUE(textOf(m_own + "/info/file.trashinfo").starts_with("[Trash Info]\nPath=a%20b/file\nDeletionDate=20"));
    struct stat status {};
    ASSERT_EQ(::stat(m_own.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
    EXPECT_FALSE(isThere(m_home.path("data")));
    EXPECT_EQ(trashFolderOf(m_point, MissingTrash::IsMissing), m_own + "/files");
    EXPECT_EQ(problemOf(m_own), TrashProblem::Immovable);
    EXPECT_EQ(problemOf(result.value().path), TrashProblem::InTrash);
}

TEST_F(TrashOnVolumes, ComesBackByItsPath) {
    Result<TrashedItem, TrashProblem> const result = trash("volume/a b/file", "x");
    ASSERT_TRUE(result.hasValue()) << result.problem().text();
    Result<std::optional<PlaceInTrash>, TrashProblem> const place = placeInTrash(result.value().path);
    ASSERT_TRUE(place.hasValue() && place.value());
    EXPECT_EQ(place.value()->originalPath, m_point + "/a b/file");
    Result<std::string, TrashProblem> const back = putBackItemAtPath(result.value().path);
    ASSERT_TRUE(back.hasValue()) << back.problem().text();
    EXPECT_EQ(back.value(), m_point + "/a b/file");
    EXPECT_EQ(textOf(back.value()), "x");
}

TEST_F(TrashOnVolumes, GoesToTheSharedTrashWhereThereIsOne) {
    m_home.folder.makeFolder("volume/.Trash");
    ASSERT_EQ(::chmod((m_point + "/.Trash").c_str(), 01777), 0);
    Result<TrashedItem, TrashProblem> const result = trash("volume/file");
    ASSERT_TRUE(result.hasValue());
    EXPECT_EQ(result.value().path, m_point + "/.Trash/" + m_user + "/files/file");
    EXPECT_FALSE(isThere(m_own));
    ASSERT_EQ(trashedItems().size(), 1U);
    EXPECT_EQ(trashedItems()[0].originalPath, m_point + "/file");
    ASSERT_TRUE(putBack(trashedItems()[0]).hasValue());
    EXPECT_TRUE(isThere(m_point + "/file"));
}

TEST_F(TrashOnVolumes, GoesToNoSharedTrashThatOthersCouldChange) {
    m_home.folder.makeFolder("volume/.Trash");
    ASSERT_EQ(::chmod((m_point + "/.Trash").c_str(), 0777), 0);
    Result<TrashedItem, TrashProblem> const result = trash("volume/file");
    ASSERT_TRUE(result.hasValue());
    EXPECT_EQ(result.value().path, m_own + "/files/file");
    EXPECT_TRUE(namesIn(m_point + "/.Trash").empty());
}

TEST_F(TrashOnVolumes, FollowsNoLinkToATrash) {
    m_home.folder.makeFolder("volume/real");
    ASSERT_EQ(::chmod((m_point + "/real").c_str(), 01777), 0);
    ASSERT_EQ(::symlink("real", (m_point + "/.Trash").c_str()), 0);
    ASSERT_EQ(::symlink("real", m_own.c_str()), 0);
    EXPECT_EQ(problemOf(m_home.folder.makeFile("volume/file", "")), TrashProblem::NoTrash);
    EXPECT_TRUE(namesIn(m_point + "/real").empty());
}

TEST_F(TrashOnVolumes, UsesNoTrashOfSomebodyElse) {
    m_home.folder.makeFolder("volume/.Trash-" + m_user + "/files");
    m_home.folder.makeFolder("volume/.Trash-" + m_user + "/info");
    ASSERT_EQ(::chown(m_own.c_str(), OrdinaryUser::ID, OrdinaryUser::ID), 0);
    EXPECT_EQ(problemOf(m_home.folder.makeFile("volume/file", "")), TrashProblem::NoTrash);
    EXPECT_TRUE(namesIn(m_own + "/info").empty());
    EXPECT_EQ(trashFolderOf(m_point, MissingTrash::IsMissing), "");
}

TEST_F(TrashOnVolumes, UsesNoTrashThatAnotherVolumeIsMountedOn) {
    m_home.folder.makeFolder("volume/.Trash-" + m_user);
    mountMemory(m_own);
    EXPECT_EQ(problemOf(m_home.folder.makeFile("volume/file", "")), TrashProblem::NoTrash);
}

TEST_F(TrashOnVolumes, LeavesMountPointsAndWhatHoldsThem) {
    EXPECT_EQ(problemOf(m_point), TrashProblem::Immovable);
    m_home.folder.makeFolder("holder/a/point");
    mountMemory(m_home.path("holder/a/point"));
    EXPECT_EQ(problemOf(m_home.path("holder")), TrashProblem::Immovable);
    std::string const file = m_home.folder.makeFile("file", "");
    bind(m_home.folder.makeFile("other", ""), file);
    EXPECT_EQ(problemOf(file), TrashProblem::Immovable);
    EXPECT_FALSE(isThere(m_home.path("data")));
}

TEST_F(TrashOnVolumes, ThatAreReadOnlyStayAsTheyAre) {
    std::string const file = m_home.folder.makeFile("volume/file", "");
    makeReadOnly(m_point);
    EXPECT_EQ(problemOf(file), TrashProblem::ReadOnly);
}

TEST_F(TrashOnVolumes, ThatAreFullStayAsTheyAre) {
    std::string const point = m_home.folder.makeFolder("full");
    mountMemory(point, "size=64k,nr_inodes=4");
    std::string const file = m_home.folder.makeFile("full/file", "");
    m_home.folder.makeFile("full/filler", "");
    EXPECT_EQ(problemOf(file), TrashProblem::Full);
    // Room for the trash, not for the information.
    ASSERT_EQ(::unlink((point + "/filler").c_str()), 0);
    mountMemory(m_home.folder.makeFolder("full 2"), "size=64k,nr_inodes=5");
    EXPECT_EQ(problemOf(m_home.folder.makeFile("full 2/file", "")), TrashProblem::Full);
    EXPECT_TRUE(namesIn(m_home.path("full 2/.Trash-" + m_user + "/info")).empty());
    EXPECT_EQ(namesIn(m_home.path("full 2")), (Names{".Trash-" + m_user, "file"}));
}

TEST_F(TrashOnVolumes, LeaveNoInformationWhenItCannotBeWritten) {
    std::string const point = m_home.folder.makeFolder("full");
    mountMemory(point, "size=64k");
    std::string const file = m_home.folder.makeFile("full/file", "");
    m_home.folder.makeFolder("full/.Trash-" + m_user + "/files");
    m_home.folder.makeFolder("full/.Trash-" + m_user + "/info");
    EXPECT_THROW(m_home.folder.makeFile("full/filler", std::string(100'000, 'x')), std::exception);
    EXPECT_EQ(problemOf(file), TrashProblem::Full);
    EXPECT_TRUE(namesIn(point + "/.Trash-" + m_user + "/info").empty());
}

TEST_F(TrashOnVolumes, BelieveNoPathThatLeadsAway) {
    m_home.folder.makeFile("volume/.Trash-" + m_user + "/files/a", "");
    m_home.folder.makeFile("volume/.Trash-" + m_user + "/files/b", "");
    m_home.folder.makeFile("volume/.Trash-" + m_user + "/info/a.trashinfo", "[Trash Info]\nPath=/etc/a\n");
    m_home.folder.makeFile("volume/.Trash-" + m_user + "/info/b.trashinfo", "[Trash Info]\nPath=../b\n");
    std::vector<TrashedItem> const items = trashedItems();
    ASSERT_EQ(items.size(), 2U);
    for (TrashedItem const& item : items) {
        EXPECT_EQ(item.originalPath, "");
        EXPECT_EQ(putBack(item).problem().kind, TrashProblem::NotInTrash);
    }
}

TEST_F(TrashOnVolumes, AreListedAndEmptiedTogether) {
    ASSERT_TRUE(trash("volume/one").hasValue());
    ASSERT_TRUE(trash("two").hasValue());
    EXPECT_EQ(trashedItems().size(), 2U);
    // The same volume once more.
    bind(m_point, m_home.folder.makeFolder("again"));
    EXPECT_EQ(trashedItems().size(), 2U);
    EmptiedTrash const emptied = emptyTrash();
    EXPECT_EQ(emptied.removed, 2U);
    EXPECT_EQ(emptied.left, 0U);
    EXPECT_TRUE(namesIn(m_own + "/files").empty());
    EXPECT_TRUE(namesIn(m_own + "/info").empty());
}

TEST_F(TrashOnVolumes, OfOtherComputersTellWhatCameFromAPath) {
    std::string const path = m_point + "/a/file";
    ASSERT_TRUE(trash("volume/a/file", "first").hasValue());
    ASSERT_TRUE(trash("volume/a/file", "second").hasValue());
    ASSERT_TRUE(trash("volume/a/other").hasValue());
    ASSERT_EQ(::rmdir((m_point + "/a").c_str()), 0);
    // The volume is not one of the computer's then.
    EnvironmentVariable const narrowed("FRAMEKEEPER_LOCAL_COMPUTER", m_home.path("data"));
    EXPECT_TRUE(trashedItems().empty());
    EXPECT_EQ(trashedItemsFrom(path).size(), 2U);
    EXPECT_TRUE(trashedItemsFrom(m_point + "/a").empty());
}

TEST_F(TrashOnVolumes, GetNothingBackThatIsOfAnother) {
    Result<TrashedItem, TrashProblem> const result = trash("a/file");
    ASSERT_TRUE(result.hasValue());
    mountMemory(m_home.path("a"));
    Result<std::string, TrashProblem> const back = putBack(result.value());
    ASSERT_FALSE(back.hasValue());
    EXPECT_EQ(back.problem().kind, TrashProblem::Other);
    EXPECT_TRUE(isThere(result.value().path));
    EXPECT_TRUE(isThere(m_home.information("file.trashinfo")));
    EXPECT_TRUE(namesIn(m_home.path("a")).empty());
}

TEST_F(TrashOnVolumes, AreNotEnteredWhileEmptying) {
    ASSERT_TRUE(trash("folder/inner/file").hasValue());
    m_home.folder.makeFolder("folder/point");
    ASSERT_TRUE(moveToTrash(m_home.path("folder")).hasValue());
    mountMemory(m_home.files("folder/point"));
    m_home.folder.makeFile("data/Trash/files/folder/point/kept", "");
    EmptiedTrash const emptied = emptyTrash();
    EXPECT_EQ(emptied.removed, 1U);
    EXPECT_EQ(emptied.left, 1U);
    EXPECT_EQ(emptied.firstProblem.kind, TrashProblem::Immovable);
    EXPECT_TRUE(isThere(m_home.files("folder/point/kept")));
    EXPECT_TRUE(isThere(m_home.information("folder.trashinfo")));
}

TEST_F(TrashOnVolumes, ThatAreBoundFoldersHaveATrashOfTheirOwn) {
    std::string const point = m_home.folder.makeFolder("bound");
    bind(m_home.folder.makeFolder("source"), point);
    Result<TrashedItem, TrashProblem> const result = trash("bound/file");
    ASSERT_TRUE(result.hasValue()) << result.problem().text();
    EXPECT_EQ(result.value().path, point + "/.Trash-" + m_user + "/files/file");
}

TEST_F(TrashOnVolumes, TakeTheHomeTrashWhenItIsTheirs) {
    EnvironmentVariable const data("XDG_DATA_HOME", m_point + "/my data");
    Result<TrashedItem, TrashProblem> const result = trash("volume/file");
    ASSERT_TRUE(result.hasValue());
    EXPECT_EQ(result.value().path, m_point + "/my data/Trash/files/file");
    // And what is elsewhere does not cross over.
    std::string const other = m_home.folder.makeFolder("other volume");
    mountMemory(other);
    Result<TrashedItem, TrashProblem> const elsewhere = trash("other volume/file");
    ASSERT_TRUE(elsewhere.hasValue());
    EXPECT_EQ(elsewhere.value().path, other + "/.Trash-" + m_user + "/files/file");
}

} // namespace
} // namespace mac::test
