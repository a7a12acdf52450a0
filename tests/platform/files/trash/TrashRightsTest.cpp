#include "tests/platform/files/trash/TrashHome.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

std::optional<TrashProblem::Kind> problemOfTrashing(std::string_view path) {
    Result<TrashedItem, TrashProblem> const result = moveToTrash(path);
    if (result.hasValue()) return std::nullopt;
    return result.problem().kind;
}

// The trash of an ordinary user, for files and folders of that user.
class TrashOfOrdinaryUser : public testing::Test {
protected:
    void SetUp() override {
        OrdinaryUser::own(m_home.path());
        m_file = m_home.folder.makeFile("folder/file", "");
        OrdinaryUser::own(m_home.path("folder"));
        OrdinaryUser::own(m_file);
    }

    TrashHome const m_home{};
    std::string m_file{};
};

TEST_F(TrashOfOrdinaryUser, LeavesWhatIsInAFolderThatCannotBeWrittenTo) {
    ASSERT_EQ(::chmod(m_home.path("folder").c_str(), 0555), 0);
    OrdinaryUser const user;
    EXPECT_EQ(problemOfTrashing(m_file), TrashProblem::NotAllowed);
    EXPECT_TRUE(isThere(m_file));
    EXPECT_FALSE(isThere(m_home.path("data")));
}

TEST_F(TrashOfOrdinaryUser, LeavesOthersItemsInASharedFolder) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make somebody else's file";
    ASSERT_EQ(::chown(m_home.path("folder").c_str(), 0, 0), 0);
    ASSERT_EQ(::chmod(m_home.path("folder").c_str(), 01777), 0);
    std::string const others = m_home.folder.makeFile("folder/root's", "");
    OrdinaryUser const user;
    EXPECT_EQ(problemOfTrashing(others), TrashProblem::NotAllowed);
    EXPECT_TRUE(isThere(others));
    EXPECT_FALSE(isThere(m_home.path("data")));
    EXPECT_EQ(problemOfTrashing(m_file), std::nullopt);
}

TEST_F(TrashOfOrdinaryUser, LeavesAFolderThatCannotBeWrittenTo) {
    ASSERT_EQ(::chmod(m_home.path("folder").c_str(), 0555), 0);
    OrdinaryUser const user;
    EXPECT_EQ(problemOfTrashing(m_home.path("folder")), TrashProblem::NotAllowed);
    EXPECT_TRUE(isThere(m_file));
    EXPECT_TRUE(namesIn(m_home.information()).empty());
}

TEST_F(TrashOfOrdinaryUser, IsNotMadeWhereThatIsNotAllowed) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make somebody else's folder";
    m_home.folder.makeFolder("data");
    OrdinaryUser const user;
    EXPECT_EQ(problemOfTrashing(m_file), TrashProblem::NoTrash);
    EXPECT_TRUE(isThere(m_file));
}

TEST_F(TrashOfOrdinaryUser, IsNotUsedWhereItIsSomebodyElses) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make somebody else's trash";
    m_home.folder.makeFolder("data/Trash/files");
    m_home.folder.makeFolder("data/Trash/info");
    for (char const* const folder : {"data/Trash", "data/Trash/files", "data/Trash/info"})
        ASSERT_EQ(::chmod(m_home.path(folder).c_str(), 0777), 0);
    OrdinaryUser const user;
    EXPECT_EQ(problemOfTrashing(m_file), TrashProblem::NoTrash);
    EXPECT_TRUE(isThere(m_file));
    EXPECT_TRUE(namesIn(m_home.information()).empty());
}

TEST_F(TrashOfOrdinaryUser, EmptiesFoldersThatTheirOwnerLocked) {
    OrdinaryUser const user;
    m_home.folder.makeFile("locked/a/b/file", "");
    ASSERT_EQ(problemOfTrashing(m_home.path("locked")), std::nullopt);
    ASSERT_EQ(::chmod(m_home.files("locked/a/b").c_str(), 0), 0);
    ASSERT_EQ(::chmod(m_home.files("locked/a").c_str(), 0555), 0);
    EmptiedTrash const emptied = emptyTrash();
    EXPECT_EQ(emptied.removed, 1U);
    EXPECT_EQ(emptied.left, 0U) << emptied.firstProblem.text();
    EXPECT_TRUE(namesIn(m_home.files()).empty());
}

TEST_F(TrashOfOrdinaryUser, SaysWhatCouldNotBeEmptied) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make somebody else's folder";
    {
        OrdinaryUser const user;
        ASSERT_EQ(problemOfTrashing(m_home.path("folder")), std::nullopt);
        ASSERT_EQ(problemOfTrashing(m_home.folder.makeFile("other", "")), std::nullopt);
    }
    m_home.folder.makeFile("data/Trash/files/folder/root's/file", "");
    OrdinaryUser const user;
    EmptiedTrash const emptied = emptyTrash();
    EXPECT_EQ(emptied.removed, 1U);
    EXPECT_EQ(emptied.left, 1U);
    EXPECT_EQ(emptied.firstProblem.kind, TrashProblem::NotAllowed);
    EXPECT_EQ(namesIn(m_home.files()), Names{"folder"});
    EXPECT_TRUE(isThere(m_home.files("folder/root's/file")));
    EXPECT_TRUE(isThere(m_home.information("folder.trashinfo")));
}

} // namespace
} // namespace mac::test
