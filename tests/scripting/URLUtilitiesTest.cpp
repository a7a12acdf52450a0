#include "scripting/URLUtilities.h"
#include "pathutils/FinderMetadata.h"
#include "platform/files/volumes/VolumeInformation.h"
#include "platform/launchservices/ItemInformation.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

TEST(URLUtilities, AVolumesURLIsItsRoots) {
    FSRef root{};
    FSCatalogInfo information;
    ASSERT_EQ(FSPathMakeRef(reinterpret_cast<std::uint8_t const*>("/"), &root, nullptr), noErr);
    ASSERT_EQ(FSGetCatalogInfo(&root, kFSCatInfoVolume, &information, nullptr, nullptr, nullptr), noErr);
    EXPECT_TRUE(pxURLForVolume_(information.volume).absoluteString().isEqualToString_("file://localhost/"));
    EXPECT_TRUE(pxURLForVolume_(0x3F3F) == nil);
    EXPECT_TRUE(pxURLForVolume_(0) == nil);
}

TEST(URLUtilities, FlagsAreAnsweredWithoutAPlaceForThem) {
    EXPECT_TRUE(pxLSFlags_displayName_(fileURL("/"), nullptr, nullptr));
}

TEST(URLUtilities, AVolumesPathIsFoundByItsURL) {
    EXPECT_TRUE(KRVolumeURLGetPath(NSURL::URLWithString_("file://localhost/")).isEqualToString_("/"));
    ItemCount index = 1;
    FSVolumeRefNum volume = 0;
    for (FSRef root{};
         FSGetVolumeInfo(kFSInvalidVolumeRefNum, index, &volume, kFSVolInfoNone, nullptr, nullptr, &root) == noErr;
         ++index) {
        NSURL const url = pxURLForVolume_(volume);
        EXPECT_TRUE(KRVolumeURLGetPath(url).isEqualToString_(url.path())) << url.absoluteString().UTF8String();
    }
    EXPECT_GT(index, 1U);
}

TEST(URLUtilities, AURLOfNoVolumeHasNoVolumesPath) {
    TemporaryFolder const folder;
    for (NSURL const& none : {fileURL(folder.path()), fileURL(folder.makeFile("file", "")), fileURL("/no such volume/"),
                              NSURL::URLWithString_("http://localhost/"), NSURL::URLWithString_("file:///"),
                              NSURL::URLWithString_("FILE://localhost/"), NSURL(nil)})
        EXPECT_TRUE(KRVolumeURLGetPath(none) == nil);
}

class URLUtilitiesOnVolumes : public PrivateMounts {
protected:
    TemporaryFolder const m_folder{};
};

TEST_F(URLUtilitiesOnVolumes, AVolumeIsFoundBehindOneThatTheUserMayNotReach) {
    std::string const behind = m_folder.makeFolder("open");
    mountMemory(m_folder.makeFolder("closed/volume"));
    mountMemory(behind);
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(m_folder.path("closed").c_str(), 0), 0);
    {
        OrdinaryUser const user;
        EXPECT_EQ(text(KRVolumeURLGetPath(fileURL(behind))), behind);
        EXPECT_EQ(text(KRVolumeURLGetPath(fileURL(m_folder.path("closed/volume/")))), "-");
    }
    ASSERT_EQ(::chmod(m_folder.path("closed").c_str(), 0700), 0);
}

TEST(URLUtilities, IconsAndTimesAreThoseOfThePath) {
    TemporaryFolder const folder;
    for (std::string const& path : {folder.makeFile("file", ""), folder.path(), folder.path("missing"),
                                    std::string("/"), std::string("/proc/self/stat")}) {
        NSString const string = NSString::stringWithFileSystemRepresentation_(path);
        EXPECT_EQ(KRURLSupportsCustomIcons(fileURL(path)), KRPathSupportsCustomIcons(string)) << path;
        EXPECT_EQ(KRURLHasInexactTime(fileURL(path)), KRPathHasInexactTime(string)) << path;
    }
    EXPECT_FALSE(KRURLSupportsCustomIcons(fileURL(folder.path("missing"))));
    EXPECT_TRUE(KRURLHasInexactTime(fileURL(folder.path("missing"))));
}

