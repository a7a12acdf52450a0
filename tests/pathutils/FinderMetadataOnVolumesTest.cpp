#include "pathutils/FinderMetadata.h"
#include "pathutils/PathRelations.h"
#include "platform/launchservices/ItemInformation.h"
#include "scripting/URLUtilities.h"
#include "tests/platform/system/LongFolder.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

namespace mac::test {
namespace {

bool setFlags(std::string const& item, std::uint16_t flags) {
    return pxSetFinderFlagsOfPath_mask_(path(item), flags, 0xFFFF);
}

std::uint16_t flagsOf(std::string const& item) {
    std::uint16_t flags = 0xDEAD;
    EXPECT_TRUE(pxFinderFlagsOfPath_(path(item), &flags));
    return flags;
}

class FinderMetadataOnVolumes : public PrivateMounts {
protected:
    TemporaryFolder const m_folder{};
};

TEST_F(FinderMetadataOnVolumes, LieBesideTheItemWhereTheVolumeHoldsNoAttributes) {
    std::string const point = m_folder.makeFolder("plain");
    mountWithoutAttributes(point);
    std::string const file = m_folder.makeFile("plain/file.txt", "");
    EXPECT_EQ(flagsOf(file), 0);
    EXPECT_TRUE(setFlags(file, kExtensionHidden | kIsInvisible));
    EXPECT_EQ(flagsOf(file), kExtensionHidden | kIsInvisible);
    EXPECT_EQ(::access((point + "/._file.txt").c_str(), F_OK), 0);
    std::uint32_t flags = 0;
    NSString name;
    EXPECT_TRUE(pxLSFlagsOfPath_displayName_(path(file), &flags, &name));
    EXPECT_EQ(flags, kLSItemInfoIsPlainFile | kLSItemInfoIsInvisible);
    EXPECT_TRUE(name.isEqualToString_("file"));
    // Neither the invisible file nor what lies beside it is seen.
    EXPECT_EQ(pxVisibleDirectoryContentsAtPath_(path(point), YES).count(), 0U);
    EXPECT_TRUE(setFlags(file, 0));
    EXPECT_NE(::access((point + "/._file.txt").c_str(), F_OK), 0);
}

TEST_F(FinderMetadataOnVolumes, CannotBeSetWhereNothingCanBeWritten) {
    std::string const point = m_folder.makeFolder("read only");
    mountMemory(point);
    std::string const file = m_folder.makeFile("read only/file", "");
    EXPECT_TRUE(setFlags(file, kIsAlias));
    makeReadOnly(point);
    EXPECT_FALSE(setFlags(file, 0));
    EXPECT_EQ(flagsOf(file), kIsAlias);
}

TEST_F(FinderMetadataOnVolumes, TellVolumesApart) {
    std::string const point = m_folder.makeFolder("volume");
    mountMemory(point);
    EXPECT_NE(pxVolumeRefNumOfPath(path(point)), pxVolumeRefNumOfPath(path(m_folder.path())));
    EXPECT_EQ(pxFilesystemIDForPath(path(point)), 0xFFFE);
    std::uint32_t flags = 0;
    EXPECT_TRUE(pxLSFlagsOfPath_(path(point), &flags));
    EXPECT_EQ(flags, kLSItemInfoIsContainer | kLSItemInfoIsVolume);
}

TEST_F(FinderMetadataOnVolumes, LeaveTheVolumeFreeToBeUnmounted) {
    std::string const point = m_folder.makeFolder("volume");
    mountMemory(point);
    NSString const file = path(m_folder.makeFile("volume/folder/file", ""));
    std::uint16_t flags = 0;
    bool isFolder = true;
    std::int16_t label = 0;
    IconRef icon{};
    std::uint32_t valence = 0;
    EXPECT_TRUE(pxSetFinderFlagsOfPath_mask_(file, kHasCustomIcon, kHasCustomIcon));
    EXPECT_TRUE(pxFinderFlagsOfPath_(file, &flags));
    EXPECT_TRUE(pxFinderFlagsOfPath_isFolder_customIconRef_labelIndex_(file, &flags, &isFolder, &icon, &label));
    EXPECT_EQ(ReleaseIconRef(icon), noErr);
    EXPECT_TRUE(pxValenceOfPath_(file, &valence));
    EXPECT_LT(pxVolumeRefNumOfPath(file), 0);
    EXPECT_EQ(pxFilesystemIDForPath(file), 0xFFFE);
    EXPECT_FALSE(KRPathHasInexactTime(file));
    EXPECT_FALSE(pxPathIsOnIDisk(file));
    EXPECT_FALSE(pxIsImageFile(file));
    EXPECT_FALSE(pxIsAudioFile(file));
    std::uint32_t serviceFlags = 0;
    EXPECT_TRUE(pxLSFlagsOfPath_(file, &serviceFlags));
    NSURL const volume = pxURLForVolume_(pxVolumeRefNumOfPath(file));
    EXPECT_TRUE(KRVolumeURLGetPath(volume).isEqualToString_(path(point)));
    EXPECT_EQ(::umount(point.c_str()), 0);
    mountMemory(point);
}

TEST(FinderMetadataOfLongPaths, IsThatOfOthers) {
    LongFolder folder;
    folder.makeFolder("A.app");
    folder.makeFolder("A.app/Contents");
    std::string const bundle = folder.path() + "/A.app";
    EXPECT_TRUE(pxIsPathPartOfPackageCheckingMaxLevels_(path(bundle + "/Contents"), 1));
    EXPECT_TRUE(setFlags(bundle, kHasCustomIcon));
    EXPECT_EQ(flagsOf(bundle), kHasCustomIcon);
    std::uint32_t valence = 0;
    EXPECT_TRUE(pxValenceOfPath_(path(bundle), &valence));
    EXPECT_EQ(valence, 1U);
    EXPECT_EQ(pxVisibleDirectoryContentsAtPath_(path(folder.path()), NO).count(), 1U);
    EXPECT_LT(pxVolumeRefNumOfPath(path(bundle)), 0);
}

} // namespace
} // namespace mac::test
