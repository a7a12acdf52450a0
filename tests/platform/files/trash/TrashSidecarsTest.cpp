#include "tests/platform/files/trash/TrashHome.h"
#include "tests/support/Environment.h"
#include "tests/support/Failures.h"
#include <cerrno>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

std::string const EmptyAppleDouble("\x00\x05\x16\x07\x00\x02\x00\x00Mac OS X        \x00\x00", 26);
// More than any operation on the trash needs at once.
constexpr unsigned ManyFiles = 40;

template <class T>
std::optional<TrashProblem::Kind> kindOf(Result<T, TrashProblem> const& result) {
    if (result.hasValue()) return std::nullopt;
    EXPECT_FALSE(result.problem().text().empty());
    return result.problem().kind;
}

// A file with an AppleDouble sidecar, both an ordinary user's.
class TrashWithSidecar : public testing::Test {
protected:
    void SetUp() override {
        OrdinaryUser::own(m_home.path());
        OrdinaryUser::own(m_home.folder.makeFolder("a"));
        makeItem();
    }

    void makeItem() const {
        OrdinaryUser::own(m_home.folder.makeFile("a/file", "x"));
        OrdinaryUser::own(m_home.folder.makeFile("a/._file", EmptyAppleDouble));
    }
    // Whether the item lies in the folder with its sidecar; fails the test if only one of them does.
    bool isIn(std::string const& folder) const {
        Names const names = namesIn(folder);
        if (names.empty()) return false;
        EXPECT_EQ(names, (Names{"._file", "file"})) << folder;
        return true;
    }
    void expectInPlace() const {
        EXPECT_TRUE(isIn(m_home.path("a")));
        EXPECT_FALSE(isIn(m_home.files()));
        EXPECT_EQ(namesIn(m_home.information()), Names());
    }
    void expectInTrash() const {
        EXPECT_FALSE(isIn(m_home.path("a")));
        EXPECT_TRUE(isIn(m_home.files()));
        EXPECT_EQ(namesIn(m_home.information()), (Names{"._file.trashinfo", "file.trashinfo"}));
    }
    TrashedItem trash() const { return moveToTrash(m_file).takeValue(); }

    TrashHome const m_home{};
    std::string const m_file = m_home.path("a/file");
    std::string const m_sidecar = m_home.path("a/._file");
};

TEST_F(TrashWithSidecar, GoesThereAndBackWithIt) {
    OrdinaryUser const user;
    TrashedItem const item = trash();
    expectInTrash();
    ASSERT_EQ(trashedItems().size(), 1U);
    Result<std::string, TrashProblem> const back = putBack(item);
    ASSERT_TRUE(back.hasValue()) << back.problem().text();
    EXPECT_EQ(back.value(), m_file);
    expectInPlace();
}

TEST_F(TrashWithSidecar, StaysWhereTheSidecarIsClosed) {
    ASSERT_EQ(::chmod(m_sidecar.c_str(), 0), 0);
    OrdinaryUser const user;
    EXPECT_EQ(kindOf(moveToTrash(m_file)), TrashProblem::NotAllowed);
    expectInPlace();
}

TEST_F(TrashWithSidecar, StaysWhereTheSidecarIsOpenToItsOtherOwnerAlone) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make somebody else's file";
    ASSERT_EQ(::chmod(m_sidecar.c_str(), 0600), 0);
    ASSERT_EQ(::chown(m_sidecar.c_str(), 0, 0), 0);
    OrdinaryUser const user;
    EXPECT_EQ(kindOf(moveToTrash(m_file)), TrashProblem::NotAllowed);
    expectInPlace();
}

TEST_F(TrashWithSidecar, StaysInTheTrashWhereTheSidecarIsClosed) {
    OrdinaryUser const user;
    TrashedItem const item = trash();
    ASSERT_EQ(::chmod(m_home.files("._file").c_str(), 0), 0);
    EXPECT_EQ(kindOf(putBack(item)), TrashProblem::NotAllowed);
    expectInTrash();
}

TEST_F(TrashWithSidecar, StaysInTheTrashWhereTheSidecarsRecordIsClosed) {
    OrdinaryUser const user;
    TrashedItem const item = trash();
    ASSERT_EQ(::chmod(m_home.information("._file.trashinfo").c_str(), 0), 0);
    EXPECT_EQ(kindOf(putBack(item)), TrashProblem::NotAllowed);
    expectInTrash();
}

