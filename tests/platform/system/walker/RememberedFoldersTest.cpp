#include "platform/system/walker/RememberedFolders.h"
#include "platform/system/walker/FolderIndexFormat.h"
#include "platform/system/walker/FolderLog.h"
#include <cstring>
#include <gtest/gtest.h>

namespace mac::test {

namespace {

using Kind = RememberedFolders::Kind;
using Place = RememberedFolders::Place;

constexpr std::int64_t WalkStart = 2'000'000'000'000'000'001;
constexpr std::int64_t Old = 1'000'000'000'000'000'001;
constexpr std::int64_t Tick = 10'000'000;
constexpr VolumeIdentity Disk{.device = 1, .type = 2, .fileSystem = 3};

FolderFacts factsWith(std::uint64_t inode, std::int64_t changed = Old) {
    return {.isFolder = true, .stamp = {.inode = inode, .modified = Old, .changed = changed, .linkCount = 3}};
}

class FolderIndex : public testing::Test {
protected:
    FolderIndex() {
        for (unsigned number = 0; number < 3; ++number)
            logs.emplace_back(number);
    }
    std::optional<RememberedFolders> index() const {
        return indexOf(logs, WalkStart, [] { return false; });
    }
    // The children: behind each folder with an entry its own, behind each package an exclamation mark.
    static std::string textOf(RememberedFolders const& folders, Place place) {
        std::string text;
        RememberedFolders::Cursor cursor = folders.children(place);
        while (std::optional<RememberedFolders::Child> const child = folders.next(cursor)) {
            text += (text.empty() ? "" : " ") + std::string(child->name);
            if (child->kind == Kind::Package) text += "!";
            if (child->kind == Kind::Folder) text += "(" + textOf(folders, child->place) + ")";
        }
        return text;
    }

