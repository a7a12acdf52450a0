#include "platform/system/items/OverwritingCopy.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/items/ItemLock.h"
#include "platform/system/items/ItemStatus.h"
#include "tests/platform/system/items/ItemTransfers.h"
#include "tests/support/Failures.h"
#include "tests/support/PrivateMounts.h"
#include <sys/syscall.h>
#include <thread>

namespace mac::test {

namespace {

using Names = std::vector<std::string>;

class OverwritingCopy : public PrivateMounts {
protected:
    OverwritingCopy() { makeTree(m_folder, "tree"); }

    // The system's error code of the failure; 0 on success.
    int copyOver(std::string_view path, std::string_view folder, std::string const& name,
                 OverwritingSteps const& steps = {}) const {
        return problemOf(path, folder, name, steps).error.code;
    }

    // The problem of the copy; its code is 0 on success.
    TransferProblem problemOf(std::string_view path, std::string_view folder, std::string const& name,
                              OverwritingSteps const& steps) const {
        Result<OpenItem> const item = openItemAtPath(m_folder.path(path), LinkAtEnd::IsNotFollowed);
        if (!item.hasValue()) return {.error = item.problem()};
        FileDescriptor const target = folderAt(m_folder.path(folder));
        Result<void, TransferProblem> const done =
            copyItemOver({.item = item.value(), .folder = target, .name = name}, steps);
        return done.isDone() ? TransferProblem() : done.problem();
    }

    // Saves a file as editors do: a new item takes the name.
    void save(std::string const& name, std::string const& text) const {
        m_folder.makeFile("saved", text);
        ASSERT_EQ(::rename(m_folder.path("saved").c_str(), m_folder.path(name).c_str()), 0);
    }

    // The name in the folder that a copy is exchanged under; empty if there is none.
    std::string temporaryIn(std::string const& folder) const {
        for (std::string const& name : namesIn(m_folder.path(folder)))
            if (parseTemporaryName(name) && !name.starts_with("._")) return name;
        return {};
    }