TEST_F(TrashWithSidecar, StaysInTheTrashWhereTheSidecarsNameIsTaken) {
    TrashedItem const item = trash();
    m_home.folder.makeFile("a/._file", "another");
    Result<std::string, TrashProblem> const back = putBack(item);
    EXPECT_EQ(kindOf(back), TrashProblem::NameTaken);
    EXPECT_TRUE(back.problem().text().ends_with(m_sidecar)) << back.problem().text();
    EXPECT_EQ(textOf(m_sidecar), "another");
    EXPECT_FALSE(isThere(m_file));
    EXPECT_TRUE(isIn(m_home.files()));
}

TEST_F(TrashWithSidecar, GoesIntoTheTrashAgainWhenTheSidecarCannotFollow) {
    TrashedItem const item = trash();
    TrashSteps const steps = [&](TrashStep step) {
        if (step == TrashStep::ItemPutBack) m_home.folder.makeFile("a/._file", "another");
    };
    EXPECT_EQ(kindOf(putBack(item, steps)), TrashProblem::NameTaken);
    EXPECT_EQ(namesIn(m_home.path("a")), Names{"._file"});
    EXPECT_TRUE(isIn(m_home.files()));
    EXPECT_EQ(namesIn(m_home.information()).size(), 2U);
}

TEST_F(TrashWithSidecar, IsSaidToBeBackWhereItCannotGoIntoTheTrashAgain) {
    TrashedItem const item = trash();
    TrashSteps const steps = [&](TrashStep step) {
        if (step != TrashStep::ItemPutBack) return;
        m_home.folder.makeFile("a/._file", "another");
        m_home.folder.makeFile("data/Trash/files/file", "another");
    };
    Result<std::string, TrashProblem> const back = putBack(item, steps);
    ASSERT_FALSE(back.hasValue());
    EXPECT_TRUE(back.problem().text().ends_with("; the item is now at " + m_file)) << back.problem().text();
    EXPECT_EQ(textOf(m_file), "x");
}

TEST_F(TrashWithSidecar, KeepsItWhereTheRecordStaysAndItCannotGoIntoTheTrashAgain) {
    TrashedItem const item = trash();
    std::thread([&] {
        TrashSteps const steps = [&](TrashStep step) {
            if (step != TrashStep::ItemPutBack) return;
            m_home.folder.makeFile("data/Trash/files/file", "another");
            refuseCallOnThisThread(SYS_unlinkat, EIO);
            refuseCallOnThisThread(SYS_renameat, EIO);
        };
        Result<std::string, TrashProblem> const back = putBack(item, steps);
        ASSERT_FALSE(back.hasValue());
        EXPECT_TRUE(back.problem().text().ends_with("; the item is now at " + m_file)) << back.problem().text();
    }).join();
    EXPECT_TRUE(isIn(m_home.path("a")));
    EXPECT_EQ(namesIn(m_home.files()), Names{"file"});
}

TEST_F(TrashWithSidecar, ComesBackToItWhereTheRecordStaysAndItCannotFollow) {
    TrashedItem const item = trash();
    std::thread([&] {
        bool isItemBack = false;
        TrashSteps const steps = [&](TrashStep step) {
            if (step == TrashStep::Renamed && isItemBack) m_home.folder.makeFile("data/Trash/files/._file", "another");
            if (step != TrashStep::ItemPutBack) return;
            isItemBack = true;
            refuseCallOnThisThread(SYS_unlinkat, EIO);
            refuseCallOnThisThread(SYS_renameat, EIO);
        };
        Result<std::string, TrashProblem> const back = putBack(item, steps);
        ASSERT_FALSE(back.hasValue());
        EXPECT_TRUE(back.problem().text().ends_with("; the item is now at " + m_file)) << back.problem().text();
    }).join();
    EXPECT_TRUE(isIn(m_home.path("a")));
    EXPECT_EQ(namesIn(m_home.files()), Names{"._file"});
}

TEST_F(TrashWithSidecar, GoesIntoTheTrashAgainWithItWhereTheRecordStays) {
    TrashedItem const item = trash();
    std::thread([&] {
        TrashSteps const steps = [](TrashStep step) {
            if (step != TrashStep::ItemPutBack) return;
            refuseCallOnThisThread(SYS_unlinkat, EIO);
            refuseCallOnThisThread(SYS_renameat, EIO);
        };
        EXPECT_EQ(kindOf(putBack(item, steps)), TrashProblem::Other);
    }).join();
    expectInTrash();
}

TEST_F(TrashWithSidecar, IsErasedAlsoWhereTheSidecarIsClosed) {
    OrdinaryUser const user;
    trash();
    ASSERT_EQ(::chmod(m_home.files("._file").c_str(), 0), 0);
    EmptiedTrash const emptied = emptyTrash();
    EXPECT_EQ(emptied.left, 0U) << emptied.firstProblem.text();
    EXPECT_EQ(namesIn(m_home.files()), Names());
    EXPECT_EQ(namesIn(m_home.information()), Names());
}