    std::deque<FolderLog> logs;
};

} // namespace

TEST_F(FolderIndex, PutsWhatAllThreadsNotedInOrder) {
    FolderLog::Note const top = logs[0].addVolume("/", Disk, factsWith(2));
    FolderLog::Note const a = logs[0].addFolder(top, "a", factsWith(3));
    logs[2].addName(a, "leaf");
    FolderLog::Note const c = logs[1].addFolder(a, "c", factsWith(4));
    logs[0].addPackage(c, "P.app");
    FolderLog::Note const b = logs[2].addFolder(top, "b", factsWith(5));
    logs[1].addFolder(b, "empty", factsWith(6));
    FolderLog::Note const other = logs[1].addVolume("/other", {.device = 9, .type = 2, .fileSystem = 3}, factsWith(2));
    logs[1].addName(other, "x");

    std::optional<RememberedFolders> const folders = index();
    ASSERT_TRUE(folders);
    EXPECT_EQ(folders->folderCount(), 6U);
    Place const place = folders->volume("/", Disk);
    ASSERT_NE(place, RememberedFolders::None);
    EXPECT_EQ(textOf(*folders, place), "a(c(P.app!) leaf) b(empty())");
    EXPECT_EQ(folders->foldersBelow(place), 5U);
    EXPECT_EQ(folders->stamp(place), factsWith(2).stamp);
    EXPECT_EQ(textOf(*folders, folders->volume("/other", {.device = 9, .type = 2, .fileSystem = 3})), "x");
}

TEST_F(FolderIndex, KnowsAVolumeByItsPathAndItsFileSystem) {
    logs[0].addVolume("/disk", Disk, factsWith(2));
    std::optional<RememberedFolders> const folders = index();
    EXPECT_NE(folders->volume("/disk", Disk), RememberedFolders::None);
    EXPECT_EQ(folders->volume("/disks", Disk), RememberedFolders::None);
    for (VolumeIdentity const& other :
         {VolumeIdentity{9, 2, 3}, VolumeIdentity{1, 9, 3}, VolumeIdentity{1, 2, 9}, VolumeIdentity{}})
        EXPECT_EQ(folders->volume("/disk", other), RememberedFolders::None);
}

TEST_F(FolderIndex, FindsFoldersByName) {
    FolderLog::Note const top = logs[0].addVolume("/", Disk, factsWith(2));
    logs[0].addFolder(top, "a", factsWith(3));
    logs[0].addName(top, "leaf");
    logs[0].addFolder(top, "b", factsWith(4));
    std::optional<RememberedFolders> const folders = index();
    RememberedNames const names(*folders, folders->children(folders->volume("/", Disk)));
    EXPECT_EQ(folders->stamp(names.place("b")).inode, 4U);
    EXPECT_EQ(folders->stamp(names.place("a")).inode, 3U);
    EXPECT_EQ(names.place("leaf"), RememberedFolders::None);
    EXPECT_EQ(names.place("c"), RememberedFolders::None);
}

TEST_F(FolderIndex, DoesNotRelyOnYoungTimesWholeSecondsFailuresAndKeys) {
    FolderLog::Note const top = logs[0].addVolume("/", Disk, factsWith(2));
    std::int64_t const limit = WalkStart - Tick;
    logs[0].addFolder(top, "old enough", factsWith(3, limit - 1));
    logs[0].addFolder(top, "young", factsWith(4, limit));
    logs[0].addFolder(top, "of the future", factsWith(5, WalkStart + Tick));
    logs[0].addFolder(top, "whole second", factsWith(6, 1'000'000'000'000'000'000));
    logs[1].addFailure(logs[0].addFolder(top, "failed", factsWith(7)));
    FolderFacts locked = factsWith(8);
    locked.isEncrypted = true;
    logs[0].addFolder(top, "encrypted", locked);
    FolderFacts touched = factsWith(9);
    touched.stamp.modified = limit;
    logs[0].addFolder(top, "touched", touched);

    std::optional<RememberedFolders> const folders = index();
    RememberedFolders::Cursor cursor = folders->children(folders->volume("/", Disk));
    EXPECT_EQ(folders->stamp(folders->next(cursor)->place), factsWith(3, limit - 1).stamp);
    int others = 0;
    while (std::optional<RememberedFolders::Child> const child = folders->next(cursor)) {
        EXPECT_EQ(folders->stamp(child->place), FolderStamp()) << child->name;
        ++others;
    }
    EXPECT_EQ(others, 6);
}

TEST_F(FolderIndex, LeavesOutWhatLiesBelowAFolderThatIsNotNoted) {
    logs[0].addName(FolderLog::NoNote, "a");
    logs[0].addPackage(FolderLog::NoNote, "A.app");
    logs[0].addFailure(FolderLog::NoNote);
    EXPECT_EQ(logs[0].addFolder(FolderLog::NoNote, "b", factsWith(3)), FolderLog::NoNote);
    std::optional<RememberedFolders> const folders = index();
    ASSERT_TRUE(folders);
    EXPECT_TRUE(folders->bytes().empty());
}

TEST_F(FolderIndex, IsNoneForNamesThatNoFileSystemHas) {
    FolderLog::Note const top = logs[0].addVolume("/", Disk, factsWith(2));
    logs[0].addName(top, std::string(256, 'n'));
    EXPECT_FALSE(index());
}

TEST_F(FolderIndex, IsNoneWhenItIsStopped) {
    FolderLog::Note const top = logs[0].addVolume("/", Disk, factsWith(2));
    for (std::uint64_t inode = 3; inode < 5000; ++inode)
        logs[0].addFolder(top, std::to_string(inode), factsWith(inode));
    int questions = 0;
    EXPECT_FALSE(indexOf(logs, WalkStart, [&questions] { return ++questions == 2; }));
    EXPECT_TRUE(index());
}

TEST_F(FolderIndex, HoldsAMillionAndAHalfEntriesInLittleMemory) {
    FolderLog::Note const top = logs[0].addVolume("/", Disk, factsWith(2));
    constexpr std::uint64_t folders = 76'000;
    constexpr std::uint64_t leaves = 114'000;
    FolderLog::Note parent = top;
    for (std::uint64_t i = 0; i < folders; ++i) {
        FolderLog::Note const note = logs[i % 3].addFolder(parent, "folder" + std::to_string(i), factsWith(i + 3));
        if (i % 5 == 0) parent = note;
    }
    for (std::uint64_t i = 0; i < leaves; ++i)
        logs[i % 3].addName(parent, "leaf" + std::to_string(i));
    std::optional<RememberedFolders> const made = index();
    ASSERT_TRUE(made);
    EXPECT_EQ(made->folderCount(), folders + 1);
    EXPECT_LT(made->bytes().size() / (folders + leaves), 40U) << "bytes a folder";
}

TEST_F(FolderIndex, IsReadOnlyIfEveryByteOfItsFormIsRight) {
    FolderLog::Note const top = logs[0].addVolume("/", Disk, factsWith(2));
    FolderLog::Note const a = logs[0].addFolder(top, "a", factsWith(3));
    logs[0].addName(a, "leaf");
    logs[0].addFolder(top, "b", factsWith(4));
    std::optional<RememberedFolders> const made = index();
    std::vector<std::byte> const whole(made->bytes().begin(), made->bytes().end());
    ASSERT_TRUE(RememberedFolders::parse(whole));
    for (std::size_t size = 1; size < whole.size(); ++size)
        EXPECT_FALSE(RememberedFolders::parse({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)}));
    std::size_t const head = sizeof(VolumeEntry) + 1;
    auto const withByte = [&](std::size_t position, unsigned value) {
        std::vector<std::byte> changed = whole;
        changed[position] = static_cast<std::byte>(value);
        return RememberedFolders::parse(changed).has_value();
    };
    std::size_t const extent = head + offsetof(FolderEntryHead, extent);
    std::size_t const childBytes = head + offsetof(FolderEntryHead, childBytes);
    std::size_t const firstChild = head + sizeof(FolderEntryHead);
    for (std::size_t const position : {extent, childBytes, firstChild + 1})
        EXPECT_FALSE(withByte(position, std::to_integer<unsigned>(whole[position]) + 1)) << position;
    EXPECT_FALSE(withByte(firstChild, 3)) << "a kind that there is not";
    EXPECT_FALSE(withByte(firstChild, 0)) << "an entry too many";
    for (char const name : {'/', '.', '\0'})
        EXPECT_FALSE(withByte(firstChild + 2, static_cast<unsigned char>(name)));
}

} // namespace mac::test
