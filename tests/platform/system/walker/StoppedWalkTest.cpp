#include "platform/system/walker/FolderLog.h"
#include "platform/system/walker/VolumeVisit.h"
#include "platform/system/walker/VolumeWalker.h"
#include "platform/system/walker/WalkMemory.h"
#include "tests/platform/system/walker/Walk.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace mac::test {

namespace {

// A folder that does not answer, in whose place the question whether an item is the sought one hangs.
struct HangingFolder {
    std::atomic<bool> isAsked = false;
    std::atomic<bool> answers = false;
    std::atomic<bool> hasAnswered = false;

    void hang() {
        isAsked = true;
        isAsked.notify_all();
        answers.wait(false);
        hasAnswered = true;
        hasAnswered.notify_all();
    }
};

} // namespace

TEST(StoppedWalk, LeavesAThreadBehindThatHangs) {
    TemporaryFolder const folder;
    struct stat status {};
    ASSERT_EQ(::stat(folder.makeFile("a/file", "").c_str(), &status), 0);
    auto const hanging = std::make_shared<HangingFolder>();
    std::atomic<int> calls = 0;
    {
        SoughtItem item{.inode = status.st_ino, .isFolder = false};
        item.accepts = [hanging](FileDescriptor const&, std::string const&) {
            hanging->hang();
            return true;
        };
        VolumeWalker walker({.roots = {folder.path()}, .packageSuffix = "", .item = item}, [&calls] { ++calls; });
        ASSERT_TRUE(walker.start());
        hanging->isAsked.wait(false);
        walker.stopWithin(std::chrono::milliseconds(1));
        EXPECT_FALSE(walker.progress().isFinished);
        EXPECT_FALSE(walker.start());
    }
    EXPECT_FALSE(hanging->hasAnswered);
    hanging->answers = true;
    hanging->answers.notify_all();
    hanging->hasAnswered.wait(false);
    // What the thread uses is freed by the thread itself, at last what it asks with.
    while (hanging.use_count() > 1)
        std::this_thread::yield();
    EXPECT_EQ(calls, 0);
}

TEST(StoppedWalk, LeavesThreadsOnAVolumeAFewTimesAlone) {
    TemporaryFolder const folder;
    folder.makeFolder("a/A.app");
    struct stat status {};
    ASSERT_EQ(::stat(folder.makeFile("a/file", "").c_str(), &status), 0);
    VolumeWalkRequest impatient{.roots = {folder.path()}};
    impatient.patience = std::chrono::milliseconds(1);
    std::vector<std::shared_ptr<HangingFolder>> left;
    while (left.size() < VolumeVisit::MostLeft) {
        EXPECT_EQ(walk(impatient).paths, std::vector<std::string>{folder.path("a/A.app")}) << left.size() << " left";
        auto const hanging = left.emplace_back(std::make_shared<HangingFolder>());
        SoughtItem item{.inode = status.st_ino, .isFolder = false};
        item.accepts = [hanging](FileDescriptor const&, std::string const&) {
            hanging->hang();
            return true;
        };
        VolumeWalker walker({.roots = {folder.path()}, .packageSuffix = "", .item = item}, nullptr);
        ASSERT_TRUE(walker.start());
        hanging->isAsked.wait(false);
        walker.stopWithin(std::chrono::milliseconds(1));
    }
    WalkResult const leftOut = walk(impatient);
    EXPECT_TRUE(leftOut.paths.empty());
    EXPECT_EQ(leftOut.progress.unreadableFolders, 1U);
    ASSERT_EQ(leftOut.progress.firstUnreadable.size(), 1U);
    EXPECT_EQ(leftOut.progress.firstUnreadable.front().item, folder.path());
    EXPECT_EQ(leftOut.progress.firstUnreadable.front().code, ETIMEDOUT);
    for (std::shared_ptr<HangingFolder> const& hanging : left) {
        hanging->answers = true;
        hanging->answers.notify_all();
    }
    // Once one of them has left the volume, it is visited again.
    VolumeWalkRequest patient{.roots = {folder.path()}};
    patient.patience = std::chrono::hours(1);
    EXPECT_EQ(walk(patient).paths, std::vector<std::string>{folder.path("a/A.app")});
    for (std::shared_ptr<HangingFolder> const& hanging : left) {
        while (hanging.use_count() > 1)
            std::this_thread::yield();
    }
}

