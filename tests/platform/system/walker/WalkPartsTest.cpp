#include "platform/system/LongPath.h"
#include "platform/system/walker/FolderFacts.h"
#include "platform/system/walker/FolderReader.h"
#include "platform/system/walker/Packages.h"
#include "platform/system/walker/WalkBudget.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits>
#include <sys/stat.h>

namespace mac::test {

namespace {

FileDescriptor folderAt(std::string const& path) { return openPath(path, O_RDONLY | O_DIRECTORY).takeValue(); }

std::vector<std::string> subfoldersOf(std::string const& path) {
    FileDescriptor const folder = folderAt(path);
    std::vector<std::string> names;
    FolderReader reader;
    while (reader.fill(folder).value() == FolderReader::Fill::Some) {
        while (std::optional<std::string_view> const name = reader.nextSubfolder(folder))
            names.emplace_back(*name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::optional<std::uint32_t> subfoldersByLinksOf(std::string const& path) {
    return subfoldersByLinkCount(factsOf(folderAt(path)).value().stamp.linkCount);
}

} // namespace

TEST(PackageRule, ComparesBytesAndWantsSomethingBeforeTheSuffix) {
    PackageRule const rule(".app", {});
    EXPECT_TRUE(rule.isPackage("a.app"));
    EXPECT_TRUE(rule.isPackage(".app.app"));
    EXPECT_TRUE(rule.isPackage("\xFF.app"));
    for (char const* name : {".app", "app", "a.APP", "a.app ", "a.apps", ""})
        EXPECT_FALSE(rule.isPackage(name)) << name;
}

TEST(PackageRule, WantsAllPackagesOrThoseNamed) {
    EXPECT_TRUE(PackageRule(".app", {}).isWanted("a.app"));
    PackageRule const some(".app", {"a.app", "b.app"});
    EXPECT_TRUE(some.isWanted("b.app"));
    EXPECT_FALSE(some.isWanted("B.app"));
    EXPECT_FALSE(some.isWanted("b.ap"));
}

TEST(PackageRule, FindsPackagesAmongTheFoldersOfAPath) {
    PackageRule const rule(".app", {});
    for (char const* path : {"a.app", "a.app/b", "a/b.app", "a/b.app/c"})
        EXPECT_TRUE(rule.crossesPackage(path)) << path;
    for (char const* path : {"", "a", "a/b", ".app", ".app/a", "a.app.old/b"})
        EXPECT_FALSE(rule.crossesPackage(path)) << path;
}

TEST(ThreadPace, StartsWithOneThreadACore) {
    EXPECT_EQ(ThreadPace(4, 32, 0).threads(), 4U);
    EXPECT_EQ(ThreadPace(0, 32, 0).threads(), 1U);
    EXPECT_EQ(ThreadPace(64, 8, 0).threads(), 8U);
    EXPECT_EQ(ThreadPace(256, 256, 0).threads(), ThreadPace::most);
}

TEST(ThreadPace, DoublesWhileTheDiskIsRead) {
    ThreadPace pace(3, 32, 100);
    pace.look(100);
    EXPECT_EQ(pace.threads(), 3U);
    pace.look(108);
    EXPECT_EQ(pace.threads(), 6U);
    pace.look(108);
    EXPECT_EQ(pace.threads(), 6U);
    for (std::uint64_t blocks = 200; blocks < 203; ++blocks) {
        EXPECT_TRUE(pace.canGrow());
        pace.look(blocks);
    }
    EXPECT_EQ(pace.threads(), 32U);
    EXPECT_FALSE(pace.canGrow());
}

TEST(DescriptorBudget, LeavesHalfOfTheDescriptorsToTheProcess) {
    for (std::uint64_t limit : {8, 40, 64, 256, 1024, 1 << 20}) {
        DescriptorBudget const budget = DescriptorBudget::forLimit(limit);
        EXPECT_GE(budget.threads, 1U);
        EXPECT_GE(budget.foldersPerThread, 1U);
        std::uint64_t const atMost = budget.threads * (budget.foldersPerThread + 1);
        EXPECT_LE(atMost, std::min(limit / 2, DescriptorBudget::most)) << limit;
    }
    EXPECT_EQ(DescriptorBudget::forLimit(1024).threads, ThreadPace::most);
}

TEST(FolderReader, ReadsNamesOfEveryLength) {
    TemporaryFolder const folder;
    std::vector<std::string> expected;
    for (std::size_t length = 1; length <= 255; ++length) {
        expected.emplace_back(length, 'n');
        folder.makeFolder(expected.back());
    }
    EXPECT_EQ(subfoldersOf(folder.path()), expected);
}

TEST(FolderReader, LeavesOutTheFolderItselfItsParentAndFiles) {
    TemporaryFolder const folder;
    folder.makeFolder("..a");
    folder.makeFolder(".b");
    folder.makeFile("file", "");
    EXPECT_EQ(subfoldersOf(folder.path()), (std::vector<std::string>{"..a", ".b"}));
}

TEST(FolderReader, FailsOnAFolderThatIsNotOpen) {
    FolderReader reader;
    Result<FolderReader::Fill> const fill = reader.fill(FileDescriptor());
    ASSERT_FALSE(fill.hasValue());
    EXPECT_EQ(fill.problem().code, EBADF);
    EXPECT_EQ(reader.nextSubfolder(FileDescriptor()), std::nullopt);
}

// A date beyond what 64 bits of nanoseconds hold must not look old: the walk relies on old stamps.
TEST(FolderFacts, HoldTheLastDateForThoseBeyondIt) {
    TemporaryFolder const folder;
    std::array<timespec, 2> const dates{
        {{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, {.tv_sec = 10'000'000'000, .tv_nsec = 5}}};
    ASSERT_EQ(::utimensat(AT_FDCWD, folder.path().c_str(), dates.data(), 0), 0);
    struct stat status {};
    ASSERT_EQ(::stat(folder.path().c_str(), &status), 0);
    if (status.st_mtim.tv_sec != dates[1].tv_sec) GTEST_SKIP() << "the file system keeps no dates after 2262";
    EXPECT_EQ(factsOf(folderAt(folder.path())).value().stamp.modified, std::numeric_limits<std::int64_t>::max());
}

TEST(LeafRule, TellsNothingWhereTheCountIsNoneOfFolders) {
    EXPECT_EQ(subfoldersByLinkCount(0), std::nullopt);
    EXPECT_EQ(subfoldersByLinkCount(1), std::nullopt);
    EXPECT_EQ(subfoldersByLinkCount(2), 0U);
    EXPECT_EQ(subfoldersByLinkCount(9), 7U);
}

TEST(LeafRule, IsNotTrustedOnOtherFileSystems) { EXPECT_FALSE(linkCountTellsSubfolders(folderAt("/proc"))); }

class LeafRuleOnVolumes : public PrivateMounts {
protected:
    TemporaryFolder const m_folder{}; // goes after the mounts in it
};

TEST_F(LeafRuleOnVolumes, HoldsInMemory) {
    mountMemory(m_folder.path());
    ASSERT_TRUE(linkCountTellsSubfolders(folderAt(m_folder.path())));
    m_folder.makeFile("a/file", "");
    EXPECT_EQ(subfoldersByLinksOf(m_folder.path("a")), 0U);
    m_folder.makeFolder("a/b");
    m_folder.makeFolder("a/c");
    EXPECT_EQ(subfoldersByLinksOf(m_folder.path("a")), 2U);
}

TEST_F(LeafRuleOnVolumes, HoldsOnExt4) {
    std::string const point = m_folder.makeFolder("image");
    mountImage(m_folder.path("file.img"), point);
    if (IsSkipped()) return;
    ASSERT_TRUE(linkCountTellsSubfolders(folderAt(point)));
    m_folder.makeFile("image/a/file", "");
    EXPECT_EQ(subfoldersByLinksOf(m_folder.path("image/a")), 0U);
    m_folder.makeFolder("image/a/b");
    m_folder.makeFolder("image/a/c");
    EXPECT_EQ(subfoldersByLinksOf(m_folder.path("image/a")), 2U);
}

} // namespace mac::test
