#include "tests/platform/files/trash/TrashHome.h"
#include "tests/support/Failures.h"
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

// Runs the action in a process of its own, which is killed when it has taken the step.
void runUntilKilled(TrashStep last, std::function<void(TrashSteps const&)> const& action) {
    pid_t const child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        action([last](TrashStep step) {
            if (step == last) ::raise(SIGKILL);
        });
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "it never came to the step";
}

class TrashBetweenSteps : public testing::Test {
protected:
    // Expects a file to stay that takes the item's place at the moment.
    void expectAnotherToStay(TrashStep moment) {
        std::string const file = m_home.folder.makeFile("a/file", "old");
        TrashSteps const steps = [&](TrashStep step) {
            if (step != moment) return;
            ::rename(file.c_str(), m_home.path("moved").c_str());
            m_home.folder.makeFile("a/file", "new");
        };
        Result<TrashedItem, TrashProblem> const result = moveToTrash(file, steps);
        ASSERT_FALSE(result.hasValue());
        EXPECT_EQ(result.problem().kind, TrashProblem::Changed);
        EXPECT_EQ(textOf(file), "new");
        EXPECT_EQ(textOf(m_home.path("moved")), "old");
        EXPECT_TRUE(namesIn(m_home.files()).empty());
        EXPECT_TRUE(namesIn(m_home.information()).empty());
    }

    TrashHome const m_home{};
};

TEST_F(TrashBetweenSteps, KilledBeforeTheMoveItemsAreWhereTheyWere) {
    std::string const file = m_home.folder.makeFile("a/file", "x");
    runUntilKilled(TrashStep::InformationWritten, [&](TrashSteps const& steps) { (void)moveToTrash(file, steps); });
    EXPECT_EQ(textOf(file), "x");
    EXPECT_TRUE(trashedItems().empty());
    // And they can still be trashed.
    Result<TrashedItem, TrashProblem> const result = moveToTrash(file);
    ASSERT_TRUE(result.hasValue());
    EXPECT_EQ(textOf(result.value().path), "x");
    ASSERT_TRUE(putBack(result.value()).hasValue());
}

TEST_F(TrashBetweenSteps, KilledAfterTheMoveItemsAreInTheTrash) {
    for (TrashStep const step : {TrashStep::ItemMoved, TrashStep::AllMoved}) {
        std::string const file = m_home.folder.makeFile("a/file", "x");
        runUntilKilled(step, [&](TrashSteps const& steps) { (void)moveToTrash(file, steps); });
        EXPECT_FALSE(isThere(file));
        std::vector<TrashedItem> const items = trashedItems();
        ASSERT_EQ(items.size(), 1U);
        EXPECT_EQ(items[0].originalPath, file);
        EXPECT_TRUE(items[0].deletionTime.has_value());
        ASSERT_TRUE(putBack(items[0]).hasValue());
        EXPECT_EQ(textOf(file), "x");
        EXPECT_TRUE(namesIn(m_home.information()).empty());
    }
}

TEST_F(TrashBetweenSteps, KilledBeforeTheFileBesideItFollowsNothingIsLost) {
    std::string const appleDouble("\x00\x05\x16\x07\x00\x02\x00\x00Mac OS X        \x00\x00", 26);
    std::string const file = m_home.folder.makeFile("a/file", "x");
    m_home.folder.makeFile("a/._file", appleDouble);
    runUntilKilled(TrashStep::ItemMoved, [&](TrashSteps const& steps) { (void)moveToTrash(file, steps); });
    EXPECT_EQ(namesIn(m_home.path("a")), Names{"._file"});
    std::vector<TrashedItem> const items = trashedItems();
    ASSERT_EQ(items.size(), 1U);
    ASSERT_TRUE(putBack(items[0]).hasValue());
    EXPECT_EQ(namesIn(m_home.path("a")), (Names{"._file", "file"}));
}

TEST_F(TrashBetweenSteps, KilledOnTheWayBackItemsAreBack) {
    std::string const file = m_home.folder.makeFile("a/file", "x");
    TrashedItem const item = moveToTrash(file).takeValue();
    runUntilKilled(TrashStep::ItemPutBack, [&](TrashSteps const& steps) { (void)putBack(item, steps); });
    EXPECT_EQ(textOf(file), "x");
    EXPECT_TRUE(trashedItems().empty());
}

TEST_F(TrashBetweenSteps, KilledWhileErasingNothingIsListedTwice) {
    TrashedItem const item = moveToTrash(m_home.folder.makeFile("a/file", "x")).takeValue();
    runUntilKilled(TrashStep::ItemErased, [&](TrashSteps const& steps) { emptyTrash({}, steps); });
    EXPECT_TRUE(trashedItems().empty());
    EXPECT_EQ(putBack(item).problem().kind, TrashProblem::NotThere);
}