namespace {

// What is found in the roots before the walks leave the root that they wait at, and then.
struct FoundInTwo {
    std::vector<std::string> before{};
    std::vector<std::string> after{};
};

FoundInTwo foundWhileWaiting(std::string const& path, std::vector<std::string> const& roots) {
    WaitingWalks walks({.path = path});
    VolumeWalkRequest request{.roots = roots};
    request.patience = std::chrono::minutes(1);
    VolumeWalker walker(request, nullptr);
    EXPECT_TRUE(walker.start());
    FoundInTwo found{.before = nextFound(walker)};
    EXPECT_EQ(walker.progress().unreadableFolders, 0U) << "it was left out before anything was found";
    walks.leave();
    while (!walker.progress().isFinished)
        std::this_thread::yield();
    found.after = walker.takeFound();
    std::ranges::sort(found.after);
    EXPECT_EQ(walker.progress().unreadableFolders, 0U);
    return found;
}

using Paths = std::vector<std::string>;

} // namespace

TEST(StoppedWalk, HoldsUpNoRootBehindTheOneThatItWaitsAt) {
    TemporaryFolder const folder;
    std::string const late = folder.makeFolder("late/a/A.app");
    std::string const free = folder.makeFolder("free/B.app");
    FoundInTwo const found = foundWhileWaiting(folder.path("late"), {folder.path("late"), folder.path("free")});
    EXPECT_EQ(found.before, Paths{free});
    EXPECT_EQ(found.after, Paths{late});
}

TEST(StoppedWalk, LetsARootAroundAnotherBeWalkedOnce) {
    TemporaryFolder const folder;
    std::string const inner = folder.makeFolder("wide/inner/A.app");
    std::string const beside = folder.makeFolder("wide/beside/B.app");
    FoundInTwo const found = foundWhileWaiting(folder.path("wide"), {folder.path("wide"), folder.path("wide/inner")});
    EXPECT_EQ(found.before, Paths{inner});
    EXPECT_EQ(found.after, Paths{beside});
}

TEST(StoppedWalk, LetsARootWithinAnotherBeWalkedOnce) {
    TemporaryFolder const folder;
    std::string const inner = folder.makeFolder("wide/inner/A.app");
    FoundInTwo const found =
        foundWhileWaiting(folder.path("wide/inner"), {folder.path("wide/inner"), folder.path("wide")});
    EXPECT_EQ(found.before, Paths{inner});
    EXPECT_EQ(found.after, Paths{});
}

TEST(StoppedWalk, FindsAPackageThatIsARootOnce) {
    TemporaryFolder const folder;
    std::string const package = folder.makeFolder("wide/A.app");
    std::string const free = folder.makeFolder("free/B.app");
    FoundInTwo const found =
        foundWhileWaiting(folder.path("wide"), {folder.path("wide"), package, folder.path("free")});
    EXPECT_EQ(found.before, Paths{free});
    EXPECT_EQ(found.after, Paths{package});
}

// The package is told although the root that may hold it is left out in the end.
TEST(StoppedWalk, TellsAPackageThatIsARootInTheEnd) {
    TemporaryFolder const folder;
    std::string const package = folder.makeFolder("wide/A.app");
    WaitingWalks const walks({.path = folder.path("wide")});
    VolumeWalkRequest impatient{.roots = {folder.path("wide"), package}};
    impatient.patience = std::chrono::milliseconds(1);
    WalkResult const result = walk(impatient);
    EXPECT_EQ(result.paths, Paths{package});
    EXPECT_EQ(result.progress.unreadableFolders, 1U);
}

// The memory's clock hangs, in place of its disk.
TEST(StoppedWalk, IsNotWaitedForLongerThanThePatience) {
    TemporaryFolder const folder;
    std::atomic<bool> answers = false;
    VolumeWalkRequest hanging{.roots = {folder.path()}};
    hanging.memory = std::make_shared<WalkMemory>(folder.path("memory"), [&answers] {
        answers.wait(false);
        return folderClock();
    });
    VolumeWalker walker(hanging, nullptr);
    ASSERT_TRUE(walker.start());
    EXPECT_FALSE(walker.waitUntilRemembered(std::chrono::milliseconds(1)));
    answers = true;
    answers.notify_all();
    EXPECT_TRUE(walker.waitUntilRemembered(std::chrono::hours(1)));
}

TEST(StoppedWalk, EndsItsThreadsWithinAPatienceThatIsLongEnough) {
    FolderForMany const folder;
    makeRandomTree(folder->path(), 1);
    for (int i = 0; i < 50; ++i) {
        auto const news = std::make_shared<int>(0);
        VolumeWalker walker({.roots = {folder->path()}}, [news] {});
        ASSERT_TRUE(walker.start());
        walker.stopWithin(std::chrono::hours(1));
        EXPECT_EQ(news.use_count(), 1);
    }
}

} // namespace mac::test
