#include "platform/system/walker/VolumeList.h"
#include "platform/system/items/MountTable.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

using Paths = std::vector<std::string>;

PackageRule const s_packages(".app", {});

WalkRoot rootAt(std::string const& path, std::uint64_t mount) {
    return {.path = path, .canonicalPath = path, .mount = mount, .isLink = false};
}

Paths pathsOf(VolumeList const& list) {
    Paths paths;
    for (Volume const& volume : list.volumes)
        paths.push_back(volume.path);
    return paths;
}

Paths chosen(std::string_view mountinfo, std::vector<WalkRoot> const& roots, bool onlyLocal = false) {
    return pathsOf(chooseVolumes(roots, onlyLocal, s_packages, MountTable::parse(mountinfo)));
}

Paths allLocal(std::string_view mountinfo) { return chosen(mountinfo, {rootAt("/", 1)}, true); }

constexpr char const* s_disk = "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n";

} // namespace

TEST(VolumeList, HoldsTheLocalVolumesOnly) {
    EXPECT_EQ(allLocal(std::string(s_disk) + "2 1 0:21 / /proc rw - proc proc rw\n"
                                             "3 1 8:2 / /home rw - ext4 /dev/sda2 rw\n"
                                             "4 3 0:50 / /home/u/net rw - nfs server:/ rw\n"
                                             "5 1 7:0 / /media/image rw - iso9660 /dev/loop0 ro\n"
                                             "6 1 0:40 / /tmp rw - tmpfs tmpfs rw\n"),
              (Paths{"/", "/home", "/media/image", "/tmp"}));
}

TEST(VolumeList, HoldsLocalVolumesBelowARootThatIsNotLocal) {
    EXPECT_EQ(allLocal("1 0 0:50 / / rw - nfs server:/ rw\n2 1 8:2 / /home rw - ext4 /dev/sda2 rw\n"),
              (Paths{"/home"}));
}

TEST(VolumeList, HoldsARootThatWasAskedForWhateverItsFileSystem) {
    EXPECT_EQ(chosen("1 0 0:50 / / rw - nfs server:/ rw\n", {rootAt("/net", 1)}), (Paths{"/net"}));
}

TEST(VolumeList, HoldsTheRootFolderThoughTheTableDoesNot) {
    EXPECT_EQ(allLocal("2 77 8:2 / /home rw - ext4 /dev/sda2 rw\n"), (Paths{"/", "/home"}));
}

TEST(VolumeList, HoldsADeviceOnce) {
    EXPECT_EQ(allLocal(std::string(s_disk) + "2 1 8:2 / /first rw - ext4 /dev/sda2 rw\n"
                                             "3 1 8:2 / /second rw - ext4 /dev/sda2 rw\n"),
              (Paths{"/", "/first"}));
}

TEST(VolumeList, LeavesPartsOfADeviceToTheWhole) {
    EXPECT_EQ(allLocal(std::string(s_disk) + "2 1 8:2 /part /bound rw - ext4 /dev/sda2 rw\n"
                                             "3 1 8:2 / /whole rw - ext4 /dev/sda2 rw\n"
                                             "4 1 8:1 /home/u /mnt rw - ext4 /dev/sda1 rw\n"),
              (Paths{"/", "/whole"}));
}

TEST(VolumeList, HoldsSeveralPartsOfADeviceThatIsNotMountedWhole) {
    EXPECT_EQ(allLocal("1 0 0:31 /@ / rw - btrfs /dev/sda1 rw\n"
                       "2 1 0:31 /@home /home rw - btrfs /dev/sda1 rw\n"
                       "3 1 0:31 /@home/u /mnt rw - btrfs /dev/sda1 rw\n"),
              (Paths{"/", "/home"}));
}

TEST(VolumeList, HoldsAPartWhoseOwnPlaceIsHiddenByAnotherMount) {
    EXPECT_EQ(allLocal(std::string(s_disk) + "2 1 8:2 / /data rw - ext4 /dev/sda2 rw\n"
                                             "3 1 8:1 /data/old /mnt rw - ext4 /dev/sda1 rw\n"),
              (Paths{"/", "/data", "/mnt"}));
}

