#include "tests/platform/system/walker/Rescan.h"
#include "platform/system/LongPath.h"
#include "tests/platform/system/walker/Walk.h"
#include "tests/support/Environment.h"
#include "tests/support/OrdinaryUser.h"
#include <algorithm>
#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

namespace {

using Found = std::vector<std::string>;

class Rescans : public testing::Test {
protected:
    void SetUp() override {
        FileDescriptor const folder = openPath(m_folder.path(), O_RDONLY | O_DIRECTORY).takeValue();
        if (!timesTellChanges(volumeIdentityOf(folder).value()))
            GTEST_SKIP() << "the times on the file system of " << m_folder.path() << " cannot be relied on";
    }

    VolumeWalkRequest request() const { return {.roots = {m_folder.path()}}; }
    WalkResult rescan() { return m_rescan.walk(request()); }
    void expectSameAsFullWalk(WalkResult const& again) const {
        WalkResult const full = walk(request());
        EXPECT_EQ(again.paths, full.paths);
        EXPECT_EQ(again.progress.packagesFound, full.progress.packagesFound);
        EXPECT_EQ(again.progress.foldersVisited, full.progress.foldersVisited);
        EXPECT_EQ(again.progress.unreadableFolders, full.progress.unreadableFolders);
    }
    void rename(std::string const& from, std::string const& to) const {
        ASSERT_EQ(::rename(m_folder.path(from).c_str(), m_folder.path(to).c_str()), 0);
    }

    TemporaryFolder const m_folder{};
    Rescan m_rescan{};
};

} // namespace

TEST_F(Rescans, ReadNothingThatDidNotChange) {
    makeRandomTree(m_folder.path(), 1);
    WalkResult const first = rescan();
    ASSERT_GT(first.paths.size(), 10U);
    ASSERT_GT(first.progress.listsRead, 50U);
    for (int i = 0; i < 3; ++i) {
        WalkResult const again = rescan();
        EXPECT_EQ(again.progress.listsRead, 0U);
        expectSameAsFullWalk(again);
    }
}

TEST_F(Rescans, BeginWithWhatTheLastProgramLeft) {
    makeRandomTree(m_folder.path(), 2);
    rescan();
    m_rescan.restart();
    WalkResult const again = rescan();
    EXPECT_EQ(again.progress.listsRead, 0U);
    expectSameAsFullWalk(again);
}

TEST_F(Rescans, FindSubtreesThatAreTooSmallToBeOpenedAndThoseThatAreNot) {
    std::string path = "deep";
    for (int i = 0; i < 35; ++i)
        path += "/" + std::string(100, 'n');
    m_folder.makeFolder(path + "/A.app");
    for (int i = 0; i < 200; ++i)
        m_folder.makeFolder("wide/" + std::to_string(i) + "/a/b/c/" + std::to_string(i) + ".app");
    WalkResult const first = rescan();
    WalkResult const again = rescan();
    EXPECT_EQ(again.progress.listsRead, 0U);
    EXPECT_EQ(again.paths.size(), 201U);
    EXPECT_EQ(again.paths, first.paths);
}

TEST_F(Rescans, ReadOnlyTheFolderThatChanged) {
    for (int i = 0; i < 50; ++i)
        m_folder.makeFolder("a/" + std::to_string(i) + "/b/c/A.app");
    rescan();
    m_folder.makeFolder("a/7/b/c/B.app");
    WalkResult const again = rescan();
    EXPECT_EQ(again.progress.listsRead, 1U);
    EXPECT_EQ(again.paths.size(), 51U);
    expectSameAsFullWalk(again);
}

TEST_F(Rescans, KnowTheRestBelowAFolderThatChanged) {
    for (int i = 0; i < 50; ++i)
        m_folder.makeFolder("a/" + std::to_string(i) + "/b/c/A.app");
    rescan();
    m_folder.makeFile("file", "");
    m_folder.makeFile("a/file", "");
    WalkResult const again = rescan();
    EXPECT_EQ(again.progress.listsRead, 2U);
    expectSameAsFullWalk(again);
    EXPECT_EQ(rescan().progress.listsRead, 0U) << "and is remembered anew";
}

TEST_F(Rescans, FindWhatCameToAFolderWithoutFolders) {
    m_folder.makeFolder("a/leaf");
    rescan();
    std::string const package = m_folder.makeFolder("a/leaf/A.app");
    EXPECT_EQ(rescan().paths, (Found{package}));
    std::string const deeper = m_folder.makeFolder("a/leaf/b/B.app");
    EXPECT_EQ(rescan().paths, (Found{package, deeper}));
}

