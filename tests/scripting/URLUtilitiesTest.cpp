#include "scripting/URLUtilities.h"
#include "platform/launchservices/ItemInformation.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>
#include <unistd.h>

namespace mac::test {
namespace {

NSURL urlOf(std::string_view bytes) {
    return NSURL::fileURLWithPath_(NSString::stringWithFileSystemRepresentation_(bytes));
}

TEST(URLUtilities, AVolumesURLIsItsRoots) {
    FSRef root{};
    FSCatalogInfo information;
    ASSERT_EQ(FSPathMakeRef(reinterpret_cast<std::uint8_t const*>("/"), &root, nullptr), noErr);
    ASSERT_EQ(FSGetCatalogInfo(&root, kFSCatInfoVolume, &information, nullptr, nullptr, nullptr), noErr);
    EXPECT_TRUE(pxURLForVolume_(information.volume).absoluteString().isEqualToString_("file://localhost/"));
    EXPECT_TRUE(pxURLForVolume_(0x3F3F) == nil);
    EXPECT_TRUE(pxURLForVolume_(0) == nil);
}

TEST(URLUtilities, FlagsAndNameOfAnItem) {
    TemporaryFolder const folder;
    folder.makeFolder("A.app");
    ASSERT_EQ(::symlink("A.app", folder.path("link").c_str()), 0);
    std::uint32_t flags = 0;
    NSString name;
    EXPECT_TRUE(pxLSFlags_displayName_(urlOf(folder.path("A.app")), &flags, &name));
    EXPECT_EQ(flags, kLSItemInfoIsContainer | kLSItemInfoIsPackage | kLSItemInfoIsApplication);
    EXPECT_TRUE(name.isEqualToString_("A.app"));
    EXPECT_TRUE(pxLSFlags_displayName_(urlOf(folder.path("link")), &flags, nullptr));
    EXPECT_EQ(flags, kLSItemInfoIsSymlink | kLSItemInfoIsAliasFile);
    flags = 7;
    name = "untouched";
    for (NSURL const& none : {urlOf(folder.path("none")), NSURL::URLWithString_("http://host/a"), NSURL(nil)})
        EXPECT_FALSE(pxLSFlags_displayName_(none, &flags, &name));
    EXPECT_EQ(flags, 7U);
    EXPECT_TRUE(name.isEqualToString_("untouched"));
}

TEST(URLUtilities, ImagesAndSoundAreToldByTheirTypes) {
    TemporaryFolder const folder;
    EXPECT_TRUE(pxIsImageFile(urlOf(folder.makeFile("a.png", ""))));
    EXPECT_FALSE(pxIsAudioFile(urlOf(folder.path("a.png"))));
    EXPECT_TRUE(pxIsAudioFile(urlOf(folder.makeFile("a.ogg", ""))));
    EXPECT_FALSE(pxIsImageFile(urlOf(folder.path("a.ogg"))));
    // An image, of a type that nothing here reads.
    EXPECT_FALSE(pxIsImageFile(urlOf(folder.makeFile("a.djvu", ""))));
    for (NSURL const& none : {urlOf(folder.path("none.png")), NSURL::URLWithString_("http://host/a.png"), NSURL(nil)}) {
        EXPECT_FALSE(pxIsImageFile(none));
        EXPECT_FALSE(pxIsAudioFile(none));
    }
}

} // namespace
} // namespace mac::test
