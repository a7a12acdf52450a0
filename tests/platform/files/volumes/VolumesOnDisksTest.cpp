#include "platform/files/references/HFSPaths.h"
#include "platform/files/volumes/VolumeInformation.h"
#include "platform/system/LongPath.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace mac::test {
namespace {

class VolumesOnDisks : public PrivateMounts {
protected:
    // Mounts a volume in /mnt, where volumes are browsable.
    std::string mountedInMnt(std::string const& name) {
        if (!m_hasMnt) mountMemory("/mnt");
        m_hasMnt = true;
        std::string const point = "/mnt/" + name;
        EXPECT_EQ(::mkdir(point.c_str(), 0700), 0);
        mountMemory(point);
        return point;
    }

    TemporaryFolder const m_folder{};

private:
    bool m_hasMnt{false};
};

TEST_F(VolumesOnDisks, AreFoundByWhatLiesOnThem) {
    std::string const point = m_folder.makeFolder("point");
    mountMemory(point);
    makeReadOnly(point);
    FileDescriptor const item = openPath(point, O_PATH).takeValue();
    Result<MountedVolume> const volume = volumeOfItem(item);
    ASSERT_TRUE(volume.hasValue());
    EXPECT_EQ(volume.value().mountPoint, point);
    EXPECT_EQ(volume.value().fileSystem, "tmpfs");
    EXPECT_TRUE(volume.value().isReadOnly);
    EXPECT_TRUE(volume.value().isLocal);
    EXPECT_EQ(volumeOfPath(mountedVolumes(), point + "/x")->mount, volume.value().mount);
}

TEST_F(VolumesOnDisks, AreToldApartThoughOneShowsTheOther) {
    std::string const point = m_folder.makeFolder("point");
    std::string const memory = m_folder.makeFolder("memory");
    mountMemory(memory);
    bind(memory, point);
    FileDescriptor const item = openPath(point, O_PATH).takeValue();
    EXPECT_EQ(volumeOfItem(item).value().mountPoint, point);
}

TEST_F(VolumesOnDisks, HaveTheNumberThatWhatLiesOnThemTells) {
    std::string const point = m_folder.makeFolder("point");
    std::string const memory = m_folder.makeFolder("memory");
    mountMemory(memory);
    bind(memory, point);
    std::vector<MountedVolume> const volumes = mountedVolumes();
    for (std::string const& path : {std::string("/"), memory, point}) {
        FileDescriptor const item = openPath(path, O_PATH).takeValue();
        MountedVolume const* const volume = volumeOfPath(volumes, path);
        ASSERT_TRUE(volume) << path;
        EXPECT_EQ(numberOfVolumeOf(item).value(), numberOfVolume(*volume)) << path;
    }
}

TEST_F(VolumesOnDisks, ThatAnotherOneHidesAreNone) {
    std::string const point = m_folder.makeFolder("point");
    mountMemory(point);
    FileDescriptor const item = openPath(point, O_PATH).takeValue();
    EXPECT_TRUE(numberOfVolumeOf(item).hasValue());
    mountMemory(point);
    EXPECT_TRUE(numberOfVolumeOf(item).problem().is(ENXIO));
}

TEST_F(VolumesOnDisks, AreNamedInPaths) {
    mountedInMnt("St:ick");
    EXPECT_EQ(hfsPathFromPOSIXPath(u"/mnt/St:ick/a", false), u"St/ick:a");
    EXPECT_EQ(posixPathFromHFSPath(u"ST/ICK:a"), u"/mnt/St:ick/a");
}

TEST_F(VolumesOnDisks, ThatAreImagesAreEjectable) {
    std::string const point = m_folder.makeFolder("point");
    mountImage(m_folder.path("image"), point);
    if (IsSkipped()) return;
    FileDescriptor const item = openPath(point, O_PATH).takeValue();
    Result<MountedVolume> const volume = volumeOfItem(item);
    ASSERT_TRUE(volume.hasValue());
    EXPECT_TRUE(driveOf(volume.value()).isEjectable);
}

} // namespace
} // namespace mac::test
