#include "platform/files/volumes/Volumes.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/MountTable.h"
#include "tests/support/TemporaryFolder.h"
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

using Volumes = std::vector<MountedVolume>;
using Texts = std::vector<std::string>;

constexpr char const* Disk = "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n";

Volumes volumesIn(std::string const& more) { return volumesOf(MountTable::parse(Disk + more)); }

Texts pointsOf(Volumes const& volumes, bool onlyBrowsable = false) {
    Texts points;
    for (MountedVolume const& volume : volumes) {
        if (volume.isBrowsable || !onlyBrowsable) points.push_back(volume.mountPoint);
    }
    return points;
}

std::vector<std::u16string> namesOf(Volumes const& volumes) {
    std::vector<std::u16string> names;
    for (MountedVolume const& volume : volumes)
        names.push_back(volume.name);
    return names;
}

TEST(Volumes, HaveWhatTheListOfMountsTells) {
    Volumes const volumes = volumesIn("2 1 8:17 /part /media/ann/STICK ro - vfat /dev/sdb1 rw\n");
    ASSERT_EQ(volumes.size(), 2U);
    EXPECT_TRUE(volumes[0].isStartup());
    EXPECT_EQ(volumes[0].name, u"Macintosh HD");
    EXPECT_FALSE(volumes[0].isReadOnly);
    MountedVolume const& stick = volumes[1];
    EXPECT_EQ(stick.mount, 2U);
    EXPECT_EQ(stick.mountPoint, "/media/ann/STICK");
    EXPECT_EQ(stick.name, u"STICK");
    EXPECT_EQ(stick.device, "8:17");
    EXPECT_EQ(stick.subtree, "/part");
    EXPECT_EQ(stick.fileSystem, "vfat");
    EXPECT_EQ(stick.source, "/dev/sdb1");
    EXPECT_TRUE(stick.isReadOnly);
    EXPECT_TRUE(stick.isLocal);
    EXPECT_TRUE(stick.isBrowsable);
    EXPECT_FALSE(stick.isStartup());
}

TEST(Volumes, ComeInTheOrderOfTheirMountPoints) {
    EXPECT_EQ(pointsOf(volumesIn("2 1 8:2 / /mnt rw - ext4 d rw\n"
                                 "3 1 8:3 / /media/b rw - ext4 d rw\n"
                                 "4 1 8:4 / /media/a rw - ext4 d rw\n")),
              (Texts{"/", "/media/a", "/media/b", "/mnt"}));
}

TEST(Volumes, AreNeitherHiddenNorTheKernels) {
    EXPECT_EQ(pointsOf(volumesIn("2 1 0:5 / /proc rw - proc proc rw\n"
                                 "3 1 0:6 / /sys rw - sysfs sysfs rw\n"
                                 "4 1 0:7 / /dev rw - devtmpfs udev rw\n"
                                 "5 1 0:8 / /misc rw - autofs systemd-1 rw\n"
                                 "6 1 8:2 / /mnt/a/b rw - ext4 d rw\n"
                                 "7 1 8:3 / /mnt/a rw - ext4 d rw\n"
                                 "8 1 8:4 / /mnt/gone//deleted rw - ext4 d rw\n")),
              (Texts{"/", "/mnt/a"}));
}

TEST(Volumes, AreMemoryOfTheSystemsBelowTheKernelsFoldersOnly) {
    Texts memory;
    for (MountedVolume const& volume : volumesIn("2 1 0:23 / /dev/shm rw - tmpfs tmpfs rw\n"
                                                 "3 1 0:24 / /sys/fs/cgroup ro - tmpfs tmpfs ro\n"
                                                 "4 1 0:25 / /dev/lock rw - ramfs none rw\n"
                                                 "5 1 8:2 / /dev/disk rw - ext4 /dev/sda2 rw\n"
                                                 "6 1 0:26 / /mnt/memory rw - tmpfs tmpfs rw\n"
                                                 "7 1 0:27 / /devices rw - tmpfs tmpfs rw\n"))
        if (isSystemMemory(volume)) memory.push_back(volume.mountPoint);
    EXPECT_EQ(memory, (Texts{"/dev/lock", "/dev/shm", "/sys/fs/cgroup"}));
}