TEST_F(Rescans, DoNotFindWhatIsGone) {
    m_folder.makeFolder("a/b/A.app");
    m_folder.makeFolder("c/d/B.app");
    ASSERT_EQ(rescan().paths.size(), 2U);
    rename("a/b/A.app", "a/b/A");
    rename("c", "e");
    EXPECT_EQ(rescan().paths, (Found{m_folder.path("e/d/B.app")}));
}

TEST_F(Rescans, FindWhatWasMovedBetweenFolders) {
    m_folder.makeFolder("a/b/c/A.app");
    m_folder.makeFolder("d/e");
    rescan();
    rename("a/b", "d/e/b");
    WalkResult const again = rescan();
    EXPECT_EQ(again.paths, (Found{m_folder.path("d/e/b/c/A.app")}));
    expectSameAsFullWalk(again);
}

TEST_F(Rescans, TellAFolderFromAnotherInItsPlace) {
    m_folder.makeFolder("a/b/A.app");
    m_folder.makeFolder("new/b/B.app");
    rescan();
    rename("a", "old");
    rename("new", "a");
    EXPECT_EQ(rescan().paths, (Found{m_folder.path("a/b/B.app"), m_folder.path("old/b/A.app")}));
    // The old one comes back to where it was remembered.
    rename("a", "new");
    rename("old", "a");
    EXPECT_EQ(rescan().paths, (Found{m_folder.path("a/b/A.app"), m_folder.path("new/b/B.app")}));
}

TEST_F(Rescans, TellAFolderFromALinkInItsPlace) {
    m_folder.makeFolder("a/b/A.app");
    rescan();
    rename("a", "real");
    ASSERT_EQ(::symlink("real", m_folder.path("a").c_str()), 0);
    EXPECT_EQ(rescan().paths, (Found{m_folder.path("real/b/A.app")}));
}

TEST_F(Rescans, SeeAChangeWhoseTimeWasSetBack) {
    m_folder.makeFolder("a/b/A.app");
    std::string const changed = m_folder.path("a/b");
    struct stat before;
    ASSERT_EQ(::stat(changed.c_str(), &before), 0);
    rescan();
    std::string const package = m_folder.makeFolder("a/b/B.app");
    timespec const times[] = {before.st_atim, before.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, changed.c_str(), times, 0), 0);
    EXPECT_EQ(rescan().paths, (Found{m_folder.path("a/b/A.app"), package}));
}

TEST_F(Rescans, DoNotRelyOnFoldersThatChangedAsTheWalkBegan) {
    m_folder.makeFolder("a/b/A.app");
    struct stat status;
    ASSERT_EQ(::stat(m_folder.path("a/b").c_str(), &status), 0);
    std::int64_t const changed = status.st_ctim.tv_sec * 1'000'000'000 + status.st_ctim.tv_nsec;
    std::int64_t now = changed + 1;
    Rescan soon([&now] { return now; });
    soon.walk(request());
    EXPECT_EQ(soon.walk(request()).progress.listsRead, 3U);
    now += 1'000'000'000;
    soon.walk(request());
    EXPECT_EQ(soon.walk(request()).progress.listsRead, 0U);
}

TEST_F(Rescans, AreFullWhenTheClockWasSetBack) {
    m_folder.makeFolder("a/b/A.app");
    std::int64_t now = folderClock() + 3'600'000'000'000;
    Rescan clocked([&now] { return now; });
    clocked.walk(request());
    EXPECT_EQ(clocked.walk(request()).progress.listsRead, 0U);
    now -= 1;
    EXPECT_EQ(clocked.walk(request()).progress.listsRead, 3U);
}

TEST_F(Rescans, ServeOnlyAWalkThatAsksTheSame) {
    m_folder.makeFolder("a/b/A.app");
    m_folder.makeFolder("a/b/B.app");
    rescan();
    VolumeWalkRequest other = request();
    other.names = {"B.app"};
    WalkResult const result = m_rescan.walk(other);
    EXPECT_EQ(result.paths, (Found{m_folder.path("a/b/B.app")}));
    EXPECT_EQ(result.progress.listsRead, 3U);
}

TEST_F(Rescans, CountWhatCannotBeReadEachTime) {
    m_folder.makeFolder("a/closed/b/A.app");
    for (char const* path : {"", "/a", "/a/closed", "/a/closed/b", "/a/closed/b/A.app"})
        OrdinaryUser::own(m_folder.path() + path);
    ASSERT_EQ(::chmod(m_folder.path("a/closed").c_str(), 0), 0);
    OrdinaryUser const user;
    Rescan users;
    for (int i = 0; i < 2; ++i) {
        WalkResult const result = users.walk(request());
        EXPECT_EQ(result.progress.unreadableFolders, 1U);
        EXPECT_TRUE(result.paths.empty());
    }
    ASSERT_EQ(::chmod(m_folder.path("a/closed").c_str(), 0700), 0);
    EXPECT_EQ(users.walk(request()).paths, (Found{m_folder.path("a/closed/b/A.app")}));
    ASSERT_EQ(::chmod(m_folder.path("a/closed").c_str(), 0), 0);
    WalkResult const closed = users.walk(request());
    EXPECT_EQ(closed.progress.unreadableFolders, 1U);
    EXPECT_TRUE(closed.paths.empty()) << "what is remembered may not be looked at";
    ::chmod(m_folder.path("a/closed").c_str(), 0700);
}