TEST_F(TrashBetweenSteps, AnErasedItemWhoseRecordStaysIsTold) {
    (void)moveToTrash(m_home.folder.makeFile("a/file", "x"));
    std::thread([&] {
        EmptiedTrash const emptied = emptyTrash({}, [](TrashStep step) {
            if (step != TrashStep::ItemErased) return;
            refuseCallOnThisThread(SYS_unlinkat, EIO);
            refuseCallOnThisThread(SYS_renameat, EIO);
        });
        EXPECT_EQ(emptied.removed, 0U);
        EXPECT_EQ(emptied.left, 1U);
        EXPECT_EQ(emptied.firstProblem.error.code, EIO);
    }).join();
    EXPECT_TRUE(isThere(m_home.information("file.trashinfo")));
}

TEST_F(TrashBetweenSteps, ErasingEndsWhenItIsNoMoreWanted) {
    for (std::string const name : {"a", "b", "c"})
        ASSERT_TRUE(moveToTrash(m_home.folder.makeFile(name, "x")).hasValue());
    bool isWanted = true;
    TrashSteps const steps = [&](TrashStep step) {
        if (step == TrashStep::ItemErased) isWanted = false;
    };
    EmptiedTrash const emptied = emptyTrash([&] { return isWanted; }, steps);
    EXPECT_EQ(emptied.removed, 1U);
    EXPECT_EQ(emptied.left, 0U) << "nothing failed";
    EXPECT_EQ(trashedItems().size(), 2U);
}

TEST_F(TrashBetweenSteps, ErasingEndsAmongWhatAFolderHolds) {
    m_home.folder.makeFile("folder/a", "x");
    m_home.folder.makeFile("folder/b", "x");
    m_home.folder.makeFile("folder/c", "x");
    ASSERT_TRUE(moveToTrash(m_home.path("folder")).hasValue());
    int times = 0;
    EmptiedTrash const emptied = emptyTrash([&] { return ++times == 1; });
    EXPECT_EQ(emptied.removed, 0U);
    EXPECT_EQ(emptied.left, 0U);
    EXPECT_EQ(times, 2) << "not asked again after a no";
    EXPECT_EQ(namesIn(m_home.files("folder")).size(), 2U);
    EXPECT_TRUE(isThere(m_home.information("folder.trashinfo"))) << "it can be put back";
}

TEST_F(TrashBetweenSteps, AnItemThatIsReplacedAtTheLastMomentStays) {
    expectAnotherToStay(TrashStep::InformationWritten);
}

TEST_F(TrashBetweenSteps, WhatTakesThePlaceOfAnItemAfterTheLastLookComesBack) {
    expectAnotherToStay(TrashStep::Checked);
}

TEST_F(TrashBetweenSteps, WhatCannotComeBackStaysInTheTrashAndTheFailureSaysWhere) {
    std::string const file = m_home.folder.makeFile("a/file", "old");
    TrashSteps const steps = [&](TrashStep step) {
        if (step == TrashStep::Checked) ::rename(file.c_str(), m_home.path("moved").c_str());
        if (step == TrashStep::Checked) m_home.folder.makeFile("a/file", "another's");
        if (step == TrashStep::Renamed) m_home.folder.makeFile("a/file", "newer");
    };
    Result<TrashedItem, TrashProblem> const result = moveToTrash(file, steps);
    ASSERT_FALSE(result.hasValue());
    EXPECT_EQ(result.problem().kind, TrashProblem::Changed);
    EXPECT_TRUE(result.problem().text().ends_with(m_home.files("file"))) << result.problem().text();
    EXPECT_EQ(textOf(m_home.path("moved")), "old");
    EXPECT_EQ(textOf(file), "newer");
    EXPECT_EQ(textOf(m_home.files("file")), "another's");
    ASSERT_EQ(trashedItems().size(), 1U);
    EXPECT_EQ(trashedItems()[0].originalPath, file);
}