    // An item that stays whatever becomes of the process.
    void expectKept(std::string const& name) const {
        std::optional<ParsedTemporaryName> const parsed = parseTemporaryName(name);
        EXPECT_TRUE(parsed && parsed->mark == MarkOfNoItem) << name;
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
                           bool const isChecked = step == OverwritingStep::Exchanged;
                           EXPECT_TRUE(isChecked || step == OverwritingStep::NamesExchanged || found.empty());
                           found.emplace_back(step == OverwritingStep::Copied ? "copied"
                                              : isChecked                     ? "exchanged"
                                                                              : "names exchanged");
                       }),
              0);
    EXPECT_EQ(found, (Names{"copied", "names exchanged", "exchanged"}));
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

TEST_F(OverwritingCopy, KeepsWhatWasSavedUnderTheNameTwice) {
    m_folder.makeFile("target/file", "old");
    m_folder.makeFile("file", "new");
    TransferProblem const problem = problemOf("file", "target", "file", [&](OverwritingStep step) {
        if (step == OverwritingStep::Copied) save("target/file", "saved");
        if (step == OverwritingStep::NamesExchanged) save("target/file", "saved again");
    });
    EXPECT_EQ(problem.kind, TransferProblem::Kind::MovedWrongItem);
    EXPECT_EQ(problem.error.code, ESTALE);
    expectKept(problem.error.item);
    EXPECT_EQ(textOf(m_folder.path("target/file")), "saved again");
    EXPECT_EQ(textOf(m_folder.path("target/" + problem.error.item)), "saved");
    EXPECT_EQ(namesIn(m_folder.path("target")).size(), 2U);
}

TEST_F(OverwritingCopy, KeepsAnItemThatCannotGoBack) {
    m_folder.makeFile("target/tree/document", "old");
    TransferProblem const problem = problemOf("tree", "target", "tree", [&](OverwritingStep step) {
        if (step == OverwritingStep::Copied) {
            ASSERT_EQ(::rename(m_folder.path("target/tree").c_str(), m_folder.path("old").c_str()), 0);
            m_folder.makeFile("target/tree/document", "another");
        }
        if (step != OverwritingStep::NamesExchanged) return;
        ASSERT_EQ(::rename(m_folder.path("target/tree").c_str(), m_folder.path("copy").c_str()), 0);
    });
    EXPECT_EQ(problem.kind, TransferProblem::Kind::MovedWrongItem);
    expectKept(problem.error.item);
    EXPECT_EQ(textOf(m_folder.path("target/" + problem.error.item + "/document")), "another");
    EXPECT_EQ(textOf(m_folder.path("old/document")), "old");
    EXPECT_EQ(namesIn(m_folder.path("target")), Names{problem.error.item});
}

TEST_F(OverwritingCopy, MarksTheItemThatIsToGo) {
    m_folder.makeFile("target/file", "old");
    m_folder.makeFile("file", "new");
    FileDescriptor const old(::open(m_folder.path("target/file").c_str(), O_PATH | O_CLOEXEC));
    bool isMarked = false;
    EXPECT_EQ(copyOver("file", "target", "file",
                       [&](OverwritingStep) {
                           std::optional<ParsedTemporaryName> const name = parseTemporaryName(temporaryIn("target"));
                           ASSERT_TRUE(name.has_value());
                           isMarked = name->accepts(markOf(mac::statusOf(old).value()));
                           EXPECT_TRUE(isMarked);
                           mac::FileDescriptor const folder = folderAt(m_folder.path("target"));
                           Result<ItemStatus> const here = mac::statusOf(folder, temporaryIn("target"));
                           EXPECT_TRUE(here.hasValue() && name->accepts(markOf(here.value())));
                       }),
              0);
    EXPECT_TRUE(isMarked);
}

TEST_F(OverwritingCopy, MarksAnItemThatIsWrittenDuringTheCopy) {
    std::string const path = m_folder.makeFile("target/file", "old");
    m_folder.makeFile("file", "new");
    OpenItem const item = itemAt(m_folder.path("file"));
    OpenItem const old = itemAt(path);
    FileDescriptor const target = folderAt(m_folder.path("target"));
    if (!mac::statusOf(old.item).value().place.identity.isLasting()) GTEST_SKIP() << "no times of birth are kept here";
    bool isWritten = false;
    ItemTransfer const transfer{.item = item, .folder = target, .name = "file", .shouldContinue = [&] {
                                    isWritten = ::truncate(path.c_str(), 5) == 0;
                                    return true;
                                }};
    Result<void, TransferProblem> const done = copyItemOver(transfer, [&](OverwritingStep step) {
        if (step != OverwritingStep::Exchanged) return;
        std::optional<ParsedTemporaryName> const name = parseTemporaryName(temporaryIn("target"));
        EXPECT_TRUE(name && name->accepts(markOf(mac::statusOf(old.item).value())));
    });
    EXPECT_TRUE(done.isDone());
    EXPECT_TRUE(isWritten);
}

TEST_F(OverwritingCopy, GivesAnOldItemThatWasLockedMeanwhileItsNameBack) {
    m_folder.makeFile("target/tree/file", "old");
    m_folder.makeFile("target/._tree", AppleDouble);
    std::optional<OpenItem> locked;
    TransferProblem const problem = problemOf("tree", "target", "tree", [&](OverwritingStep step) {
        if (step != OverwritingStep::Exchanged) return;
        locked = itemAt(m_folder.path("target/" + temporaryIn("target") + "/file"));
        ASSERT_TRUE(setLock(*locked, ItemLock::Locked).isDone());
    });
    EXPECT_EQ(problem.kind, TransferProblem::Kind::NotDone);
    EXPECT_EQ(problem.error.code, ItemIsLocked);
    EXPECT_EQ(textOf(m_folder.path("target/tree/file")), "old");
    EXPECT_EQ(textOf(m_folder.path("target/._tree")), AppleDouble);
    EXPECT_EQ(namesIn(m_folder.path("target")), (Names{"._tree", "tree"}));
    ASSERT_TRUE(locked && setLock(*locked, ItemLock::Unlocked).isDone());
}

// Refuses the removal of names from the step on.
TEST_F(OverwritingCopy, ChangesNothingWhereTheOldItemCannotBeRemoved) {
    m_folder.makeFile("target/file", "old");
    m_folder.makeFile("target/._file", AppleDouble + "old");
    m_folder.makeFile("file", "new");
    m_folder.makeFile("._file", AppleDouble + "new");
    std::thread([&] {
        TransferProblem const problem = problemOf("file", "target", "file", [&](OverwritingStep step) {
            if (step == OverwritingStep::Exchanged) refuseCallOnThisThread(SYS_unlinkat, EACCES);
        });
        EXPECT_EQ(problem.kind, TransferProblem::Kind::NotDone);
        EXPECT_EQ(problem.error.code, EACCES);
    }).join();
    EXPECT_EQ(textOf(m_folder.path("target/file")), "old");
    EXPECT_EQ(textOf(m_folder.path("target/._file")), AppleDouble + "old");
}

// The old item, which cannot be removed, gets its name back, but the copy that had it, and perhaps the copy's sidecar,
// cannot move on.
TEST_F(OverwritingCopy, LeavesTheOldItemItsSidecarWhereTheCopyStaysAside) {
    m_folder.makeFile("file", "new");
    m_folder.makeFile("._file", AppleDouble + "new");
    // The sidecars are exchanged first.
    for (unsigned const refused : {1U, 2U}) {
        SCOPED_TRACE(refused);
        m_folder.makeFile("target/tree/file", "old");
        m_folder.makeFile("target/._tree", AppleDouble + "old");
        std::optional<OpenItem> locked;
        unsigned placed = 0;
        std::thread([&] {
            refuseCallOnThisThread(SYS_renameat2, EINVAL);
            TransferProblem const problem = problemOf("file", "target", "tree", [&](OverwritingStep step) {
                if (step == OverwritingStep::Exchanged) {
                    locked = itemAt(m_folder.path("target/" + temporaryIn("target") + "/file"));
                    ASSERT_TRUE(setLock(*locked, ItemLock::Locked).isDone());
                }
                bool const isBack = step == OverwritingStep::CopyPlaced && locked && ++placed == refused;
                if (isBack) refuseCallOnThisThread(SYS_linkat, EIO);
            });
            EXPECT_EQ(problem.kind, TransferProblem::Kind::NotDone);
            EXPECT_EQ(problem.error.code, ItemIsLocked);
            EXPECT_EQ(problem.strandedName, std::nullopt);
        }).join();
        EXPECT_EQ(placed, 2U);
        EXPECT_EQ(textOf(m_folder.path("target/tree/file")), "old");
        EXPECT_EQ(textOf(m_folder.path("target/._tree")), AppleDouble + "old");
        EXPECT_EQ(namesIn(m_folder.path("target")), (Names{"._tree", "tree"}));
        ASSERT_TRUE(locked && setLock(*locked, ItemLock::Unlocked).isDone());
    }
}

TEST_F(OverwritingCopy, TellsWhereAnItemIsThatCouldNotBePlacedStepByStep) {
    using enum TransferProblem::Kind;
    for (OverwritingStep const taken : {OverwritingStep::MovedAway, OverwritingStep::CopyPlaced}) {
        bool const isName = taken == OverwritingStep::MovedAway;
        SCOPED_TRACE(isName ? "the name is taken" : "the temporary name is taken");
        m_folder.makeFile("target/file", "old");
        m_folder.makeFile("file", "new");
        std::string temporary;
        TransferProblem problem;
        withRefusedCall(SYS_renameat2, EINVAL, [&] {
            problem = problemOf("file", "target", "file", [&](OverwritingStep step) {
                if (step == OverwritingStep::Copied) temporary = temporaryIn("target");
                if (step == taken) m_folder.makeFile("target/" + (isName ? "file" : temporary), "another");
            });
        });
        EXPECT_EQ(problem.kind, isName ? MovedWrongItem : OriginalStays);
        EXPECT_EQ(problem.error.code, EEXIST);
        expectKept(problem.error.item);
        EXPECT_EQ(problem.strandedName, problem.error.item);
        EXPECT_EQ(textOf(m_folder.path("target/" + problem.error.item)), "old");
        EXPECT_EQ(textOf(m_folder.path("target/file")), isName ? "another" : "new");
        EXPECT_EQ(textOf(m_folder.path("target/" + temporary)), isName ? "" : "another");
        EXPECT_EQ(namesIn(m_folder.path("target")).size(), isName ? 2U : 3U);
        for (std::string const& name : namesIn(m_folder.path("target")))
            ::unlink(m_folder.path("target/" + name).c_str());
    }
}

TEST_F(OverwritingCopy, TakesTheSidecarsAlongThoughTheOldItemStays) {
    m_folder.makeFile("target/file", "old");
    m_folder.makeFile("target/._file", AppleDouble + "old");
    m_folder.makeFile("file", "new");
    m_folder.makeFile("._file", AppleDouble + "new");
    TransferProblem problem;
    withRefusedCall(SYS_renameat2, EINVAL, [&] {
        std::string temporary;
        problem = problemOf("file", "target", "file", [&](OverwritingStep step) {
            if (step == OverwritingStep::Copied) temporary = temporaryIn("target");
            if (step == OverwritingStep::CopyPlaced) m_folder.makeFile("target/" + temporary, "another");
        });
    });
    EXPECT_EQ(problem.kind, TransferProblem::Kind::OriginalStays);
    EXPECT_EQ(textOf(m_folder.path("target/._file")), AppleDouble + "new");
    EXPECT_EQ(textOf(m_folder.path("target/._" + problem.error.item)), AppleDouble + "old");
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