TEST_F(Rescans, NeedFewDescriptors) {
    makeRandomTree(m_folder.path(), 6);
    std::string path = "deep";
    for (int i = 0; i < 60; ++i) {
        path += "/" + std::to_string(i);
        m_folder.makeFolder(path + "/side/A.app");
    }
    rescan();
    OpenFilesLimit const limit(24);
    WalkResult const again = rescan();
    EXPECT_EQ(again.progress.listsRead, 0U);
    expectSameAsFullWalk(again);
}

TEST_F(Rescans, AreNotRememberedWhenTheyWereStopped) {
    m_folder.makeFolder("a/b/A.app");
    auto const memory = std::make_shared<WalkMemory>(m_rescan.folder(), &folderClock);
    VolumeWalkRequest stopped = request();
    stopped.memory = memory;
    VolumeWalker walker(stopped, nullptr);
    walker.stop();
    EXPECT_FALSE(pathExists(m_rescan.file()));
}

TEST_F(Rescans, TellRememberedPackagesBeforeTheyAreFound) {
    m_folder.makeFolder("a/A.app");
    m_folder.makeFolder("b/Gone.app");
    rescan();
    ASSERT_EQ(::rmdir(m_folder.path("b/Gone.app").c_str()), 0);
    VolumeWalkRequest again = request();
    again.memory = std::make_shared<WalkMemory>(m_rescan.folder(), &folderClock);
    std::vector<Found> batches;
    VolumeWalker* started = nullptr;
    VolumeWalker walker(again, [&] {
        EXPECT_EQ(started->progress().isRemembered, batches.empty());
        batches.push_back(started->takeFound());
    });
    started = &walker;
    ASSERT_TRUE(walker.start());
    ASSERT_TRUE(walker.waitUntilRemembered(std::chrono::hours(1)));
    ASSERT_FALSE(batches.empty());
    EXPECT_EQ(batches.front(), (Found{m_folder.path("a/A.app")}));
    for (std::size_t i = 1; i < batches.size(); ++i)
        EXPECT_TRUE(batches[i].empty()) << "the walk does not tell them again";
    EXPECT_TRUE(walker.vanished().empty());
    EXPECT_EQ(walker.progress().packagesFound, 1U);
}

TEST_F(Rescans, GiveRememberedPackagesToWhoeverWaitsForThem) {
    for (char const* path : {"a/A.app", "b/B.app"})
        m_folder.makeFolder(path);
    rescan();
    VolumeWalkRequest again = request();
    again.memory = std::make_shared<WalkMemory>(m_rescan.folder(), &folderClock);
    VolumeWalker walker(again, nullptr);
    EXPECT_FALSE(walker.waitUntilRecalled(std::chrono::milliseconds(0))) << "it has not begun";
    ASSERT_TRUE(walker.start());
    ASSERT_TRUE(walker.waitUntilRecalled(std::chrono::hours(1)));
    EXPECT_TRUE(walker.takeRemembered(1).empty()) << "there are more";
    Found taken = walker.takeRemembered(2);
    std::ranges::sort(taken);
    EXPECT_EQ(taken, (Found{m_folder.path("a/A.app"), m_folder.path("b/B.app")}));
    EXPECT_FALSE(walker.progress().isRemembered);
    EXPECT_TRUE(walker.takeRemembered(2).empty());
    ASSERT_TRUE(walker.waitUntilRemembered(std::chrono::hours(1)));
    EXPECT_TRUE(walker.takeFound().empty()) << "the walk does not tell them again";
    EXPECT_EQ(walker.progress().packagesFound, 2U);
}

TEST_F(Rescans, TakeOnlyWhatIsRememberedFromWhatIsFound) {
    m_folder.makeFolder("a/A.app");
    rescan();
    m_folder.makeFolder("b/B.app");
    VolumeWalkRequest again = request();
    again.memory = std::make_shared<WalkMemory>(m_rescan.folder(), &folderClock);
    VolumeWalker walker(again, nullptr);
    ASSERT_TRUE(walker.start());
    ASSERT_TRUE(walker.waitUntilRemembered(std::chrono::hours(1)));
    EXPECT_EQ(walker.takeRemembered(1), (Found{m_folder.path("a/A.app")}));
    EXPECT_EQ(walker.takeFound(), (Found{m_folder.path("b/B.app")}));
}

