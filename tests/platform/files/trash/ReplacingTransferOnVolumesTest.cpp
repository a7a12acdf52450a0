#include "platform/files/references/ItemReferences.h"
#include "tests/platform/files/trash/ReplacingTransfers.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/PrivateMounts.h"

namespace mac::test {

namespace {

class ReplacingTransferOnVolumes : public PrivateMounts {
protected:
    TemporaryFolder const m_folder{};
    TemporaryFolder const m_point{};
};

TEST_F(ReplacingTransferOnVolumes, DoesNotKeepTheSpaceOfTheOriginal) {
    mountMemory(m_point.path());
    std::string const file = m_folder.makeFile("file", "x");
    ASSERT_TRUE(referenceToPath(file, LinkAtEnd::IsNotFollowed).hasValue());
    releaseRemovedItems();
    std::size_t const before = namesIn("/proc/self/fd").size();
    EXPECT_EQ(errorOf(move, file, m_point.path(), "file", NameClash::IsRefused), 0);
    EXPECT_EQ(namesIn("/proc/self/fd").size(), before - 1);
}

TEST_F(ReplacingTransferOnVolumes, ReplacesNothingBeforeTheCopyIsWhole) {
    mountMemory(m_point.path());
    m_folder.makeFile("file", "new");
    m_point.makeFile("file", "old");
    m_point.makeFile("._file", AppleDouble + "old");
    int steps = 0;
    int questions = 0;
    TransferSteps given;
    given.trash = [&](TrashStep) { ++steps; };
    given.shouldContinue = [&] {
        ++questions;
        return false;
    };
    EXPECT_EQ(errorOf(move, m_folder.path("file"), m_point.path(), "file", NameClash::IsReplaced, given), ECANCELED);
    EXPECT_EQ(questions, 1);
    EXPECT_EQ(steps, 0) << "nothing was away for a while";
    EXPECT_EQ(textOf(m_point.path("file")), "old");
    EXPECT_EQ(textOf(m_point.path("._file")), AppleDouble + "old");
    EXPECT_EQ(textOf(m_folder.path("file")), "new");
    given.shouldContinue = {};
    EXPECT_EQ(errorOf(move, m_folder.path("file"), m_point.path(), "file", NameClash::IsReplaced, given), 0);
    EXPECT_GT(steps, 0);
    EXPECT_EQ(textOf(m_point.path("file")), "new");
    EXPECT_FALSE(isThere(m_point.path("._file")));
}

TEST_F(ReplacingTransferOnVolumes, TellWhyTheOldItemCannotBeTrashed) {
    mountMemory(m_point.path(), "mode=755");
    m_point.makeFile("there/file", "old");
    ASSERT_EQ(::chmod(m_point.path("there").c_str(), 0777), 0);
    ASSERT_EQ(::chmod(m_point.path("there/file").c_str(), 0666), 0);
    m_folder.makeFile("file", "new");
    OrdinaryUser::own(m_folder.path());
    OrdinaryUser::own(m_folder.path("file"));
    OrdinaryUser const user;
    Result<OpenItem> const item = openItemAtPath(m_folder.path("file"), LinkAtEnd::IsNotFollowed);
    ASSERT_TRUE(item.hasValue());
    FileDescriptor const target = folderAt(m_point.path("there"));
    for (Replacing const transfer : {Replacing(copyItem), Replacing(moveItem)}) {
        Result<void, ReplacingProblem> const done =
            transfer({.item = item.value(), .folder = target, .name = "file"}, NameClash::IsReplaced, {});
        ASSERT_FALSE(done.isDone());
        ASSERT_TRUE(done.problem().trash);
        Result<TrashedItem, TrashProblem> const trashed = moveToTrash(m_point.path("there/file"));
        ASSERT_FALSE(trashed.hasValue());
        EXPECT_EQ(trashed.problem().kind, TrashProblem::NoTrash);
        EXPECT_EQ(done.problem().trash->kind, TrashProblem::NoTrash);
        EXPECT_EQ(done.problem().trash->text(), trashed.problem().text());
        EXPECT_EQ(textOf(m_point.path("there/file")), "old");
        EXPECT_EQ(textOf(m_folder.path("file")), "new");
        EXPECT_EQ(namesIn(m_point.path("there")), std::vector<std::string>{"file"});
    }
}

} // namespace

} // namespace mac::test