// Whatever the path says.
TEST(URLUtilities, IconsAndTimesOnTheIDiskAreToldByTheHost) {
    NSURL const url = NSURL::URLWithString_("http://idisk.mac.com/no/such/path");
    EXPECT_TRUE(KRURLSupportsCustomIcons(url));
    EXPECT_FALSE(KRURLHasInexactTime(url));
    NSURL const elsewhere = NSURL::URLWithString_("http://IDISK.mac.com/no/such/path");
    EXPECT_FALSE(KRURLSupportsCustomIcons(elsewhere));
    EXPECT_TRUE(KRURLHasInexactTime(elsewhere));
    EXPECT_FALSE(KRURLSupportsCustomIcons(nil));
    EXPECT_FALSE(KRURLHasInexactTime(nil));
}

TEST(URLUtilities, AreMessages) {
    id const url = NSURL::URLWithString_("http://idisk.mac.com/");
    EXPECT_TRUE(as<NSNumber>(url.performSelector_("KRURLSupportsCustomIcons")).boolValue());
    EXPECT_FALSE(as<NSNumber>(url.performSelector_("KRURLHasInexactTime")).boolValue());
    EXPECT_TRUE(url.performSelector_("KRVolumeURLGetPath") == nil);
}

TEST(URLUtilities, FlagsAndNameOfAnItem) {
    TemporaryFolder const folder;
    folder.makeFolder("A.app");
    ASSERT_EQ(::symlink("A.app", folder.path("link").c_str()), 0);
    std::uint32_t flags = 0;
    NSString name;
    EXPECT_TRUE(pxLSFlags_displayName_(fileURL(folder.path("A.app")), &flags, &name));
    EXPECT_EQ(flags, kLSItemInfoIsContainer | kLSItemInfoIsPackage | kLSItemInfoIsApplication);
    EXPECT_TRUE(name.isEqualToString_("A.app"));
    EXPECT_TRUE(pxLSFlags_displayName_(fileURL(folder.path("link")), &flags, nullptr));
    EXPECT_EQ(flags, kLSItemInfoIsSymlink | kLSItemInfoIsAliasFile);
    flags = 7;
    name = "untouched";
    for (NSURL const& none : {fileURL(folder.path("none")), NSURL::URLWithString_("http://host/a"), NSURL(nil)})
        EXPECT_FALSE(pxLSFlags_displayName_(none, &flags, &name));
    EXPECT_EQ(flags, 7U);
    EXPECT_TRUE(name.isEqualToString_("untouched"));
}

TEST(URLUtilities, ImagesAndSoundAreToldByTheirTypes) {
    TemporaryFolder const folder;
    EXPECT_TRUE(pxIsImageFile(fileURL(folder.makeFile("a.png", ""))));
    EXPECT_FALSE(pxIsAudioFile(fileURL(folder.path("a.png"))));
    EXPECT_TRUE(pxIsAudioFile(fileURL(folder.makeFile("a.ogg", ""))));
    EXPECT_FALSE(pxIsImageFile(fileURL(folder.path("a.ogg"))));
    // An image, of a type that nothing here reads.
    EXPECT_FALSE(pxIsImageFile(fileURL(folder.makeFile("a.djvu", ""))));
    for (NSURL const& none :
         {fileURL(folder.path("none.png")), NSURL::URLWithString_("http://host/a.png"), NSURL(nil)}) {
        EXPECT_FALSE(pxIsImageFile(none));
        EXPECT_FALSE(pxIsAudioFile(none));
    }
}

} // namespace
} // namespace mac::test
