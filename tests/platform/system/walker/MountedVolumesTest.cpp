#include "platform/system/walker/Packages.h"
#include "platform/system/walker/VolumeList.h"
#include "platform/system/walker/VolumeWalker.h"
#include "tests/platform/system/walker/Walk.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <semaphore>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace mac::test {

namespace {

using Paths = std::vector<std::string>;

class MountedVolumes : public PrivateMounts {
protected:
    // The volume as a walk of the temporary folder lists it.
    Volume volumeAt(std::string const& point) const {
        std::vector<Volume> const volumes =
            listVolumes({locateRoot(m_folder.path()).value()}, false, PackageRule(".app", {})).volumes;
        auto const volume = std::ranges::find(volumes, point, &Volume::path);
        EXPECT_NE(volume, volumes.end());
        return volume == volumes.end() ? Volume() : *volume;
    }
    VolumeWalkRequest patientRequest() const {
        VolumeWalkRequest request{.roots = {m_folder.path()}};
        request.patience = std::chrono::minutes(1);
        return request;
    }
    TemporaryFolder const m_folder{};
};

} // namespace

TEST_F(MountedVolumes, AreWalkedBelowARoot) {
    mountMemory(m_folder.makeFolder("media/stick"));
    std::string const onStick = m_folder.makeFolder("media/stick/a/A.app");
    std::string const beside = m_folder.makeFolder("media/B.app");
    EXPECT_EQ(pathsOfWalk({.roots = {m_folder.path()}}), (Paths{beside, onStick}));
}

// Walks that were given up still wait on one of them, which is visited again when these have left it.
TEST_F(MountedVolumes, AreNotWaitedForByTheOthers) {
    mountMemory(m_folder.makeFolder("media/stick"));
    std::string const onStick = m_folder.makeFolder("media/stick/a/A.app");
    std::string const beside = m_folder.makeFolder("media/B.app");
    WaitingWalks walks(volumeAt(m_folder.path("media/stick")));
    VolumeWalker walker(patientRequest(), nullptr);
    ASSERT_TRUE(walker.start());
    Paths const found = nextFound(walker);
    EXPECT_EQ(walker.progress().unreadableFolders, 0U) << "it was left out before anything was found";
    EXPECT_EQ(found, Paths{beside});
    walks.leave();
    while (!walker.progress().isFinished)
        std::this_thread::yield();
    EXPECT_EQ(walker.takeFound(), Paths{onStick});
    EXPECT_EQ(walker.progress().unreadableFolders, 0U);
}

TEST_F(MountedVolumes, AreNotWaitedForByEachOther) {
    mountMemory(m_folder.makeFolder("media/first"));
    mountMemory(m_folder.makeFolder("media/second"));
    std::string const beside = m_folder.makeFolder("media/A.app");
    std::string const onFirst = m_folder.makeFolder("media/first/B.app");
    std::string const onSecond = m_folder.makeFolder("media/second/C.app");
    WaitingWalks atFirst(volumeAt(m_folder.path("media/first")));
    WaitingWalks atSecond(volumeAt(m_folder.path("media/second")));
    VolumeWalker walker(patientRequest(), nullptr);
    ASSERT_TRUE(walker.start());
    EXPECT_EQ(nextFound(walker), Paths{beside});
    atSecond.leave();
    EXPECT_EQ(nextFound(walker), Paths{onSecond});
    EXPECT_EQ(walker.progress().unreadableFolders, 0U) << "the first was left out before";
    atFirst.leave();
    EXPECT_EQ(nextFound(walker), Paths{onFirst});
    while (!walker.progress().isFinished)
        std::this_thread::yield();
}

TEST_F(MountedVolumes, AreWalkedAsFindListsThem) {
    std::string const point = m_folder.makeFolder("memory");
    mountMemory(point);
    makeRandomTree(point, 3);
    Paths const expected = packagesByFind(m_folder.path());
    ASSERT_GT(expected.size(), 10U);
    EXPECT_EQ(pathsOfWalk({.roots = {m_folder.path()}}), expected);
}

TEST_F(MountedVolumes, OfAnImageAreWalked) {
    std::string const point = m_folder.makeFolder("image");
    mountImage(m_folder.path("file.img"), point);
    if (IsSkipped()) return;
    makeRandomTree(point, 4);
    Paths const expected = packagesByFind(m_folder.path());
    ASSERT_GT(expected.size(), 10U);
    EXPECT_EQ(pathsOfWalk({.roots = {m_folder.path()}}), expected);
}

TEST_F(MountedVolumes, ThatDoNotTellTheKindOfAnEntryAreWalked) {
    std::string const point = m_folder.makeFolder("image");
    mountImage(m_folder.path("file.img"), point, {"-O", "^filetype"});
    if (IsSkipped()) return;
    makeRandomTree(point, 5);
    Paths const expected = packagesByFind(m_folder.path());
    ASSERT_GT(expected.size(), 10U);
    EXPECT_EQ(pathsOfWalk({.roots = {m_folder.path()}}), expected);
}

