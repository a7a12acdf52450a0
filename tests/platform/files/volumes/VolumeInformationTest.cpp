#include "platform/files/volumes/VolumeInformation.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/files/volumes/Volumes.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace mac::test {
namespace {

FSVolumeRefNum numberOf(std::string const& path) {
    Result<FSRef> const ref = referenceToPath(path, LinkAtEnd::IsNotFollowed);
    FSCatalogInfo information;
    EXPECT_TRUE(ref.hasValue());
    EXPECT_EQ(FSGetCatalogInfo(&ref.value(), kFSCatInfoVolume, &information, nullptr, nullptr, nullptr), noErr);
    return information.volume;
}

TEST(VolumeInformation, WalksTheVolumesByIndex) {
    std::set<FSVolumeRefNum> numbers;
    ItemCount index = 1;
    FSVolumeRefNum number = 0;
    while (FSGetVolumeInfo(kFSInvalidVolumeRefNum, index, &number, kFSVolInfoNone, nullptr, nullptr, nullptr) ==
           noErr) {
        EXPECT_TRUE(numbers.insert(number).second) << index;
        ++index;
    }
    EXPECT_TRUE(numbers.contains(numberOf("/")));
    EXPECT_EQ(FSGetVolumeInfo(kFSInvalidVolumeRefNum, index, &number, kFSVolInfoNone, nullptr, nullptr, nullptr),
              nsvErr);
}

// The startup volume's name with the colons of paths as slashes.
std::u16string shownStartupName() {
    std::u16string name = startupVolumeName();
    std::ranges::replace(name, u':', u'/');
    return name;
}

TEST(VolumeInformation, BeginsWithTheStartupVolume) {
    HFSUniStr255 name{};
    FSRef root{};
    FSVolumeRefNum number = 0;
    ASSERT_EQ(FSGetVolumeInfo(kFSInvalidVolumeRefNum, 1, &number, kFSVolInfoNone, nullptr, &name, &root), noErr);
    EXPECT_EQ(number, numberOf("/"));
    EXPECT_EQ(std::u16string(name.unicode.data(), name.length), shownStartupName());
    EXPECT_EQ(root, referenceToPath("/", LinkAtEnd::IsFollowed).value());
    CFURLRef url;
    EXPECT_EQ(FSCopyURLForVolume(number, &url), noErr);
    EXPECT_TRUE(url.path().isEqualToString_("/"));
}

TEST(VolumeInformation, TellsSizesAndKind) {
    FSVolumeInfo information;
    FSVolumeInfoBitmap const all = kFSVolInfoSizes | kFSVolInfoBlocks | kFSVolInfoFlags | kFSVolInfoFSInfo;
    ASSERT_EQ(FSGetVolumeInfo(numberOf("/"), 0, nullptr, all, &information, nullptr, nullptr), noErr);
    struct statvfs status {};
    ASSERT_EQ(::statvfs("/", &status), 0);
    EXPECT_EQ(information.totalBytes, std::uint64_t{status.f_blocks} * status.f_frsize);
    EXPECT_EQ(information.blockSize, status.f_frsize);
    EXPECT_LE(information.freeBytes, information.totalBytes);
}

TEST(VolumeInformation, KnowsFileSystemsByTheirKind) {
    struct Kind {
        char const* name;
        bool isLocal;
        std::uint16_t identifier;
    };
    constexpr Kind kinds[] = {
        {"ext4", true, 0xFFFE},  {"xfs", true, 0xFFFE},   {"btrfs", true, 0xFFFE}, {"tmpfs", true, 0xFFFE},
        {"vfat", true, 0x4953},  {"msdos", true, 0x4953}, {"exfat", true, 0x4953}, {"nfs4", false, 0x6173},
        {"cifs", false, 0x6173}, {"hfsplus", true, 0},    {"hfs", true, 0},
    };
    for (Kind const& kind : kinds)
        EXPECT_EQ(fileSystemIdentifier(kind.name, kind.isLocal), kind.identifier) << kind.name;
    std::set<std::uint16_t> const decided{0, 0x4953, 0x6173, 0xFFFE, 0xFFFF};
    for (char const* other : {"ntfs3", "iso9660", "udf", "fuseblk"})
        EXPECT_FALSE(decided.contains(fileSystemIdentifier(other, true))) << other;
}

TEST(VolumeInformation, AnswersWhyItCannotBeHad) {
    FSVolumeRefNum number = 7;
    FSVolumeInfo information;
    EXPECT_EQ(FSGetVolumeInfo(0x3F3F, 0, &number, kFSVolInfoFSInfo, &information, nullptr, nullptr), nsvErr);
    EXPECT_EQ(FSGetVolumeInfo(0, 0, &number, kFSVolInfoNone, nullptr, nullptr, nullptr), nsvErr);
    EXPECT_EQ(FSGetVolumeInfo(-100, 1, &number, kFSVolInfoNone, nullptr, nullptr, nullptr), paramErr);
    EXPECT_EQ(FSGetVolumeInfo(0, 1, &number, kFSVolInfoFSInfo, nullptr, nullptr, nullptr), paramErr);
    EXPECT_EQ(FSGetVolumeInfo(0, 1, &number, 0x00010000, &information, nullptr, nullptr), errFSBadInfoBitmap);
    EXPECT_EQ(number, 7);
    CFURLRef url;
    EXPECT_EQ(FSCopyURLForVolume(0x3F3F, &url), nsvErr);
    EXPECT_EQ(FSCopyURLForVolume(numberOf("/"), nullptr), paramErr);
}

class MountedVolumeNumbers : public PrivateMounts {
protected:
    TemporaryFolder const m_folder{};
};

TEST_F(MountedVolumeNumbers, StayAsLongAsTheVolumeIsMounted) {
    std::string const first = m_folder.makeFolder("first");
    std::string const second = m_folder.makeFolder("second");
    mountMemory(first);
    FSVolumeRefNum const number = numberOf(first);
    EXPECT_NE(number, numberOf("/"));
    mountMemory(second);
    EXPECT_NE(numberOf(second), number);
    EXPECT_EQ(numberOf(first), number);
    FSVolumeInfo information;
    ASSERT_EQ(FSGetVolumeInfo(number, 0, nullptr, kFSVolInfoFSInfo | kFSVolInfoFlags, &information, nullptr, nullptr),
              noErr);
    EXPECT_EQ(information.filesystemID, 0xFFFE);
    EXPECT_EQ(information.flags, 0);
    makeReadOnly(first);
    ASSERT_EQ(FSGetVolumeInfo(number, 0, nullptr, kFSVolInfoFlags, &information, nullptr, nullptr), noErr);
    EXPECT_EQ(information.flags, kFSVolFlagSoftwareLockedMask);
}

TEST_F(MountedVolumeNumbers, OfTheSystemsMemoryAreNotListedButKnown) {
    mountMemory("/dev/shm");
    std::string const disk = m_folder.makeFolder("disk");
    mountMemory(disk);
    std::set<FSVolumeRefNum> listed;
    FSVolumeRefNum number = 0;
    for (ItemCount index = 1;
         FSGetVolumeInfo(kFSInvalidVolumeRefNum, index, &number, kFSVolInfoNone, nullptr, nullptr, nullptr) == noErr;
         ++index)
        listed.insert(number);
    EXPECT_TRUE(listed.contains(numberOf("/")));
    EXPECT_TRUE(listed.contains(numberOf(disk)));
    EXPECT_FALSE(listed.contains(numberOf("/dev/shm")));
    FSVolumeInfo information;
    EXPECT_EQ(FSGetVolumeInfo(numberOf("/dev/shm"), 0, nullptr, kFSVolInfoSizes, &information, nullptr, nullptr), noErr)
        << "it has room for items";
}

TEST_F(MountedVolumeNumbers, AreWalkedPastARootThatTheUserMayNotReach) {
    std::string const behind = m_folder.makeFolder("open");
    mountMemory(m_folder.makeFolder("closed/volume"));
    mountMemory(behind);
    FSVolumeRefNum const closed = numberOf(m_folder.path("closed/volume"));
    FSVolumeRefNum const open = numberOf(behind);
    std::map<FSVolumeRefNum, FSRef> roots;
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(m_folder.path("closed").c_str(), 0), 0);
    {
        OrdinaryUser const user;
        FSVolumeRefNum number = 0;
        FSRef root{};
        for (ItemCount index = 1;
             FSGetVolumeInfo(kFSInvalidVolumeRefNum, index, &number, kFSVolInfoNone, nullptr, nullptr, &root) == noErr;
             ++index)
            roots[number] = root;
        EXPECT_EQ(FSGetVolumeInfo(closed, 0, nullptr, kFSVolInfoNone, nullptr, nullptr, &root), ioErr);
    }
    ASSERT_EQ(::chmod(m_folder.path("closed").c_str(), 0700), 0);
    ASSERT_TRUE(roots.contains(closed) && roots.contains(open));
    EXPECT_EQ(roots[closed], FSRef{});
    EXPECT_EQ(roots[open], referenceToPath(behind, LinkAtEnd::IsFollowed).value());
}

TEST_F(MountedVolumeNumbers, NameNothingOnceTheVolumeHasGone) {
    std::string const place = m_folder.makeFolder("place");
    mountMemory(place);
    FSVolumeRefNum const number = numberOf(place);
    CFURLRef url;
    ASSERT_EQ(FSCopyURLForVolume(number, &url), noErr);
    ASSERT_EQ(::umount2(place.c_str(), MNT_DETACH), 0);
    FSVolumeInfo information;
    EXPECT_EQ(FSGetVolumeInfo(number, 0, nullptr, kFSVolInfoFSInfo, &information, nullptr, nullptr), nsvErr);
    EXPECT_EQ(FSCopyURLForVolume(number, &url), nsvErr);
    mountMemory(place);
    EXPECT_NE(numberOf(place), number) << "another volume is not taken for it";
}

} // namespace
} // namespace mac::test