TEST(VolumeList, HoldsAPartThatLiesInAPackageWhichNoWalkEnters) {
    EXPECT_EQ(allLocal(std::string(s_disk) + "2 1 8:1 /A.app/Contents /mnt rw - ext4 /dev/sda1 rw\n"),
              (Paths{"/", "/mnt"}));
}

TEST(VolumeList, HoldsAPackageThatIsBoundAsAnOrdinaryFolder) {
    EXPECT_EQ(allLocal(std::string(s_disk) + "2 1 8:1 /a/A.app /mnt rw - ext4 /dev/sda1 rw\n"), (Paths{"/", "/mnt"}));
}

TEST(VolumeList, LeavesNothingToAVolumeThatIsLeftOutItself) {
    EXPECT_EQ(allLocal(std::string(s_disk) + "2 1 8:2 / /a/b/c rw - ext4 /dev/sda2 rw\n"
                                             "3 1 8:1 /a/b /first rw - ext4 /dev/sda1 rw\n"
                                             "4 1 8:1 /a/b/c /second rw - ext4 /dev/sda1 rw\n"),
              (Paths{"/", "/a/b/c", "/second"}));
}

TEST(VolumeList, LeavesOutMountsThatOthersHide) {
    EXPECT_EQ(allLocal(std::string(s_disk) + "2 1 8:2 / /data rw - ext4 /dev/sda2 rw\n"
                                             "3 2 8:3 / /data rw - ext4 /dev/sda3 rw\n"),
              (Paths{"/", "/data"}));
    EXPECT_EQ(allLocal(std::string(s_disk) + "2 1 8:2 / /data/x rw - ext4 /dev/sda2 rw\n"
                                             "3 1 8:3 / /data rw - ext4 /dev/sda3 rw\n"),
              (Paths{"/", "/data"}));
}

TEST(VolumeList, LeavesOutMountsAtAndInPackages) {
    EXPECT_EQ(allLocal(std::string(s_disk) + "2 1 8:2 / /A.app rw - ext4 /dev/sda2 rw\n"
                                             "3 1 8:3 / /B.app/volume rw - ext4 /dev/sda3 rw\n"),
              (Paths{"/"}));
}

TEST(VolumeList, HoldsOnlyWhatLiesBelowTheRoots) {
    EXPECT_EQ(chosen(std::string(s_disk) + "2 1 8:2 / /home rw - ext4 /dev/sda2 rw\n"
                                           "3 2 8:3 / /home/u/stick rw - ext4 /dev/sdb1 rw\n"
                                           "4 1 8:4 / /homestead rw - ext4 /dev/sda4 rw\n",
                     {rootAt("/home/u", 2)}),
              (Paths{"/home/u/stick", "/home/u"}));
}

TEST(VolumeList, NamesMountsByTheRootThatWasGiven) {
    WalkRoot const root{.path = "/link", .canonicalPath = "/home/u", .mount = 1, .isLink = true};
    VolumeList const list =
        chooseVolumes({root}, false, s_packages,
                      MountTable::parse(std::string(s_disk) + "2 1 8:2 / /home/u/stick rw - ext4 /dev/sdb1 rw\n"
                                                              "3 1 0:50 / /home/u/net rw - nfs server:/ rw\n"));
    EXPECT_EQ(pathsOf(list), (Paths{"/link/stick", "/link"}));
    EXPECT_TRUE(list.mountPoints.contains("/link/stick"));
    EXPECT_TRUE(list.mountPoints.contains("/link/net"));
    EXPECT_TRUE(list.mountPoints.isParentOfOne("/link"));
    EXPECT_FALSE(list.mountPoints.isParentOfOne("/home/u"));
}

TEST(VolumeList, TellsRootsThatArePackagesApart) {
    VolumeList const list =
        chooseVolumes({rootAt("/a/A.app", 1), rootAt("/b", 1)}, false, s_packages, MountTable::parse(s_disk));
    EXPECT_EQ(list.packages, (Paths{"/a/A.app"}));
    EXPECT_EQ(pathsOf(list), (Paths{"/b"}));
}

} // namespace mac::test