TEST(Volumes, OfTheSystemAreNotForBrowsing) {
    Volumes const volumes = volumesIn("2 1 8:2 / /boot/efi rw - vfat d rw\n"
                                      "3 1 8:3 / /home rw - ext4 d rw\n"
                                      "4 3 0:9 / /home/ann rw - fuse.gocryptfs d rw\n"
                                      "5 4 8:17 / /home/ann/stick rw - ext4 d rw\n"
                                      "6 1 0:10 / /run rw - tmpfs d rw\n"
                                      "7 6 8:33 / /run/media/ann/X rw - ext4 d rw\n"
                                      "8 1 0:11 / /tmp rw - tmpfs d rw\n"
                                      "9 1 0:12 / /tmpx rw - tmpfs d rw\n");
    EXPECT_EQ(volumes.size(), 9U);
    EXPECT_EQ(pointsOf(volumes, true), (Texts{"/", "/home/ann/stick", "/run/media/ann/X", "/tmpx"}));
}

TEST(Volumes, ThatShowPartsOfOthersAreNotForBrowsing) {
    Volumes const volumes = volumesIn("2 1 8:1 /home/ann /mnt/bound rw - ext4 d rw\n"
                                      "3 1 8:2 / /mnt/whole rw - ext4 d rw\n"
                                      "4 1 8:2 /x /mnt/a rw - ext4 d rw\n"
                                      "5 1 8:3 / /mnt/one rw - ext4 d rw\n"
                                      "6 1 8:3 / /mnt/other rw - ext4 d rw\n"
                                      "7 1 8:4 /@a /mnt/p rw - btrfs d rw\n"
                                      "8 1 8:4 /@ab /mnt/q rw - btrfs d rw\n");
    EXPECT_EQ(pointsOf(volumes, true), (Texts{"/", "/mnt/one", "/mnt/p", "/mnt/q", "/mnt/whole"}));
}

TEST(Volumes, HaveNamesOfTheirOwn) {
    EXPECT_EQ(namesOf(volumesIn("2 1 8:2 / /media/ann/disk rw - ext4 d rw\n"
                                "3 1 8:3 / /media/bob/Disk rw - ext4 d rw\n"
                                "4 1 8:4 / /media/bob/disk\\0401 rw - ext4 d rw\n"
                                "5 1 8:5 / /mnt/macintosh\\040hd rw - ext4 d rw\n"
                                "6 1 8:6 / /mnt/\xFF rw - ext4 d rw\n")),
              (std::vector<std::u16string>{u"Macintosh HD", u"disk", u"Disk 2", u"disk 1", u"macintosh hd 1",
                                           std::u16string(1, u'\xDCFF')}));
    // A part of the system takes no name from a disk.
    EXPECT_EQ(namesOf(volumesIn("2 1 8:2 / /boot/X rw - ext4 d rw\n3 1 8:3 / /mnt/X rw - ext4 d rw\n")),
              (std::vector<std::u16string>{u"Macintosh HD", u"X 1", u"X"}));
}

TEST(Volumes, AreCalledByTheLabelOfTheStartupVolume) {
    Volumes const volumes = volumesOf(MountTable::parse(std::string(Disk) + "2 1 8:2 / /mnt/backup rw - ext4 d rw\n" +
                                                        "3 1 8:3 / /mnt/macintosh\\040hd rw - ext4 d rw\n"),
                                      u"Backup");
    EXPECT_EQ(namesOf(volumes), (std::vector<std::u16string>{u"Backup", u"backup 1", u"macintosh hd"}));
}

