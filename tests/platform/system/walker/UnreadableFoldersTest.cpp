#include "platform/system/LongPath.h"
#include "platform/system/walker/FolderFacts.h"
#include "platform/system/walker/VolumeWalker.h"
#include "tests/platform/system/walker/Rescan.h"
#include "tests/platform/system/walker/Walk.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace mac::test {

namespace {

using Paths = std::vector<std::string>;

} // namespace

TEST(UnreadableFolders, AreCountedAndTheWalkGoesOn) {
    TemporaryFolder const folder;
    folder.makeFolder("closed/a/Hidden.app");
    folder.makeFolder("blind/a/Hidden.app");
    std::string const package = folder.makeFolder("open/A.app");
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(folder.path("closed").c_str(), 0), 0);
    ASSERT_EQ(::chmod(folder.path("blind").c_str(), 0444), 0); // names can be read, what they name cannot be reached
    WalkResult result;
    {
        OrdinaryUser const user;
        result = walk({.roots = {folder.path()}});
    }
    ASSERT_EQ(::chmod(folder.path("closed").c_str(), 0755), 0);
    ASSERT_EQ(::chmod(folder.path("blind").c_str(), 0755), 0);
    EXPECT_EQ(result.paths, (Paths{package}));
    EXPECT_EQ(result.progress.unreadableFolders, 2U);
    Paths unreadable;
    for (SystemError const& one : result.progress.firstUnreadable) {
        unreadable.push_back(one.item);
        EXPECT_EQ(one.code, EACCES);
    }
    EXPECT_EQ(sorted(unreadable), (Paths{folder.path("blind/a"), folder.path("closed")}));
}

// The packages are found all the same. What holds no such folder, and what is not wanted, is not told.
TEST(UnreadableFolders, AreThoseInPackagesThatMayNotBeSearched) {
    TemporaryFolder const folder;
    Paths const packages{folder.makeFolder("a/A.app"), folder.makeFolder("b/A.app"), folder.makeFolder("c/A.app"),
                         folder.makeFolder("d/A.app")};
    std::string const inside = folder.makeFolder("a/A.app/Contents");
    folder.makeFolder("b/A.app/Contents");
    folder.makeFolder("d/A.app/Contents");
    std::string const another = folder.makeFolder("a/B.app/Contents");
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    for (std::string const& closed : {inside, another, packages[1]})
        ASSERT_EQ(::chmod(closed.c_str(), 0444), 0);
    std::vector<SystemError> unreadable;
    {
        OrdinaryUser const user;
        VolumeWalker walker({.roots = {folder.path()}, .names = {"A.app"}, .folderInPackages = "Contents"}, nullptr);
        ASSERT_TRUE(walker.start());
        while (!walker.progress().isFinished)
            std::this_thread::yield();
        unreadable = walker.unreadable();
        EXPECT_EQ(sorted(walker.takeFound()), packages);
        EXPECT_EQ(walk({.roots = {folder.path()}}).progress.unreadableFolders, 0U);
    }
    ASSERT_EQ(::chmod(packages[1].c_str(), 0755), 0);
    Paths paths;
    for (SystemError const& one : unreadable) {
        paths.push_back(one.item);
        EXPECT_EQ(one.code, EACCES);
    }
    EXPECT_EQ(sorted(paths), (Paths{inside, packages[1] + "/Contents"}));
}

TEST(UnreadableFolders, InPackagesAreAskedForAgainWhereNothingElseIsRead) {
    TemporaryFolder const folder;
    FileDescriptor const top = openPath(folder.path(), O_RDONLY | O_DIRECTORY).takeValue();
    if (!timesTellChanges(volumeIdentityOf(top).value()))
        GTEST_SKIP() << "the times on the file system of " << folder.path() << " cannot be relied on";
    std::string const inside = folder.makeFolder("a/A.app/Contents");
    OrdinaryUser::own(inside);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    VolumeWalkRequest const request{.roots = {folder.path()}, .folderInPackages = "Contents"};
    Rescan rescan;
    OrdinaryUser const user;
    EXPECT_EQ(rescan.walk(request).progress.unreadableFolders, 0U);
    for (unsigned const mode : {0U, 0755U}) {
        ASSERT_EQ(::chmod(inside.c_str(), mode), 0);
        VolumeWalkProgress const progress = rescan.walk(request).progress;
        EXPECT_EQ(progress.listsRead, 0U);
        EXPECT_EQ(progress.unreadableFolders, mode == 0 ? 1U : 0U);
    }
}

TEST(UnreadableFolders, AreKeptUpToALimitInTheProgress) {
    TemporaryFolder const folder;
    Paths missing;
    for (int i = 0; i < 40; ++i)
        missing.push_back(folder.path("missing" + std::to_string(i)));
    VolumeWalkProgress const progress = walk({.roots = missing}).progress;
    EXPECT_EQ(progress.unreadableFolders, 40U);
    EXPECT_EQ(progress.firstUnreadable.size(), VolumeWalker::maximumUnreadableKept);
}

TEST(UnreadableFolders, AreListedInTheirOrder) {
    TemporaryFolder const folder;
    Paths missing;
    for (std::size_t i = 0; i < VolumeWalker::maximumUnreadableListed + 40; ++i)
        missing.push_back(folder.path("missing" + std::to_string(i)));
    VolumeWalker walker({.roots = missing}, {});
    ASSERT_TRUE(walker.start());
    ASSERT_TRUE(walker.waitUntilRemembered(std::chrono::hours(1)));
    std::vector<SystemError> const unreadable = walker.unreadable();
    ASSERT_EQ(unreadable.size(), VolumeWalker::maximumUnreadableListed);
    EXPECT_EQ(unreadable.front().code, ENOENT);
    EXPECT_EQ(walker.progress().unreadableFolders, missing.size());
    EXPECT_EQ(walker.progress().firstUnreadable.front().item, unreadable.front().item);
}

} // namespace mac::test
