#include "tests/platform/system/walker/Rescan.h"
#include "tests/platform/system/walker/Walk.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace mac::test {

namespace {

using Paths = std::vector<std::string>;

// A chain of folders of one name, deeper than any path that the system takes. It is made and removed step by step.
// Every tenth level has a package; every level also has a second folder with a package in it if `isForked`.
class DeepTree {
public:
    static constexpr int depth = 3'000;

    DeepTree(std::string const& top, bool isForked) : m_top(top) {
        int folder = ::open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        std::string path = top;
        for (int level = 0; level < depth; ++level) {
            if (level % 10 == 0) addPackage(folder, "A.app", path);
            if (isForked) {
                make(folder, "fork");
                addPackage(folder, "fork/B.app", path);
            }
            make(folder, "down");
            go(folder, "down");
            path += "/down";
        }
        addPackage(folder, "Deepest.app", path);
        ::close(folder);
        std::sort(m_packages.begin(), m_packages.end());
    }

    ~DeepTree() {
        int folder = ::open(m_top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        for (int level = 0; level < depth; ++level)
            go(folder, "down");
        for (int level = 0; level <= depth; ++level) {
            for (char const* name : {"down", "A.app", "fork/B.app", "fork", "Deepest.app"})
                ::unlinkat(folder, name, AT_REMOVEDIR);
            if (level < depth) go(folder, "..");
        }
        ::close(folder);
    }

    DeepTree(DeepTree const&) = delete;
    DeepTree& operator=(DeepTree const&) = delete;

    Paths const& packages() const { return m_packages; }

private:
    static void go(int& folder, char const* name) {
        int const there = ::openat(folder, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(folder);
        folder = there;
    }
    static void make(int parent, char const* name) {
        if (::mkdirat(parent, name, 0755) != 0) throw std::system_error(errno, std::generic_category(), name);
    }
    void addPackage(int parent, char const* name, std::string const& path) {
        make(parent, name);
        m_packages.push_back(path + "/" + name);
    }

    std::string const m_top;
    Paths m_packages;
};

// Limits the number of descriptors of this process for the object's life.
class DescriptorLimit {
public:
    explicit DescriptorLimit(rlim_t limit) {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit const lower{.rlim_cur = limit, .rlim_max = m_before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &lower);
    }
    ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    DescriptorLimit(DescriptorLimit const&) = delete;
    DescriptorLimit& operator=(DescriptorLimit const&) = delete;

private:
    rlimit m_before{};
};

} // namespace

TEST(VolumeWalkerInDifficultTrees, GoesDownPastTheLongestPathOfTheSystem) {
    FolderForMany const folder;
    DeepTree const tree(folder->path(), false);
    ASSERT_GT(tree.packages().back().size(), 3U * PATH_MAX);
    EXPECT_EQ(pathsOfWalk({.roots = {folder->path()}}), tree.packages());
}

TEST(VolumeWalkerInDifficultTrees, GoesBackToFoldersWhosePathIsTooLongForTheSystem) {
    FolderForMany const folder;
    DeepTree const tree(folder->path(), true);
    WalkResult const result = walk({.roots = {folder->path()}});
    EXPECT_EQ(result.paths, tree.packages());
    EXPECT_EQ(result.progress.unreadableFolders, 0U);
}

TEST(VolumeWalkerInDifficultTrees, KeepsWithinAFewDescriptors) {
    FolderForMany const folder;
    DeepTree const tree(folder->path(), true);
    DescriptorLimit const limit(40);
    WalkResult const result = walk({.roots = {folder->path()}});
    EXPECT_EQ(result.paths, tree.packages());
    EXPECT_EQ(result.progress.unreadableFolders, 0U);
}

TEST(VolumeWalkerInDifficultTrees, GoesTheSameWaysAgainByWhatItRemembers) {
    FolderForMany const folder;
    DeepTree const tree(folder->path(), true);
    Rescan rescan;
    EXPECT_EQ(rescan.walk({.roots = {folder->path()}}).paths, tree.packages());
    DescriptorLimit const limit(40);
    for (int i = 0; i < 2; ++i) {
        WalkResult const again = rescan.walk({.roots = {folder->path()}});
        EXPECT_EQ(again.paths, tree.packages());
        EXPECT_EQ(again.progress.unreadableFolders, 0U);
    }
}

TEST(VolumeWalkerInDifficultTrees, FindsPackagesInAFolderOf200000Entries) {
    FolderForMany const folder;
    int const descriptor = ::open(folder->path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    Paths expected;
    for (int i = 0; i < 200'000; ++i) {
        std::string const name = "entry " + std::to_string(i);
        if (i % 20'000 == 7)
            expected.push_back(folder->makeFolder(name + ".app"));
        else if (i % 20'000 == 8)
            expected.push_back(folder->makeFolder(name + "/In it.app"));
        else
            ASSERT_EQ(::mknodat(descriptor, name.c_str(), S_IFREG | 0644, 0), 0);
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(pathsOfWalk({.roots = {folder->path()}}), expected);
    for (int i = 0; i < 200'000; ++i)
        ::unlinkat(descriptor, ("entry " + std::to_string(i)).c_str(), 0);
    ::close(descriptor);
}

TEST(VolumeWalkerInDifficultTrees, VisitsMoreSubfoldersThanFitIntoOneReading) {
    FolderForMany const folder;
    Paths expected;
    for (int i = 0; i < 5'000; ++i) {
        std::string const name = "a subfolder with a name of some length " + std::to_string(i);
        if (i % 10 == 0)
            expected.push_back(folder->makeFolder(name + "/A.app"));
        else
            folder->makeFolder(name);
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(pathsOfWalk({.roots = {folder->path()}}), expected);
}

TEST(VolumeWalkerInDifficultTrees, FindsWhatStaysWhileFoldersComeAndGo) {
    TemporaryFolder const folder;
    Paths expected;
    for (int i = 0; i < 100; ++i)
        expected.push_back(folder.makeFolder("stays" + std::to_string(i) + "/deeper/A.app"));
    std::sort(expected.begin(), expected.end());
    std::atomic<bool> isOver = false;
    std::thread meanwhile([&folder, &isOver] {
        for (int i = 0; !isOver; ++i) {
            std::string const number = std::to_string(i % 100);
            folder.makeFolder("stays" + number + "/new/newer/newest");
            ::rename(folder.path("stays" + number + "/new/newer").c_str(), folder.path("moved" + number).c_str());
            ::rmdir(folder.path("stays" + number + "/new").c_str());
            ::rmdir(folder.path("moved" + number + "/newest").c_str());
            ::rmdir(folder.path("moved" + number).c_str());
        }
    });
    for (int i = 0; i < 50; ++i) {
        WalkResult const result = walk({.roots = {folder.path()}});
        EXPECT_EQ(result.paths, expected);
        EXPECT_EQ(result.progress.unreadableFolders, 0U);
    }
    isOver = true;
    meanwhile.join();
}

} // namespace mac::test
