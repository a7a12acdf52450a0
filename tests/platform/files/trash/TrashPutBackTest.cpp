#include "tests/platform/files/trash/TrashHome.h"
#include "tests/support/Failures.h"
#include <cerrno>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

template <class T>
std::optional<TrashProblem::Kind> kindOfProblem(Result<T, TrashProblem> const& result) {
    if (result.hasValue()) return std::nullopt;
    return result.problem().kind;
}

class TrashPutBack : public testing::Test {
protected:
    // Trashes a new file and answers its path in the trash.
    std::string trash(std::string const& relative, std::string const& contents = "") const {
        return moveToTrash(m_home.folder.makeFile(relative, contents)).takeValue().path;
    }
    // nullopt if the item lies in no trash.
    static std::optional<PlaceInTrash> placeOf(std::string const& path) {
        Result<std::optional<PlaceInTrash>, TrashProblem> const place = placeInTrash(path);
        EXPECT_TRUE(place.hasValue()) << place.problem().text();
        return place.hasValue() ? place.value() : std::nullopt;
    }

    TrashHome const m_home{};
};

TEST_F(TrashPutBack, RestoresTheItemAtAPath) {
    std::string const path = trash("a/file", "x");
    Result<std::string, TrashProblem> const back = putBackItemAtPath(path);
    ASSERT_TRUE(back.hasValue()) << back.problem().text();
    EXPECT_EQ(back.value(), m_home.path("a/file"));
    EXPECT_EQ(textOf(m_home.path("a/file")), "x");
    EXPECT_EQ(namesIn(m_home.files()), Names());
    EXPECT_EQ(namesIn(m_home.information()), Names());
    EXPECT_EQ(kindOfProblem(putBackItemAtPath(path)), TrashProblem::NotThere);
}

TEST_F(TrashPutBack, LeavesNoRecordWhereItsFileCannotBeRemoved) {
    std::string const path = trash("a/file", "x");
    withRefusedCall(SYS_unlinkat, EIO, [&] { EXPECT_TRUE(putBackItemAtPath(path).hasValue()); });
    EXPECT_EQ(textOf(m_home.path("a/file")), "x");
    EXPECT_FALSE(isThere(m_home.information("file.trashinfo")));
}

TEST_F(TrashPutBack, ChangesNothingWhereTheRecordStays) {
    std::string const path = trash("a/file", "x");
    std::thread([&] {
        TrashSteps const steps = [](TrashStep step) {
            if (step != TrashStep::ItemPutBack) return;
            refuseCallOnThisThread(SYS_unlinkat, EIO);
            refuseCallOnThisThread(SYS_renameat, EIO);
        };
        EXPECT_EQ(kindOfProblem(putBackItemAtPath(path, steps)), TrashProblem::Other);
    }).join();
    EXPECT_EQ(textOf(path), "x");
    EXPECT_TRUE(isThere(m_home.information("file.trashinfo")));
    EXPECT_FALSE(isThere(m_home.path("a/file")));
    EXPECT_TRUE(putBackItemAtPath(path).hasValue());
}

TEST_F(TrashPutBack, RestoresALinkItself) {
    ASSERT_EQ(::symlink("nowhere", m_home.path("link").c_str()), 0);
    std::string const path = moveToTrash(m_home.path("link")).takeValue().path;
    EXPECT_TRUE(putBackItemAtPath(path).hasValue());
    EXPECT_TRUE(isThere(m_home.path("link")));
}

TEST_F(TrashPutBack, RefusesAPlaceThatIsTaken) {
    std::string const path = trash("a/file", "old");
    m_home.folder.makeFile("a/file", "new");
    Result<std::string, TrashProblem> const back = putBackItemAtPath(path);
    EXPECT_EQ(kindOfProblem(back), TrashProblem::NameTaken);
    EXPECT_TRUE(back.problem().text().ends_with(m_home.path("a/file"))) << back.problem().text();
    EXPECT_EQ(textOf(m_home.path("a/file")), "new");
    EXPECT_EQ(textOf(path), "old");
    EXPECT_TRUE(isThere(m_home.information("file.trashinfo")));
}

TEST_F(TrashPutBack, RefusesWhatLiesElsewhere) {
    std::string const file = m_home.folder.makeFile("file", "");
    m_home.folder.makeFile("folder/inner", "");
    std::string const folder = moveToTrash(m_home.path("folder")).takeValue().path;
    EXPECT_EQ(kindOfProblem(putBackItemAtPath(file)), TrashProblem::NotInTrash);
    EXPECT_EQ(kindOfProblem(putBackItemAtPath(folder + "/inner")), TrashProblem::NotInTrash);
    EXPECT_EQ(kindOfProblem(putBackItemAtPath(m_home.files())), TrashProblem::NotInTrash);
    EXPECT_EQ(kindOfProblem(putBackItemAtPath("/")), TrashProblem::NotThere);
    EXPECT_TRUE(isThere(file));
    EXPECT_TRUE(isThere(folder + "/inner"));
}

TEST_F(TrashPutBack, TellsWhatLiesInATrash) {
    std::string const path = trash("a/file");
    std::optional<PlaceInTrash> const place = placeOf(path);
    ASSERT_TRUE(place);
    EXPECT_EQ(place->trashed.path, path);
    EXPECT_EQ(place->originalPath, m_home.path("a/file"));
    EXPECT_TRUE(place->trashed.deletionTime);
    ASSERT_TRUE(putBack(place->trashed).hasValue());
    EXPECT_FALSE(placeOf(m_home.path("a/file")));
}

TEST_F(TrashPutBack, TellsWhereWhatLiesInATrashedFolderCameFrom) {
    m_home.folder.makeFile("a/folder/inner/deep", "");
    std::string const folder = moveToTrash(m_home.path("a/folder")).takeValue().path;
    std::optional<PlaceInTrash> const place = placeOf(folder + "/inner/deep");
    ASSERT_TRUE(place);
    EXPECT_EQ(place->trashed.path, folder);
    EXPECT_TRUE(place->trashed.isFolder);
    EXPECT_EQ(place->originalPath, m_home.path("a/folder/inner/deep"));
}

TEST_F(TrashPutBack, TellsWhatHasNoRecord) {
    std::string const path = trash("a/folder/file");
    ASSERT_EQ(::unlink(m_home.information("file.trashinfo").c_str()), 0);
    std::optional<PlaceInTrash> const place = placeOf(path);
    ASSERT_TRUE(place);
    EXPECT_EQ(place->originalPath, "");
    EXPECT_EQ(kindOfProblem(putBackItemAtPath(path)), TrashProblem::NotInTrash);
}

TEST_F(TrashPutBack, TellsWhatLiesInNoTrash) {
    trash("a/file");
    EXPECT_FALSE(placeOf("/"));
    EXPECT_FALSE(placeOf(m_home.path("a")));
    EXPECT_FALSE(placeOf(m_home.files())) << "the folder of the trash itself";
    EXPECT_FALSE(placeOf(m_home.information("file.trashinfo")));
    EXPECT_EQ(kindOfProblem(placeInTrash(m_home.path("missing"))), TrashProblem::NotThere);
}

} // namespace
} // namespace mac::test
