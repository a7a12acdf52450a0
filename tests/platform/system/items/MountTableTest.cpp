#include "platform/system/items/MountTable.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

MountTable tableOf(std::string_view line) { return MountTable::parse(line); }

} // namespace

TEST(MountTable, ReadsTheFieldsOfALine) {
    MountTable const table =
        tableOf("36 35 98:0 /subtree /mount/point rw,noatime master:1 shared:7 - ext3 /dev/root rw,errors=continue\n");
    ASSERT_EQ(table.mounts().size(), 1U);
    Mount const& mount = table.mounts().front();
    EXPECT_EQ(mount.id, 36U);
    EXPECT_EQ(mount.parent, 35U);
    EXPECT_EQ(mount.device, "98:0");
    EXPECT_EQ(mount.subtree, "/subtree");
    EXPECT_EQ(mount.mountPoint, "/mount/point");
    EXPECT_EQ(mount.type, "ext3");
    EXPECT_EQ(mount.source, "/dev/root");
    EXPECT_FALSE(mount.isReadOnly);
}

TEST(MountTable, KnowsWhatCannotBeWrittenTo) {
    EXPECT_TRUE(tableOf("1 0 8:1 / / ro,noatime - ext4 d rw").mounts().at(0).isReadOnly);
    EXPECT_TRUE(tableOf("1 0 8:1 / / rw - ext4 d noatime,ro").mounts().at(0).isReadOnly);
    EXPECT_FALSE(tableOf("1 0 8:1 / / rw - ext4 ro errors=remount-ro,row").mounts().at(0).isReadOnly);
}

TEST(MountTable, ReadsEscapedBytes) {
    MountTable const table = tableOf("1 0 8:1 / /my\\040stick\\012\\134\\1 rw - vfat /dev/sdb1 rw\n");
    ASSERT_EQ(table.mounts().size(), 1U);
    EXPECT_EQ(table.mounts().front().mountPoint, "/my stick\n\\\\1");
}

class MalformedMountLines : public testing::TestWithParam<char const*> {};

TEST_P(MalformedMountLines, AreLeftOutAndTheRestIsRead) {
    MountTable const table = tableOf(std::string(GetParam()) + "\n2 1 8:1 / /good rw - ext4 /dev/sda1 rw");
    ASSERT_EQ(table.mounts().size(), 1U);
    EXPECT_EQ(table.mounts().front().mountPoint, "/good");
}

INSTANTIATE_TEST_SUITE_P(MountTable, MalformedMountLines,
                         testing::Values("", " ", "-", "1", "1 x 8:1 / /a rw - ext4 d o", "1 0 8:1 / /a rw ext4 d o",
                                         "1 0 8:1 / relative rw - ext4 d o", "1 0 8:1 / /a rw -",
                                         "99999999999999999999 0 8:1 / /a rw - ext4 d o"));

TEST(MountTable, FollowsLaterMountsThatHideEarlierOnes) {
    MountTable const table = tableOf("1 0 8:1 / / rw - ext4 d o\n"
                                     "2 1 8:2 / /a/b rw - ext4 d o\n" // hidden by 3
                                     "3 1 8:3 / /a rw - ext4 d o\n"
                                     "4 3 8:4 / /a/b rw - ext4 d o\n" // hidden by 5
                                     "5 4 8:5 / /a/b rw - ext4 d o\n");
    EXPECT_EQ(table.reachedBy("/")->id, 1U);
    EXPECT_EQ(table.reachedBy("/ab")->id, 1U);
    EXPECT_EQ(table.reachedBy("/a")->id, 3U);
    EXPECT_EQ(table.reachedBy("/a/c")->id, 3U);
    EXPECT_EQ(table.reachedBy("/a/b/c")->id, 5U);
}

TEST(MountTable, KnowsWhenAPathLiesInAMountThatIsNotListed) {
    MountTable const table = tableOf("2 1 8:2 / /a rw - ext4 d o\n");
    EXPECT_EQ(table.reachedBy("/b"), nullptr);
    EXPECT_EQ(table.reachedBy("/a/b")->id, 2U);
}

TEST(MountTable, EndsWhereMountsHangOnEachOther) {
    MountTable const table = tableOf("1 1 8:1 / / rw - ext4 d o\n"
                                     "2 3 8:2 / /a rw - ext4 d o\n"
                                     "3 2 8:2 / /a rw - ext4 d o\n");
    EXPECT_EQ(table.reachedBy("/a")->id, 1U);
}

TEST(MountTable, OfThisProcessHoldsItsRoot) {
    Result<MountTable> const table = MountTable::current();
    ASSERT_TRUE(table.hasValue());
    EXPECT_NE(table.value().reachedBy(MountTable::source), nullptr);
}

struct Locality {
    char const* line;
    bool isLocal;
};

class Localities : public testing::TestWithParam<Locality> {};

TEST_P(Localities, AreToldByDeviceAndType) {
    EXPECT_EQ(isLocal(tableOf(GetParam().line).mounts().at(0)), GetParam().isLocal) << GetParam().line;
}

INSTANTIATE_TEST_SUITE_P(MountTable, Localities,
                         testing::Values(Locality{"1 0 8:1 / / rw - ext4 /dev/sda1 rw", true},
                                         Locality{"1 0 7:3 / /media/image rw - squashfs /dev/loop3 ro", true},
                                         Locality{"1 0 11:0 / /media/cdrom rw - iso9660 /dev/sr0 ro", true},
                                         Locality{"1 0 8:17 / /media/stick rw - fuseblk /dev/sdb1 rw", true},
                                         Locality{"1 0 0:31 /@home /home rw - btrfs /dev/sda2 rw", true},
                                         Locality{"1 0 0:40 / /tmp rw - tmpfs tmpfs rw", true},
                                         Locality{"1 0 0:41 / / rw - overlay overlay rw,lowerdir=/l", true},
                                         Locality{"1 0 0:42 / /tank rw - zfs tank rw", true},
                                         Locality{"1 0 0:50 / /net rw - nfs4 server:/export rw", false},
                                         Locality{"1 0 0:51 / /net rw - cifs //server/share rw", false},
                                         Locality{"1 0 0:52 / /net rw - fuse.sshfs host: rw", false},
                                         Locality{"1 0 0:53 / /net rw - 9p share rw", false},
                                         Locality{"1 0 0:21 / /proc rw - proc proc rw", false},
                                         Locality{"1 0 0:22 / /sys rw - sysfs sysfs rw", false},
                                         Locality{"1 0 0:6 / /dev rw - devtmpfs devtmpfs rw", false},
                                         Locality{"1 0 0:54 / /misc rw - autofs systemd-1 rw", false}));

} // namespace mac::test