TEST_F(Rescans, AreNotWaitedForWhereNothingIsRemembered) {
    for (bool const hasMemory : {false, true}) {
        VolumeWalkRequest first = request();
        if (hasMemory) first.memory = std::make_shared<WalkMemory>(m_rescan.folder(), &folderClock);
        VolumeWalker walker(first, nullptr);
        ASSERT_TRUE(walker.start());
        EXPECT_TRUE(walker.waitUntilRecalled(std::chrono::hours(1)));
        EXPECT_TRUE(walker.takeRemembered(1).empty());
    }
}

TEST_F(Rescans, LookForNothingFirstWhereNobodyReadsItEarly) {
    m_folder.makeFolder("a/A.app");
    rescan();
    VolumeWalkRequest again = request();
    again.memory = std::make_shared<WalkMemory>(m_rescan.folder(), &folderClock);
    again.tellsRemembered = false;
    VolumeWalker walker(again, nullptr);
    ASSERT_TRUE(walker.start());
    ASSERT_TRUE(walker.waitUntilRemembered(std::chrono::hours(1)));
    EXPECT_TRUE(walker.takeRemembered(1).empty());
    EXPECT_EQ(walker.takeFound(), (Found{m_folder.path("a/A.app")}));
    EXPECT_EQ(walker.progress().listsRead, 0U) << "the folders are remembered all the same";
}

// The memory's clock hangs, in place of its disk.
TEST_F(Rescans, WaitForAMemoryThatDoesNotAnswerNoLongerThanTheirPatience) {
    m_folder.makeFolder("a/A.app");
    rescan();
    auto const calls = std::make_shared<std::atomic<int>>(0);
    auto const answers = std::make_shared<std::atomic<bool>>(false);
    VolumeWalkRequest again = request();
    again.patience = std::chrono::milliseconds(1);
    again.memory = std::make_shared<WalkMemory>(
        m_rescan.folder(),
        [calls, answers] {
            // The first call asks when the walk begins.
            if (++*calls == 2) answers->wait(false);
            return folderClock();
        },
        std::chrono::milliseconds(1));
    EXPECT_EQ(walk(again).paths, (Found{m_folder.path("a/A.app")}));
    *answers = true;
    answers->notify_all();
}

TEST_F(Rescans, TellRememberedPackagesThatWentMeanwhile) {
    m_folder.makeFolder("a/A.app");
    m_folder.makeFolder("b/B.app");
    rescan();
    VolumeWalkRequest again = request();
    again.memory = std::make_shared<WalkMemory>(m_rescan.folder(), &folderClock);
    VolumeWalker* started = nullptr;
    VolumeWalker walker(again, [&] {
        if (!started->progress().isFinished) ::rmdir(m_folder.path("a/A.app").c_str());
    });
    started = &walker;
    ASSERT_TRUE(walker.start());
    ASSERT_TRUE(walker.waitUntilRemembered(std::chrono::hours(1)));
    EXPECT_EQ(walker.vanished(), (Found{m_folder.path("a/A.app")}));
    EXPECT_EQ(walker.progress().packagesFound, 1U);
}

TEST_F(Rescans, TellNoRememberedPackageThatAWalkWouldNotCallSo) {
    m_folder.makeFolder("a/b/Linked.app");
    m_folder.makeFolder("c/Inner.app");
    m_folder.makeFile("other/file", "");
    m_folder.makeFolder("d/Replaced.app");
    m_folder.makeFolder("e/Stays.app");
    rescan();
    rename("a", "other/a");
    ASSERT_EQ(::symlink("other/a", m_folder.path("a").c_str()), 0);
    rename("c", "c.app");
    ASSERT_EQ(::symlink("c.app", m_folder.path("c").c_str()), 0);
    ASSERT_EQ(::rmdir(m_folder.path("d/Replaced.app").c_str()), 0);
    m_folder.makeFile("d/Replaced.app", "a file");
    VolumeWalkRequest again = request();
    again.memory = std::make_shared<WalkMemory>(m_rescan.folder(), &folderClock);
    std::optional<Found> first;
    VolumeWalker* started = nullptr;
    VolumeWalker walker(again, [&] {
        if (!first) first = started->takeFound();
    });
    started = &walker;
    ASSERT_TRUE(walker.start());
    ASSERT_TRUE(walker.waitUntilRemembered(std::chrono::hours(1)));
    EXPECT_EQ(first, (Found{m_folder.path("e/Stays.app")}));
}

} // namespace mac::test
