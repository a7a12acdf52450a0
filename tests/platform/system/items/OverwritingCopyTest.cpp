#include "platform/system/items/OverwritingCopy.h"
#include "platform/system/items/ItemLock.h"
#include "tests/platform/system/items/ItemTransfers.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/Refusals.h"
#include <sys/syscall.h>

namespace mac::test {

namespace {

using Names = std::vector<std::string>;

class OverwritingCopy : public PrivateMounts {
protected:
    OverwritingCopy() { makeTree(m_folder, "tree"); }

    // The system's code of the failure; 0 for none.
    int copyOver(std::string_view path, std::string_view folder, std::string const& name,
                 OverwritingSteps const& steps = {}) const {
        Result<OpenItem> const item = openItemAtPath(m_folder.path(path), LinkAtEnd::IsNotFollowed);
        if (!item.hasValue()) return item.problem().code;
        FileDescriptor const target = folderAt(m_folder.path(folder));
        Result<void, TransferProblem> const done =
            copyItemOver({.item = item.value(), .folder = target, .name = name}, steps);
        return done.isDone() ? 0 : done.problem().error.code;
    }

    TemporaryFolder const m_folder{};
};

TEST_F(OverwritingCopy, TakesAFreeName) {
    m_folder.makeFolder("target");
    EXPECT_EQ(copyOver("tree", "target", "copy"), 0);
    expectTree(m_folder.path("target/copy"));
    EXPECT_EQ(namesIn(m_folder.path("target")), Names{"copy"});
}

TEST_F(OverwritingCopy, RemovesWhatHadTheName) {
    m_folder.makeFile("target/tree/old/file", "old");
    EXPECT_EQ(copyOver("tree", "target", "tree"), 0);
    expectTree(m_folder.path("target/tree"));
    EXPECT_EQ(copyOver("tree/file \xFF", "target", "tree"), 0);
    EXPECT_EQ(textOf(m_folder.path("target/tree")), "contents");
    EXPECT_EQ(namesIn(m_folder.path("target")), Names{"tree"});
}

TEST_F(OverwritingCopy, IsThereWholeAtEveryStep) {
    m_folder.makeFile("target/tree", "old");
    Names found;
    EXPECT_EQ(copyOver("tree", "target", "tree",
                       [&](OverwritingStep step) {
                           EXPECT_EQ(namesIn(m_folder.path("target")).size(), 2U);
                           if (step == OverwritingStep::Copied)
                               EXPECT_EQ(textOf(m_folder.path("target/tree")), "old");
                           else
                               expectTree(m_folder.path("target/tree"));
                           found.emplace_back(step == OverwritingStep::Copied ? "copied" : "exchanged");
                       }),
              0);
    EXPECT_EQ(found, (Names{"copied", "exchanged"}));
    EXPECT_EQ(namesIn(m_folder.path("target")), Names{"tree"});
}

TEST_F(OverwritingCopy, WorksWhereNamesCannotBeExchanged) {
    // Renames without flags are other calls.
    m_folder.makeFile("target/tree/old", "old");
    m_folder.makeFile("target/._tree", AppleDouble);
    m_folder.makeFile("._tree", AppleDouble + "new");
    withRefusedCall(SYS_renameat2, EINVAL, [&] { EXPECT_EQ(copyOver("tree", "target", "tree"), 0); });
    expectTree(m_folder.path("target/tree"));
    EXPECT_EQ(textOf(m_folder.path("target/._tree")), AppleDouble + "new");
    EXPECT_EQ(namesIn(m_folder.path("target")), (Names{"._tree", "tree"}));
}

TEST_F(OverwritingCopy, TakesTheSidecarsAlong) {
    for (bool const hasNew : {true, false}) {
        for (bool const hasOld : {true, false}) {
            SCOPED_TRACE(hasNew ? "new" : "");
            m_folder.makeFile("target/file", "old");
            m_folder.makeFile("file", "new");
            if (hasOld) m_folder.makeFile("target/._file", AppleDouble + "old");
            if (hasNew) m_folder.makeFile("._file", AppleDouble + "new");
            EXPECT_EQ(copyOver("file", "target", "file"), 0);
            EXPECT_EQ(textOf(m_folder.path("target/file")), "new");
            EXPECT_EQ(textOf(m_folder.path("target/._file")), hasNew ? AppleDouble + "new" : "");
            EXPECT_EQ(namesIn(m_folder.path("target")).size(), hasNew ? 2U : 1U);
            ::unlink(m_folder.path("target/._file").c_str());
            ::unlink(m_folder.path("._file").c_str());
        }
    }
}

TEST_F(OverwritingCopy, ReplacesNoLockedItemAndNoneAroundIt) {
    m_folder.makeFile("target/tree/old/file", "old");
    Result<OpenItem> const old = openItemAtPath(m_folder.path("target/tree/old/file"), LinkAtEnd::IsNotFollowed);
    ASSERT_TRUE(old.hasValue());
    ASSERT_TRUE(setLock(old.value(), ItemLock::Locked).isDone());
    EXPECT_EQ(copyOver("tree", "target", "tree"), ItemIsLocked);
    EXPECT_EQ(copyOver("tree", "target/tree/old", "file"), ItemIsLocked);
    EXPECT_EQ(textOf(m_folder.path("target/tree/old/file")), "old");
    EXPECT_EQ(namesIn(m_folder.path("target")), Names{"tree"});
    ASSERT_TRUE(setLock(old.value(), ItemLock::Unlocked).isDone());
}

TEST_F(OverwritingCopy, ReplacesNeitherItselfNorWhatHoldsIt) {
    EXPECT_EQ(copyOver("tree", "", "tree"), EEXIST);
    EXPECT_EQ(copyOver("tree/inner/deep.txt", "", "tree"), EINVAL);
    EXPECT_EQ(copyOver("tree", "tree", "inner"), EINVAL);
    expectTree(m_folder.path("tree"));
    EXPECT_EQ(namesIn(m_folder.path()), Names{"tree"});
}

TEST_F(OverwritingCopy, LeavesAnItemThatTookThePlaceMeanwhile) {
    m_folder.makeFile("target/tree", "old");
    EXPECT_EQ(copyOver("tree", "target", "tree",
                       [&](OverwritingStep step) {
                           if (step != OverwritingStep::Copied) return;
                           ASSERT_EQ(::rename(m_folder.path("target/tree").c_str(), m_folder.path("old").c_str()), 0);
                           m_folder.makeFile("target/tree", "another");
                       }),
              ESTALE);
    EXPECT_EQ(textOf(m_folder.path("target/tree")), "another");
    EXPECT_EQ(textOf(m_folder.path("old")), "old");
    EXPECT_EQ(namesIn(m_folder.path("target")), Names{"tree"});
}

TEST_F(OverwritingCopy, FailsOnAFullVolumeAndLeavesTheOld) {
    m_folder.makeFolder("target");
    mountMemory(m_folder.path("target"), "size=64k");
    m_folder.makeFile("target/file", "old");
    m_folder.makeFile("file", std::string(std::size_t{1} << 20, 'x'));
    EXPECT_EQ(copyOver("file", "target", "file"), ENOSPC);
    EXPECT_EQ(textOf(m_folder.path("target/file")), "old");
    EXPECT_EQ(namesIn(m_folder.path("target")), Names{"file"});
    makeReadOnly(m_folder.path("target"));
    EXPECT_EQ(copyOver("tree", "target", "file"), EROFS);
}

} // namespace

} // namespace mac::test
