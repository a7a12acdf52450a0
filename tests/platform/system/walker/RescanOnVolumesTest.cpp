#include "platform/system/LongPath.h"
#include "tests/platform/system/walker/Rescan.h"
#include "tests/platform/system/walker/Walk.h"
#include "tests/support/Commands.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/SeededRandom.h"
#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

namespace {

using Paths = std::vector<std::string>;

// Changes a tree as users and programs do, at random places, the same for each seed.
class TreeChanges {
public:
    TreeChanges(std::string top, unsigned seed) : m_top(std::move(top)), m_random(seededRandom(seed)) {}

    void change() {
        switch (below(8)) {
        case 0:
            return make(anyFolder() + "/" + freshName() + ".app");
        case 1:
            return make(anyFolder() + "/" + freshName());
        case 2:
            return make(anyFolder() + "/Mirror Frame.app");
        case 3:
            return remove(anyFolder());
        case 4:
            return move(anyFolder(), anyFolder() + "/" + freshName());
        case 5:
            return replace(anyFolder());
        case 6:
            return exchange(anyFolder(), anyFolder());
        default:
            return makeFile(anyFolder() + "/" + freshName());
        }
    }
    std::string anyFolder() {
        std::string const output = outputOf({"find", m_top, "-mindepth", "1", "-type", "d", "-print0"});
        Paths folders;
        for (std::size_t start = 0; start < output.size(); start = output.find('\0', start) + 1)
            folders.emplace_back(output.c_str() + start);
        std::ranges::sort(folders);
        return folders.empty() ? m_top : folders[below(folders.size())];
    }

private:
    std::size_t below(std::size_t limit) { return m_random() % limit; }
    std::string freshName() { return "new" + std::to_string(m_made++); }
    // A change that fails changes nothing, which the comparison allows.
    static void make(std::string const& path) { ::mkdir(path.c_str(), 0755); }
    static void makeFile(std::string const& path) { ::mknod(path.c_str(), S_IFREG | 0644, 0); }
    static void remove(std::string const& path) { outputOf({"rm", "-rf", "--", path}); }
    static void move(std::string const& from, std::string const& to) { ::rename(from.c_str(), to.c_str()); }
    static void exchange(std::string const& one, std::string const& other) {
        ::renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE);
    }
    // Another folder gets the name, with something else in it.
    void replace(std::string const& path) {
        move(path, m_top + "/" + freshName());
        make(path);
        make(path + "/" + freshName() + ".app");
    }

    std::string const m_top;
    std::mt19937 m_random;
    int m_made = 0;
};

class RescansOfVolumes : public PrivateMounts {
protected:
    VolumeWalkRequest request() const { return {.roots = {m_folder.path()}}; }
    WalkResult rescan() { return m_rescan.walk(request()); }
    bool timesAreReliedOn(std::string const& point) const {
        return timesTellChanges(volumeIdentityOf(openPath(point, O_RDONLY | O_DIRECTORY).value()).value());
    }
    // A re-scan after each of many changes finds what a full walk finds, and does not read all that it does.
    void compareWithFullWalks(unsigned seed, int rounds) {
        makeRandomTree(m_point, seed);
        TreeChanges changes(m_point, seed);
        rescan();
        std::uint64_t listsRead = 0;
        std::uint64_t listsOfFullWalks = 0;
        for (int round = 0; round < rounds; ++round) {
            for (int i = 0; i < 1 + round % 4; ++i)
                changes.change();
            if (round % 5 == 0) m_rescan.restart();
            WalkResult const again = rescan();
            WalkResult const full = walk(request());
            ASSERT_EQ(again.paths, full.paths) << "round " << round;
            ASSERT_EQ(again.paths, packagesByFind(m_folder.path())) << "round " << round;
            EXPECT_EQ(again.progress.foldersVisited, full.progress.foldersVisited) << "round " << round;
            listsRead += again.progress.listsRead;
            listsOfFullWalks += full.progress.listsRead;
        }
        EXPECT_LT(listsRead * 4, listsOfFullWalks);
        EXPECT_GT(listsRead, 0U);
    }

    TemporaryFolder const m_folder{};
    std::string const m_point = m_folder.makeFolder("point");
    Rescan m_rescan{};
};

} // namespace

TEST_F(RescansOfVolumes, FindAllInMemory) {
    mountMemory(m_point);
    compareWithFullWalks(11, 40);
}

TEST_F(RescansOfVolumes, FindAllOnExt4) {
    mountImage(m_folder.path("image"), m_point);
    if (IsSkipped()) return;
    compareWithFullWalks(12, 40);
}

TEST_F(RescansOfVolumes, FindAllOnXFS) {
    mountImageOfType("xfs", m_folder.path("image"), m_point);
    if (IsSkipped()) return;
    compareWithFullWalks(13, 40);
}

TEST_F(RescansOfVolumes, FindAllOnBtrfs) {
    mountImageOfType("btrfs", m_folder.path("image"), m_point);
    if (IsSkipped()) return;
    compareWithFullWalks(14, 40);
}