TEST_F(TrashWithSidecar, GoesWholeOrNotAtAllWhenTooManyFilesAreOpen) {
    unsigned failures = 0;
    for (unsigned more = 0; more < ManyFiles; ++more) {
        std::optional<OpenFilesLimit> limit(more);
        Result<TrashedItem, TrashProblem> const trashed = moveToTrash(m_file);
        limit.reset();
        SCOPED_TRACE(std::to_string(more) + " more files");
        if (!trashed.hasValue()) {
            ++failures;
            expectInPlace();
            continue;
        }
        expectInTrash();
        ASSERT_TRUE(putBack(trashed.value()).hasValue());
    }
    EXPECT_GT(failures, 0U);
    EXPECT_LT(failures, ManyFiles);
}

TEST_F(TrashWithSidecar, ComesBackWholeOrNotAtAllWhenTooManyFilesAreOpen) {
    unsigned failures = 0;
    for (unsigned more = 0; more < ManyFiles; ++more) {
        TrashedItem const item = trash();
        std::optional<OpenFilesLimit> limit(more);
        Result<std::string, TrashProblem> const back = putBack(item);
        limit.reset();
        SCOPED_TRACE(std::to_string(more) + " more files");
        if (back.hasValue()) {
            expectInPlace();
            continue;
        }
        ++failures;
        expectInTrash();
        ASSERT_TRUE(putBack(item).hasValue());
    }
    EXPECT_GT(failures, 0U);
    EXPECT_LT(failures, ManyFiles);
}

TEST_F(TrashWithSidecar, IsEmptiedOrSaysWhyNotWhenTooManyFilesAreOpen) {
    unsigned failures = 0;
    for (unsigned more = 0; more < ManyFiles; ++more) {
        trash();
        std::optional<OpenFilesLimit> limit(more);
        EmptiedTrash const emptied = emptyTrash();
        limit.reset();
        SCOPED_TRACE(std::to_string(more) + " more files");
        bool const isEmpty = namesIn(m_home.files()).empty();
        EXPECT_EQ(emptied.left == 0, isEmpty);
        if (!isEmpty) {
            ++failures;
            emptyTrash();
        }
        EXPECT_EQ(namesIn(m_home.files()), Names());
        makeItem();
    }
    EXPECT_GT(failures, 0U);
    EXPECT_LT(failures, ManyFiles);
}

TEST_F(TrashWithSidecar, IsNotCalledEmptyWhereTheTrashIsClosed) {
    OrdinaryUser const user;
    trash();
    for (std::string const& closed : {m_home.path("data"), m_home.path("data/Trash"), m_home.files()}) {
        ASSERT_EQ(::chmod(closed.c_str(), 0), 0);
        EmptiedTrash const emptied = emptyTrash();
        EXPECT_EQ(emptied.removed, 0U) << closed;
        EXPECT_EQ(emptied.left, 1U) << closed;
        EXPECT_EQ(emptied.firstProblem.kind, TrashProblem::NotAllowed) << closed;
        ASSERT_EQ(::chmod(closed.c_str(), 0700), 0);
    }
    expectInTrash();
}

TEST_F(TrashWithSidecar, IsNotCalledErasedWhereItCannotBeLookedAt) {
    OrdinaryUser const user;
    trash();
    ASSERT_EQ(::chmod(m_home.files().c_str(), 0600), 0);
    EmptiedTrash const emptied = emptyTrash();
    EXPECT_EQ(emptied.removed, 0U);
    EXPECT_EQ(emptied.left, 1U) << "the trash cannot be listed";
    EXPECT_EQ(emptied.firstProblem.kind, TrashProblem::NotAllowed);
    ASSERT_EQ(::chmod(m_home.files().c_str(), 0700), 0);
    expectInTrash();
}

TEST_F(TrashWithSidecar, IsThereAlsoIfItCannotBeLookedAtThen) {
    ASSERT_EQ(::unlink(m_sidecar.c_str()), 0);
    Result<TrashedItem, TrashProblem> trashed = TrashProblem();
    std::thread([&] {
        trashed = moveToTrash(m_file, [](TrashStep step) {
            if (step == TrashStep::Renamed) refuseCallOnThisThread(SYS_statx, EIO);
        });
    }).join();
    ASSERT_TRUE(trashed.hasValue()) << trashed.problem().text();
    EXPECT_EQ(trashed.value().path, m_home.files("file"));
    EXPECT_TRUE(isThere(m_home.files("file")));
    EXPECT_TRUE(isThere(m_home.information("file.trashinfo")));
    EXPECT_TRUE(putBack(trashed.value()).hasValue()) << "it is known by its identity";
}

} // namespace
} // namespace mac::test
