#include "platform/system/walker/VolumeWalker.h"
#include "tests/platform/system/walker/Walk.h"
#include "tests/support/TemporaryFolder.h"
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

namespace {

using Paths = std::vector<std::string>;

void makePackages(TemporaryFolder const& folder, int count) {
    for (int index = 0; index < count; ++index)
        folder.makeFolder(std::to_string(index) + "/A.app");
}

// A callback that counts the news, for tests that wait for the count to change.
std::function<void()> counting(std::atomic<int>& calls) {
    return [&calls] {
        ++calls;
        calls.notify_all();
    };
}

} // namespace

class RandomTrees : public testing::TestWithParam<std::uint64_t> {};

TEST_P(RandomTrees, AreListedAsFindListsThem) {
    FolderForMany const folder;
    makeRandomTree(folder->path(), GetParam());
    Paths const expected = packagesByFind(folder->path());
    ASSERT_GT(expected.size(), 10U);
    EXPECT_EQ(pathsOfWalk({.roots = {folder->path()}}), expected);
}

INSTANTIATE_TEST_SUITE_P(VolumeWalker, RandomTrees, testing::Range(std::uint64_t{1}, std::uint64_t{21}));

class SoughtItems : public testing::Test {
protected:
    // Every item in a tree, sought by its number, is found by its path alone.
    static void expectEachToBeFound(std::string const& top) {
        std::size_t count = 0;
        for (auto const& entry : std::filesystem::recursive_directory_iterator(top)) {
            struct stat status {};
            ASSERT_EQ(::lstat(entry.path().c_str(), &status), 0);
            EXPECT_EQ(pathsOfItem(top, status.st_ino, S_ISDIR(status.st_mode)), Paths{entry.path()});
            if (++count == 60) return;
        }
        EXPECT_GT(count, 20U);
    }
    static Paths pathsOfItem(std::string const& top, std::uint64_t inode, bool isFolder) {
        SoughtItem const item{.inode = inode, .isFolder = isFolder, .accepts = [](auto&&...) { return true; }};
        return pathsOfWalk({.roots = {top}, .packageSuffix = "", .item = item});
    }
};

TEST_F(SoughtItems, AreFoundByTheirNumber) {
    TemporaryFolder const folder;
    makeRandomTree(folder.path(), 7);
    folder.makeFile("A.app/Contents/file", "");
    ASSERT_EQ(::symlink("nowhere", folder.path("A.app/link").c_str()), 0);
    expectEachToBeFound(folder.path());
}

TEST_F(SoughtItems, AreFoundInMemoryToo) {
    FolderForMany const folder;
    makeRandomTree(folder->path(), 8);
    expectEachToBeFound(folder->path());
}

TEST_F(SoughtItems, AreThoseThatAreAccepted) {
    TemporaryFolder const folder;
    struct stat status {};
    ASSERT_EQ(::stat(folder.makeFile("a/file", "").c_str(), &status), 0);
    ASSERT_EQ(::link(folder.path("a/file").c_str(), folder.path("other").c_str()), 0);
    SoughtItem item{.inode = status.st_ino, .isFolder = false};
    item.accepts = [](FileDescriptor const&, std::string const& name) { return name == "other"; };
    EXPECT_EQ(pathsOfWalk({.roots = {folder.path()}, .packageSuffix = "", .item = item}), Paths{folder.path("other")});
    EXPECT_EQ(pathsOfItem(folder.path(), status.st_ino, false), sorted({folder.path("a/file"), folder.path("other")}));
    EXPECT_EQ(pathsOfItem(folder.path(), status.st_ino, true), Paths());
}

TEST(VolumeWalker, ListsWhatFindListsOnTheDisk) {
    TemporaryFolder const folder;
    makeRandomTree(folder.path(), 100);
    Paths const expected = packagesByFind(folder.path());
    ASSERT_GT(expected.size(), 10U);
    EXPECT_EQ(pathsOfWalk({.roots = {folder.path()}}), expected);
}

TEST(VolumeWalker, ListsOnlyTheNamesWanted) {
    TemporaryFolder const folder;
    folder.makeFolder("a/Mirror Frame.app");
    folder.makeFolder("a/mirror frame.app");
    folder.makeFolder("b/Mirror Frame copy.app");
    folder.makeFolder("b/Other.app");
    EXPECT_EQ(pathsOfWalk({.roots = {folder.path()}, .names = {"Other.app", "Mirror Frame.app"}}),
              (Paths{folder.path("a/Mirror Frame.app"), folder.path("b/Other.app")}));
}

TEST(VolumeWalker, NeverEntersAPackageWantedOrNot) {
    TemporaryFolder const folder;
    folder.makeFolder("Other.app/Contents/Mirror Frame.app");
    folder.makeFolder("Mirror Frame.app/Contents/Mirror Frame.app");
    EXPECT_EQ(pathsOfWalk({.roots = {folder.path()}, .names = {"Mirror Frame.app"}}),
              (Paths{folder.path("Mirror Frame.app")}));
}