TEST_F(MountedVolumes, WithMoreSubfoldersThanLinksCanCountAreWalked) {
    std::string const point = m_folder.makeFolder("image");
    mountImage(m_folder.path("file.img"), point, {"-b", "1024", "-N", "70000"});
    if (IsSkipped()) return;
    Paths expected;
    for (int i = 0; i < 66'000; ++i) {
        std::string const path = point + "/f" + std::to_string(i);
        ASSERT_EQ(::mkdir(path.c_str(), 0755), 0);
        if (i % 6'000 != 0) continue;
        expected.push_back(path + "/A.app");
        ASSERT_EQ(::mkdir(expected.back().c_str(), 0755), 0);
    }
    struct stat status;
    ASSERT_EQ(::stat(point.c_str(), &status), 0);
    ASSERT_EQ(status.st_nlink, 1U);
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(pathsOfWalk({.roots = {m_folder.path()}}), expected);
}

TEST_F(MountedVolumes, AreAllWalkedWithoutRoots) {
    std::string const name = "Framekeeper test " + std::to_string(::getpid()) + ".app";
    mountMemory(m_folder.makeFolder("stick"));
    Paths expected{m_folder.makeFolder("disk/a/" + name), m_folder.makeFolder("stick/b/" + name)};
    EXPECT_EQ(pathsOfWalk({.names = {name}}), expected);
}

TEST_F(MountedVolumes, AreVisitedOnceWhenBoundElsewhere) {
    std::string const package = m_folder.makeFolder("a/b/A.app");
    bind(m_folder.path("a"), m_folder.makeFolder("elsewhere"));
    bind(m_folder.path("a/b"), m_folder.makeFolder("partly"));
    EXPECT_EQ(pathsOfWalk({.roots = {m_folder.path()}}), (Paths{package}));
}

TEST_F(MountedVolumes, AreVisitedWhereTheyAreBoundWhenNothingElseLeadsThere) {
    m_folder.makeFolder("outside/a/A.app");
    bind(m_folder.path("outside"), m_folder.makeFolder("root/bound"));
    EXPECT_EQ(pathsOfWalk({.roots = {m_folder.path("root")}}), (Paths{m_folder.path("root/bound/a/A.app")}));
}

TEST_F(MountedVolumes, ThatHoldThemselvesEnd) {
    m_folder.makeFolder("a/A.app");
    bind(m_folder.path(), m_folder.makeFolder("a/again"));
    EXPECT_EQ(pathsOfWalk({.roots = {m_folder.path()}}), (Paths{m_folder.path("a/A.app")}));
}

TEST_F(MountedVolumes, AreNotEnteredWithinAPackage) {
    std::string const package = m_folder.makeFolder("A.app");
    mountMemory(m_folder.makeFolder("A.app/volume"));
    m_folder.makeFolder("A.app/volume/B.app");
    EXPECT_EQ(pathsOfWalk({.roots = {m_folder.path()}}), (Paths{package}));
}

TEST_F(MountedVolumes, AreListedOnceWhenTheirMountPointIsAPackage) {
    std::string const package = m_folder.makeFolder("A.app");
    mountMemory(package);
    m_folder.makeFolder("A.app/B.app");
    EXPECT_EQ(pathsOfWalk({.roots = {m_folder.path()}}), (Paths{package}));
}

TEST_F(MountedVolumes, HideWhatLiesBeneath) {
    m_folder.makeFolder("point/Below.app");
    mountMemory(m_folder.path("point"));
    m_folder.makeFolder("point/Middle.app");
    mountMemory(m_folder.path("point"));
    std::string const package = m_folder.makeFolder("point/Above.app");
    EXPECT_EQ(pathsOfWalk({.roots = {m_folder.path()}}), (Paths{package}));
}

TEST_F(MountedVolumes, AreNamedByTheRootAsItWasGiven) {
    mountMemory(m_folder.makeFolder("real/stick"));
    m_folder.makeFolder("real/stick/A.app");
    ASSERT_EQ(::symlink("real", m_folder.path("link").c_str()), 0);
    EXPECT_EQ(pathsOfWalk({.roots = {m_folder.path("link")}}), (Paths{m_folder.path("link/stick/A.app")}));
}

TEST_F(MountedVolumes, OfPseudoFileSystemsAreLeftOut) {
    std::string const point = m_folder.makeFolder("proc");
    bind("/proc", point);
    m_folder.makeFolder("a/A.app");
    VolumeWalkProgress const progress = walk({.roots = {m_folder.path()}}).progress;
    EXPECT_EQ(progress.packagesFound, 1U);
    EXPECT_EQ(progress.foldersVisited, 2U);
}

TEST_F(MountedVolumes, MayGoAwayDuringTheWalk) {
    std::string const point = m_folder.makeFolder("stick");
    mountMemory(point);
    for (int i = 0; i < 200; ++i) {
        m_folder.makeFolder("stick/" + std::to_string(i) + "/deeper/A.app");
        m_folder.makeFolder("disk/" + std::to_string(i) + "/B.app");
    }
    std::atomic<bool> isUnmounted = false;
    std::binary_semaphore finished{0};
    VolumeWalker* started = nullptr;
    VolumeWalker walker({.roots = {m_folder.path()}}, [&] {
        if (!isUnmounted.exchange(true)) ::umount2(point.c_str(), MNT_DETACH);
        if (started->progress().isFinished) finished.release();
    });
    started = &walker;
    ASSERT_TRUE(walker.start());
    finished.acquire();
    Paths paths = walker.takeFound();
    std::sort(paths.begin(), paths.end());
    EXPECT_TRUE(std::adjacent_find(paths.begin(), paths.end()) == paths.end());
    EXPECT_EQ(
        std::count_if(paths.begin(), paths.end(), [](std::string const& path) { return path.ends_with("B.app"); }),
        200);
}

} // namespace mac::test