TEST_F(TrashBetweenSteps, WhatWasPutBackInsteadOfAnItemIsNamed) {
    std::string const file = m_home.folder.makeFile("a/file", "old");
    TrashedItem const item = moveToTrash(file).takeValue();
    TrashSteps const steps = [&](TrashStep step) {
        if (step == TrashStep::Checked) ::rename(item.path.c_str(), m_home.path("moved").c_str());
        if (step == TrashStep::Checked) m_home.folder.makeFile("data/Trash/files/file", "another's");
        if (step == TrashStep::Renamed) m_home.folder.makeFile("data/Trash/files/file", "newer");
    };
    Result<std::string, TrashProblem> const result = putBack(item, steps);
    ASSERT_FALSE(result.hasValue());
    EXPECT_EQ(result.problem().kind, TrashProblem::Changed);
    EXPECT_TRUE(result.problem().text().ends_with(file)) << result.problem().text();
    EXPECT_EQ(textOf(file), "another's");
    EXPECT_EQ(textOf(item.path), "newer");
}

TEST_F(TrashBetweenSteps, AFileThatTakesTheNameAtTheLastMomentStays) {
    std::string const file = m_home.folder.makeFile("a/file", "mine");
    bool isFirst = true;
    TrashSteps const steps = [&](TrashStep step) {
        if (step != TrashStep::InformationWritten || !std::exchange(isFirst, false)) return;
        m_home.folder.makeFile("data/Trash/files/file", "another's");
    };
    Result<TrashedItem, TrashProblem> const result = moveToTrash(file, steps);
    ASSERT_TRUE(result.hasValue());
    EXPECT_EQ(textOf(m_home.files("file")), "another's");
    EXPECT_EQ(textOf(result.value().path), "mine");
    EXPECT_EQ(namesIn(m_home.information()).size(), 1U);
}

TEST_F(TrashBetweenSteps, AnItemComesBackWhenTheFileBesideItCannotFollow) {
    std::string const appleDouble("\x00\x05\x16\x07\x00\x02\x00\x00Mac OS X        \x00\x00", 26);
    std::string const file = m_home.folder.makeFile("a/file", "x");
    m_home.folder.makeFile("a/._file", appleDouble);
    TrashSteps const steps = [&](TrashStep step) {
        if (step != TrashStep::ItemMoved) return;
        ::rename(m_home.path("a/._file").c_str(), m_home.path("moved").c_str());
        m_home.folder.makeFile("a/._file", "new");
    };
    Result<TrashedItem, TrashProblem> const result = moveToTrash(file, steps);
    ASSERT_FALSE(result.hasValue());
    EXPECT_EQ(result.problem().kind, TrashProblem::Changed);
    EXPECT_EQ(textOf(file), "x");
    EXPECT_EQ(textOf(m_home.path("a/._file")), "new");
    EXPECT_TRUE(namesIn(m_home.files()).empty());
    EXPECT_TRUE(namesIn(m_home.information()).empty());
}

TEST_F(TrashBetweenSteps, AnItemWhosePlaceIsTakenStaysInTheTrashWhenTheFileBesideItCannotFollow) {
    std::string const appleDouble("\x00\x05\x16\x07\x00\x02\x00\x00Mac OS X        \x00\x00", 26);
    std::string const file = m_home.folder.makeFile("a/file", "x");
    m_home.folder.makeFile("a/._file", appleDouble);
    TrashSteps const steps = [&](TrashStep step) {
        if (step != TrashStep::ItemMoved) return;
        m_home.folder.makeFile("a/file", "new");
        m_home.folder.makeFile("data/Trash/files/._file", "another's");
    };
    Result<TrashedItem, TrashProblem> const result = moveToTrash(file, steps);
    ASSERT_FALSE(result.hasValue());
    EXPECT_TRUE(result.problem().text().ends_with(m_home.files("file"))) << result.problem().text();
    EXPECT_EQ(textOf(m_home.files("file")), "x");
    EXPECT_EQ(textOf(file), "new");
    EXPECT_EQ(textOf(m_home.path("a/._file")), appleDouble);
    EXPECT_EQ(namesIn(m_home.information()), Names{"file.trashinfo"});
}

TEST_F(TrashBetweenSteps, AnItemGoesAloneWhenTheFileBesideItGoesAway) {
    std::string const appleDouble("\x00\x05\x16\x07\x00\x02\x00\x00Mac OS X        \x00\x00", 26);
    std::string const file = m_home.folder.makeFile("a/file", "x");
    m_home.folder.makeFile("a/._file", appleDouble);
    TrashSteps const steps = [&](TrashStep step) {
        if (step == TrashStep::ItemMoved) ::unlink(m_home.path("a/._file").c_str());
    };
    EXPECT_TRUE(moveToTrash(file, steps).hasValue());
    EXPECT_EQ(namesIn(m_home.files()), Names{"file"});
    EXPECT_EQ(namesIn(m_home.information()), Names{"file.trashinfo"});
}

} // namespace
} // namespace mac::test