TEST(Volumes, HaveTheLabelOfTheirDevice) {
    TemporaryFolder const folder;
    struct stat status {};
    ASSERT_EQ(::stat("/dev/null", &status), 0);
    EXPECT_EQ(labelOfDevice(status.st_rdev, folder.path()), std::nullopt);
    ASSERT_EQ(::symlink("/dev/zero", folder.path("Other").c_str()), 0);
    ASSERT_EQ(::symlink("/dev/none", folder.path("Leads nowhere").c_str()), 0);
    folder.makeFile("A file", "");
    EXPECT_EQ(labelOfDevice(status.st_rdev, folder.path()), std::nullopt);
    ASSERT_EQ(::symlink("/dev/null", folder.path(R"(My\x20Disk\xc3\x89\x2x\x)").c_str()), 0);
    EXPECT_EQ(labelOfDevice(status.st_rdev, folder.path()), "My Disk\u00C9\\x2x\\x");
    EXPECT_EQ(labelOfDevice(status.st_rdev, folder.path("none")), std::nullopt);
    EXPECT_EQ(labelOfDevice(0, folder.path()), std::nullopt);
}

TEST(Volumes, OnTheNetworkAreNotLocal) {
    Volumes const volumes = volumesIn("2 1 0:50 / /mnt/net rw - nfs4 server:/export\\040x rw\n");
    ASSERT_EQ(volumes.size(), 2U);
    EXPECT_FALSE(volumes[1].isLocal);
    EXPECT_EQ(volumes[1].source, "server:/export x");
    TemporaryFolder const noDrives;
    EXPECT_TRUE(driveOf(volumes[1], noDrives.path()).isEjectable);
}

TEST(Volumes, AreFoundByPath) {
    Volumes const volumes = volumesIn("2 1 8:2 / /a rw - ext4 d rw\n3 2 8:3 / /a/b rw - ext4 d rw\n");
    EXPECT_EQ(volumeOfPath(volumes, "/")->mountPoint, "/");
    EXPECT_EQ(volumeOfPath(volumes, "/ab")->mountPoint, "/");
    EXPECT_EQ(volumeOfPath(volumes, "/a")->mountPoint, "/a");
    EXPECT_EQ(volumeOfPath(volumes, "/a/c")->mountPoint, "/a");
    EXPECT_EQ(volumeOfPath(volumes, "/a/b/c")->mountPoint, "/a/b");
    EXPECT_EQ(volumeOfPath(volumes, "a/b"), nullptr);
    EXPECT_EQ(volumeOfPath(volumes, ""), nullptr);
}

TEST(Volumes, HoldTheStartupVolumeThoughTheListDoesNot) {
    Volumes const volumes = volumesOf(MountTable::parse("2 77 8:2 / /mnt/a rw - ext4 d rw\n"));
    EXPECT_EQ(pointsOf(volumes), (Texts{"/", "/mnt/a"}));
    EXPECT_EQ(volumes[0].name, u"Macintosh HD");
    EXPECT_EQ(pointsOf(volumesOf(MountTable())), Texts{"/"});
}

TEST(Volumes, HoldTheStartupVolumeWhateverItIs) {
    EXPECT_EQ(pointsOf(volumesOf(MountTable::parse("1 0 0:50 / / rw - nfs server:/ rw\n"))), Texts{"/"});
    EXPECT_EQ(pointsOf(volumesOf(MountTable::parse("1 0 0:5 / / rw - autofs x rw\n"))), Texts{"/"});
}

TEST(Volumes, OfThisSystemBeginWithItsRoot) {
    Volumes const volumes = mountedVolumes();
    ASSERT_FALSE(volumes.empty());
    EXPECT_TRUE(volumes.front().isStartup());
    FileDescriptor const root = openPath("/", O_PATH).takeValue();
    EXPECT_EQ(volumeOfItem(root).value().mountPoint, "/");
}