TEST(VolumeWalker, TakesOnlyFoldersForPackages) {
    TemporaryFolder const folder;
    folder.makeFile("File.app", "");
    folder.makeFolder("real/Real.app");
    ASSERT_EQ(::symlink("real/Real.app", folder.path("Link.app").c_str()), 0);
    ASSERT_EQ(::mkfifo(folder.path("Pipe.app").c_str(), 0600), 0);
    EXPECT_EQ(pathsOfWalk({.roots = {folder.path()}}), (Paths{folder.path("real/Real.app")}));
}

TEST(VolumeWalker, TakesANameThatIsOnlyTheSuffixForAFolder) {
    TemporaryFolder const folder;
    folder.makeFolder(".app/In it.app");
    EXPECT_EQ(pathsOfWalk({.roots = {folder.path()}}), (Paths{folder.path(".app/In it.app")}));
}

TEST(VolumeWalker, FindsNothingWithoutASuffix) {
    TemporaryFolder const folder;
    folder.makeFolder("a/A.app");
    EXPECT_EQ(pathsOfWalk({.roots = {folder.path()}, .packageSuffix = ""}), Paths());
}

TEST(VolumeWalker, HandsOverNamesAsTheyAreOnDisk) {
    TemporaryFolder const folder;
    Paths const expected =
        sorted({folder.makeFolder("line\nfeed/\n.app"), folder.makeFolder("\xFF/\xC3\x28.app"),
                folder.makeFolder("\\040/ .app"), folder.makeFolder(std::string(251, 'x') + ".app")});
    EXPECT_EQ(pathsOfWalk({.roots = {folder.path()}}), expected);
}

TEST(VolumeWalker, FollowsNoLinksSoThatLoopsEnd) {
    TemporaryFolder const folder;
    folder.makeFolder("a/b/A.app");
    ASSERT_EQ(::symlink("..", folder.path("a/up").c_str()), 0);
    ASSERT_EQ(::symlink("itself", folder.path("a/itself").c_str()), 0);
    ASSERT_EQ(::symlink(folder.path("a").c_str(), folder.path("a/b/back").c_str()), 0);
    EXPECT_EQ(pathsOfWalk({.roots = {folder.path()}}), (Paths{folder.path("a/b/A.app")}));
}

TEST(VolumeWalker, ListsARootThatIsAPackageAndDoesNotEnterIt) {
    TemporaryFolder const folder;
    std::string const package = folder.makeFolder("A.app");
    folder.makeFolder("A.app/Contents/B.app");
    EXPECT_EQ(pathsOfWalk({.roots = {package}}), (Paths{package}));
    EXPECT_EQ(pathsOfWalk({.roots = {package + "/"}}), (Paths{package}));
    EXPECT_EQ(pathsOfWalk({.roots = {package}, .names = {"B.app"}}), Paths());
    EXPECT_EQ(pathsOfWalk({.roots = {folder.path(), package}}), (Paths{package}));
}

TEST(VolumeWalker, WalksARootWithinAPackage) {
    TemporaryFolder const folder;
    std::string const inner = folder.makeFolder("A.app/Contents/B.app");
    EXPECT_EQ(pathsOfWalk({.roots = {folder.path("A.app/Contents")}}), (Paths{inner}));
    EXPECT_EQ(pathsOfWalk({.roots = {folder.path(), folder.path("A.app/Contents")}}),
              (Paths{folder.path("A.app"), inner}));
}

TEST(VolumeWalker, WalksARootThatIsALink) {
    TemporaryFolder const folder;
    folder.makeFolder("real/A.app");
    std::string const link = folder.path("Link.app");
    ASSERT_EQ(::symlink("real", link.c_str()), 0);
    EXPECT_EQ(pathsOfWalk({.roots = {link}}), (Paths{link + "/A.app"}));
}

TEST(VolumeWalker, VisitsRootsThatOverlapOnce) {
    TemporaryFolder const folder;
    std::string const package = folder.makeFolder("a/b/A.app");
    ASSERT_EQ(::symlink("a", folder.path("link").c_str()), 0);
    Paths const expected{package};
    EXPECT_EQ(pathsOfWalk({.roots = {folder.path("a/b"), folder.path("a"), folder.path("a/")}}), expected);
    EXPECT_EQ(pathsOfWalk({.roots = {folder.path("a"), folder.path("link")}}), expected);
}

TEST(VolumeWalker, CountsARootThatIsNoFolder) {
    TemporaryFolder const folder;
    std::string const package = folder.makeFolder("a/A.app");
    std::string const file = folder.makeFile("file", "");
    WalkResult const result = walk({.roots = {folder.path("missing"), folder.path("a"), file}});
    EXPECT_EQ(result.paths, (Paths{package}));
    ASSERT_EQ(result.progress.unreadableFolders, 2U);
    EXPECT_EQ(result.progress.firstUnreadable[0].item, folder.path("missing"));
    EXPECT_EQ(result.progress.firstUnreadable[0].code, ENOENT);
    EXPECT_EQ(result.progress.firstUnreadable[1].item, file);
    EXPECT_EQ(result.progress.firstUnreadable[1].code, ENOTDIR);
}

