#include "coreutils/IconsAndImages.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/foundation/NSData.h"
#include "tests/platform/icons/IconBytes.h"
#include "tests/support/FinderInformation.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

IconRef customIconOf(std::string const& file, std::string const& family) {
    std::string const fork = resourceFork("icns", -16455, family);
    EXPECT_EQ(setxattr(file.c_str(), XATTR_RESOURCEFORK_NAME, fork.data(), fork.size(), 0, 0), 0);
    FinderInformation finder;
    finder.setFinderFlags(kHasCustomIcon);
    EXPECT_TRUE(writeFinderInformation(file, finder));
    FSRef ref{};
    EXPECT_EQ(FSPathMakeRef(reinterpret_cast<std::uint8_t const*>(file.c_str()), &ref, nullptr), noErr);
    FSCatalogInfo information;
    EXPECT_EQ(FSGetCatalogInfo(&ref, kIconServicesCatalogInfoMask, &information, nullptr, nullptr, nullptr), noErr);
    IconRef icon{};
    EXPECT_EQ(GetIconRefFromFileInfo(&ref, 0, nullptr, kIconServicesCatalogInfoMask, &information, 0, &icon, nullptr),
              noErr);
    return icon;
}

TEST(IconsAndImages, AnIconsPiecesStandUnderTheirTypes) {
    TemporaryFolder const folder;
    IconRef icon =
        customIconOf(folder.makeFile("file", ""),
                     iconFamily(iconPiece("is32", "abc") + iconPiece("\x8Ax\x8Ax", "d") + iconPiece("s8mk", "")));
    NSDictionary const pieces = pxDictionaryWithIconRef_(icon);
    EXPECT_EQ(pieces.count(), 2U);
    EXPECT_TRUE(pieces.objectForKey_("is32").isEqual_(NSData::dataWithBytes(std::as_bytes(std::span("abc", 3)))));
    EXPECT_TRUE(
        pieces.objectForKey_("\u00E4x\u00E4x").isEqual_(NSData::dataWithBytes(std::as_bytes(std::span("d", 1)))));
    EXPECT_EQ(ReleaseIconRef(icon), noErr);
}

TEST(IconsAndImages, AnIconWithoutDataHasNoPieces) {
    TemporaryFolder const folder;
    IconRef icon = customIconOf(folder.makeFile("file", ""), "nonsense");
    EXPECT_TRUE(pxDictionaryWithIconRef_(icon) == nil);
    EXPECT_EQ(ReleaseIconRef(icon), noErr);
    EXPECT_TRUE(pxDictionaryWithIconRef_({}) == nil);
}

TEST(IconsAndImages, DatesAreRecordsAndComeBack) {
    UTCDateTime record;
    NSDate const date = NSDate::dateWithTimeIntervalSinceReferenceDate_(0.5);
    EXPECT_TRUE(pxUTCDateTime_(date, &record));
    EXPECT_EQ(record, (UTCDateTime{0, 3'061'152'000, 0x8000}));
    EXPECT_TRUE(pxDateWithUTCDateTime_(&record).isEqualToDate_(date));
    UTCDateTime const earliest;
    EXPECT_EQ(pxDateWithUTCDateTime_(&earliest).timeIntervalSinceReferenceDate(), -3'061'152'000.0);
}

TEST(IconsAndImages, DatesThatNoRecordHoldsAreNone) {
    UTCDateTime record{1, 2, 3};
    EXPECT_FALSE(pxUTCDateTime_(NSDate::distantPast(), &record));
    EXPECT_FALSE(pxUTCDateTime_(nil, &record));
    EXPECT_EQ(record, (UTCDateTime{1, 2, 3}));
    EXPECT_FALSE(pxUTCDateTime_(NSDate::date(), {}));
    EXPECT_TRUE(pxDateWithUTCDateTime_({}) == nil);
}

} // namespace
} // namespace mac::test
