#include "platform/system/walker/FolderLog.h"
#include "platform/system/walker/VolumeVisit.h"
#include "platform/system/walker/VolumeWalker.h"
#include "platform/system/walker/WalkMemory.h"
#include "tests/platform/system/walker/Walk.h"
#include "tests/support/TemporaryFolder.h"
#include <atomic>
#include <cerrno>
#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <sys/stat.h>
#include <thread>

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