TEST(VolumeWalker, CountsTheFoldersItVisits) {
    TemporaryFolder const folder;
    folder.makeFolder("a/b/c");
    folder.makeFolder("a/d");
    folder.makeFolder("a/A.app/Contents");
    VolumeWalkProgress const progress = walk({.roots = {folder.path()}}).progress;
    EXPECT_EQ(progress.foldersVisited, 5U); // the root, a, b, c, d
    EXPECT_EQ(progress.packagesFound, 1U);
    EXPECT_TRUE(progress.isFinished);
}

TEST(VolumeWalker, TellsOfNewsOnceUntilItIsTakenAndOnceAtTheEnd) {
    TemporaryFolder const folder;
    makePackages(folder, 50);
    std::atomic<int> calls = 0;
    VolumeWalker walker({.roots = {folder.path()}}, counting(calls));
    ASSERT_TRUE(walker.start());
    calls.wait(0);
    calls.wait(1);
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(walker.progress().isFinished);
    EXPECT_EQ(walker.takeFound().size(), 50U);
    EXPECT_TRUE(walker.takeFound().empty());
}

TEST(VolumeWalker, TellsOfNewsAgainAfterATake) {
    TemporaryFolder const folder;
    makePackages(folder, 50);
    std::atomic<int> calls = 0;
    std::atomic<bool> finished = false;
    Paths found; // by the callback alone, so that every find is news
    std::mutex mutex;
    VolumeWalker* started = nullptr;
    VolumeWalker walker({.roots = {folder.path()}}, [&] {
        std::lock_guard const lock(mutex);
        ++calls;
        bool const isLast = started->progress().isFinished;
        for (std::string& path : started->takeFound())
            found.push_back(std::move(path));
        finished = isLast;
        finished.notify_all();
    });
    started = &walker;
    ASSERT_TRUE(walker.start());
    finished.wait(false);
    walker.stop();
    EXPECT_EQ(found.size(), 50U);
    EXPECT_GT(calls, 2);
}

TEST(VolumeWalker, TellsOfNothingAfterAStopAndKeepsWhatItFound) {
    TemporaryFolder const folder;
    makePackages(folder, 300);
    std::atomic<int> calls = 0;
    VolumeWalker walker({.roots = {folder.path()}}, counting(calls));
    ASSERT_TRUE(walker.start());
    calls.wait(0);
    walker.stop();
    int const callsAtStop = calls;
    VolumeWalkProgress const progress = walker.progress();
    EXPECT_GT(progress.packagesFound, 0U);
    EXPECT_EQ(walker.takeFound().size(), progress.packagesFound);
    EXPECT_EQ(walker.progress().foldersVisited, progress.foldersVisited);
    EXPECT_EQ(calls, callsAtStop);
    walker.stop();
}

TEST(VolumeWalker, LeavesSignalsToOtherThreads) {
    TemporaryFolder const folder;
    folder.makeFolder("a/A.app");
    std::atomic<int> calls = 0;
    std::atomic<int> open = 0;
    VolumeWalker walker({.roots = {folder.path()}}, [&calls, &open] {
        sigset_t blocked;
        ::pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
        for (int const signal : {SIGINT, SIGTERM, SIGCHLD, SIGALRM, SIGUSR1})
            open += sigismember(&blocked, signal) == 1 ? 0 : 1;
        ++calls;
        calls.notify_all();
    });
    sigset_t before;
    sigset_t after;
    ::pthread_sigmask(SIG_BLOCK, nullptr, &before);
    ASSERT_TRUE(walker.start());
    ::pthread_sigmask(SIG_BLOCK, nullptr, &after);
    calls.wait(0); // in a worker
    calls.wait(1); // in the thread that leads them
    EXPECT_EQ(open, 0);
    EXPECT_EQ(sigismember(&after, SIGINT), sigismember(&before, SIGINT));
}

TEST(VolumeWalker, StartsOnce) {
    TemporaryFolder const folder;
    VolumeWalker walker({.roots = {folder.path()}}, nullptr);
    EXPECT_TRUE(walker.start());
    EXPECT_FALSE(walker.start());
    walker.stop();
    EXPECT_FALSE(walker.start());
}

TEST(VolumeWalker, DoesNotStartAfterAStop) {
    VolumeWalker walker({.roots = {"/"}}, nullptr);
    walker.stop();
    EXPECT_FALSE(walker.start());
    EXPECT_FALSE(walker.progress().isFinished);
}

TEST(VolumeWalker, EndsItsThreadsWhenItGoesAway) {
    FolderForMany const folder;
    makeRandomTree(folder->path(), 1);
    for (int i = 0; i < 50; ++i) {
        VolumeWalker walker({.roots = {folder->path()}}, [] {});
        ASSERT_TRUE(walker.start());
    }
}

} // namespace mac::test