TEST(Volumes, HoldNoPipesAndNothingThatIsNotOpen) {
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    FileDescriptor const reading(ends[0]);
    FileDescriptor const writing(ends[1]);
    EXPECT_FALSE(volumeOfItem(reading).hasValue());
    EXPECT_FALSE(volumeOfItem(FileDescriptor()).hasValue());
    FileDescriptor const kernels = openPath("/proc/self/status", O_PATH).takeValue();
    EXPECT_FALSE(volumeOfItem(kernels).hasValue());
}

// A folder such as the system shows its devices in.
class VolumeDrives : public testing::Test {
protected:
    void addDrive(std::string const& place, std::string const& device, std::string const& removable) const {
        m_folder.makeFile(place + "/removable", removable + "\n");
        m_folder.makeFile(place + "/1/partition", "1\n");
        addDevice(device, place + "/1");
    }
    void addDevice(std::string const& device, std::string const& place) const {
        m_folder.makeFile("dev/block/.keep", "");
        m_folder.makeFolder(place);
        ASSERT_EQ(::symlink(m_folder.path(place).c_str(), m_folder.path("dev/block/" + device).c_str()), 0);
    }
    VolumeDrive driveOfDevice(std::string const& device, std::string const& point = "/mnt/x") const {
        MountedVolume const volume{.mountPoint = point, .device = device, .isLocal = true};
        return driveOf(volume, m_folder.path("."));
    }

    TemporaryFolder const m_folder{};
};

TEST_F(VolumeDrives, AreRemovableWhenTheSystemSaysSo) {
    addDrive("pci/stick", "8:17", "1");
    addDrive("pci/disk", "8:1", "0");
    EXPECT_TRUE(driveOfDevice("8:17").isRemovable);
    EXPECT_TRUE(driveOfDevice("8:17").isEjectable);
    EXPECT_FALSE(driveOfDevice("8:1").isRemovable);
    EXPECT_FALSE(driveOfDevice("8:1").isEjectable);
    EXPECT_FALSE(driveOfDevice("8:17", "/").isEjectable);
}

TEST_F(VolumeDrives, ThatAreExternalAreEjectable) {
    addDrive("pci/usb1/disk", "8:33", "0");
    addDevice("7:0", "virtual/loop0");
    m_folder.makeFile("virtual/loop0/loop/backing_file", "/home/ann/image\n");
    addDevice("11:0", "pci/cd");
    m_folder.makeFile("pci/cd/events", "media_change eject_request\n");
    for (char const* const device : {"8:33", "7:0", "11:0"}) {
        EXPECT_TRUE(driveOfDevice(device).isEjectable) << device;
        EXPECT_FALSE(driveOfDevice(device).isRemovable) << device;
    }
}

TEST_F(VolumeDrives, LieBelowWhatIsMadeOfThem) {
    addDrive("pci/stick", "8:17", "1");
    addDevice("253:0", "virtual/dm-0");
    m_folder.makeFolder("virtual/dm-0/slaves");
    ASSERT_EQ(::symlink(m_folder.path("pci/stick/1").c_str(), m_folder.path("virtual/dm-0/slaves/sdb1").c_str()), 0);
    EXPECT_TRUE(driveOfDevice("253:0").isRemovable);
}

TEST_F(VolumeDrives, EndWhereTheyLieOnThemselves) {
    addDevice("253:0", "virtual/dm-0");
    m_folder.makeFolder("virtual/dm-0/slaves");
    ASSERT_EQ(::symlink("..", m_folder.path("virtual/dm-0/slaves/dm-0").c_str()), 0);
    EXPECT_FALSE(driveOfDevice("253:0").isRemovable);
}

TEST_F(VolumeDrives, ThatAreNotToldAreNothing) {
    EXPECT_FALSE(driveOfDevice("8:99").isRemovable);
    EXPECT_FALSE(driveOfDevice("0:40").isEjectable);
    EXPECT_FALSE(driveOfDevice("").isEjectable);
}

} // namespace
} // namespace mac::test