TEST_F(RescansOfVolumes, FindWhatIsMountedOverAndUncovered) {
    mountMemory(m_point);
    makeRandomTree(m_point, 15);
    TreeChanges changes(m_point, 15);
    rescan();
    for (int round = 0; round < 20; ++round) {
        std::string const covered = changes.anyFolder();
        mountMemory(covered);
        ASSERT_EQ(::mkdir((covered + "/Above.app").c_str(), 0755), 0);
        ASSERT_EQ(rescan().paths, pathsOfWalk(request())) << "round " << round;
        unmount(covered);
        if (round % 2 == 0) changes.change();
        ASSERT_EQ(rescan().paths, pathsOfWalk(request())) << "round " << round;
    }
}

TEST_F(RescansOfVolumes, FindWhatABindMountHid) {
    m_folder.makeFolder("a/b/c/A.app");
    m_folder.makeFolder("other/B.app");
    bind(m_folder.path("other"), m_folder.path("a/b"));
    EXPECT_EQ(rescan().paths, (Paths{m_folder.path("other/B.app")}));
    unmount(m_folder.path("a/b"));
    EXPECT_EQ(rescan().paths, (Paths{m_folder.path("a/b/c/A.app"), m_folder.path("other/B.app")}));
    bind(m_folder.path("other"), m_folder.path("a/b"));
    EXPECT_EQ(rescan().paths, (Paths{m_folder.path("other/B.app")}));
}

TEST_F(RescansOfVolumes, TellAVolumeFromAnotherAtTheSamePath) {
    for (char const* name : {"A.app", "B.app", "C.app"}) {
        mountMemory(m_point);
        std::string const package = m_folder.makeFolder("point/a/" + std::string(name));
        EXPECT_EQ(rescan().paths, (Paths{package}));
        unmount(m_point);
    }
    EXPECT_TRUE(rescan().paths.empty());
}

TEST_F(RescansOfVolumes, KnowAVolumeThatIsMountedAgain) {
    mountImage(m_folder.path("image"), m_point);
    if (IsSkipped()) return;
    makeRandomTree(m_point, 16);
    WalkResult const first = rescan();
    outputOf({"mount", "-o", "remount,ro", m_point});
    outputOf({"mount", "-o", "remount,rw", m_point});
    WalkResult const again = rescan();
    EXPECT_EQ(again.paths, first.paths);
    EXPECT_LT(again.progress.listsRead, 5U);
}

TEST_F(RescansOfVolumes, FindWhatARestoredBackupHolds) {
    std::string const image = m_folder.path("image");
    mountImage(image, m_point);
    if (IsSkipped()) return;
    m_folder.makeFolder("point/a/b/A.app");
    m_folder.makeFolder("point/c/d/C.app");
    unmount(m_point);
    outputOf({"cp", image, m_folder.path("backup")});
    outputOf({"mount", "-o", "loop", image, m_point});
    ASSERT_EQ(::rename(m_folder.path("point/a/b/A.app").c_str(), m_folder.path("point/a/b/B.app").c_str()), 0);
    EXPECT_EQ(rescan().paths, (Paths{m_folder.path("point/a/b/B.app"), m_folder.path("point/c/d/C.app")}));
    outputOf({"umount", m_point});
    outputOf({"cp", m_folder.path("backup"), image});
    outputOf({"mount", "-o", "loop", image, m_point});
    EXPECT_EQ(rescan().paths, (Paths{m_folder.path("point/a/b/A.app"), m_folder.path("point/c/d/C.app")}));
    outputOf({"umount", m_point});
}

TEST_F(RescansOfVolumes, ReadAllWhereTimesAreWholeSeconds) {
    mountImage(m_folder.path("image"), m_point, {"-I", "128"});
    if (IsSkipped()) return;
    makeRandomTree(m_point, 17);
    WalkResult const first = rescan();
    WalkResult const again = rescan();
    EXPECT_EQ(again.paths, first.paths);
    EXPECT_GE(again.progress.listsRead + 2, first.progress.listsRead) << "all but the folders around it";
}

TEST_F(RescansOfVolumes, ReadAllOfLayersWhoseLowerOnesChangeUnseen) {
    std::string const below = m_folder.makeFolder("below");
    m_folder.makeFolder("below/a/b/A.app");
    m_folder.makeFolder("changes/above");
    m_folder.makeFolder("changes/work");
    mountLayers(below, m_folder.path("changes"), m_point);
    if (IsSkipped()) return;
    EXPECT_FALSE(timesAreReliedOn(m_point));
    VolumeWalkRequest const layers{.roots = {m_point}};
    WalkResult const first = m_rescan.walk(layers);
    EXPECT_EQ(first.paths, (Paths{m_folder.path("point/a/b/A.app")}));
    EXPECT_EQ(m_rescan.walk(layers).progress.listsRead, first.progress.listsRead);
}

} // namespace mac::test
