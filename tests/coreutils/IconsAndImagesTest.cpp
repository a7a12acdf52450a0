#include "coreutils/IconsAndImages.h"
#include "pathutils/ExtendedAttributes.h"
#include "pathutils/FileOperations.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/icons/IconFamilies.h"
#include "platform/launchservices/Applications.h"
#include "tests/platform/icons/IconBytes.h"
#include "tests/platform/preferences/PreferenceHome.h"
#include "tests/support/DiskContents.h"
#include "tests/support/FinderInformation.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/Texts.h"
#include <cmath>
#include <limits>
#include <sys/stat.h>

namespace mac::test {
namespace {

constexpr std::uint32_t Red = 0xDD0000;
constexpr std::uint32_t Blue = 0x0000EE;

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

IconRef coloredIcon(std::uint32_t color) {
    std::string const family = coloredFamily(color);
    IconRef icon{};
    EXPECT_EQ(GetIconRefFromIconFamilyPtr(family.data(), family.size(), &icon), noErr);
    return icon;
}

NSImage imageWithForms(std::initializer_list<std::pair<int, int>> sizes) {
    NSImage const image = NSImage::alloc().initWithSize_(NSMakeSize(32, 32));
    for (auto const& [width, height] : sizes)
        image.addRepresentation_(
            NSBitmapImageRep::withPicture(std::make_shared<Picture const>(emptyPicture(width, height))));
    return image;
}

// "16x16 32x32"
std::string formsOf(NSImage const& image) {
    std::string text;
    for (id const& form : image.representations()) {
        NSImageRep const rep = as<NSImageRep>(form);
        text += (text.empty() ? "" : " ") + std::to_string(rep.pixelsWide()) + "x" + std::to_string(rep.pixelsHigh());
    }
    return text;
}

// 0xRRGGBB in the middle of the image's first form; 1 if that is not opaque.
std::uint32_t colorOf(NSImage const& image) {
    if (image.representations().count() == 0) return 2;
    NSBitmapImageRep const form = as<NSBitmapImageRep>(image.representations().objectAtIndex_(0));
    NSColor const color = form.colorAtX_y_(form.pixelsWide() / 2, form.pixelsHigh() / 2);
    auto const level = [](double component) { return static_cast<std::uint32_t>(std::lround(component * 255)); };
    if (level(color.alphaComponent()) != 255) return 1;
    return level(color.redComponent()) << 16 | level(color.greenComponent()) << 8 | level(color.blueComponent());
}

// A PNG file of the image's first form.
NSData pixelsOf(NSImage const& image) {
    NSBitmapImageRep const form = as<NSBitmapImageRep>(image.representations().objectAtIndex_(0));
    return form.representationUsingType_properties_(NSPNGFileType, nil);
}

// Names in the folder for temporary items.
NSArray temporaryItems() {
    return NSFileManager::defaultManager().directoryContentsAtPath_(pxTemporaryItemsFolderPath());
}

// A home without icon themes, with one application.
class IconsOfItems : public PreferenceHome {
protected:
    IconsOfItems() { NSUserDefaults::resetStandardUserDefaults(); }
    ~IconsOfItems() override {
        NSUserDefaults::standardUserDefaults().synchronize();
        NSUserDefaults::resetStandardUserDefaults();
    }

    // Its signature is the creator; documents of the type have a red icon, the application a blue one.
    void makeApplication(std::string const& creator, std::string const& type) const {
        m_folder.makeBundle("Applications/" + creator + ".app",
                            "{CFBundleIdentifier = \"com.example." + creator + "\"; CFBundleSignature = \"" + creator +
                                R"("; CFBundleIconFile = blue; CFBundleDocumentTypes = ({CFBundleTypeOSTypes = (")" +
                                type + R"("); CFBundleTypeIconFile = "red.icns";});})");
        m_folder.makeFile("Applications/" + creator + ".app/Contents/Resources/red.icns", coloredFamily(Red));
        m_folder.makeFile("Applications/" + creator + ".app/Contents/Resources/blue.icns", coloredFamily(Blue));
    }

private:
    EnvironmentVariable const m_home{"HOME", m_folder.path()};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.path("data")};
    EnvironmentVariable const m_dataFolders{"XDG_DATA_DIRS", m_folder.path("none")};
};

// What icon services alone have for the codes; nil if they have nothing.
NSImage iconOfServices(OSType creator, OSType type) {
    IconRef icon{};
    if (GetIconRef(kOnSystemDisk, creator, type, &icon) != noErr) return nil;
    NSImage const image = pxImageWithIconRef_dimension_(icon, 16);
    ReleaseIconRef(icon);
    return image;
}

NSImage genericIcon(OSType creator, OSType type, NSString const& typeString, int dimension = 32) {
    return pxGenericIconForFileCreatorCode_fileTypeCode_fileTypeString_dimension_(creator, type, typeString, dimension);
}

TEST_F(IconsOfItems, ComeInTheSidesOfIcons) {
    NSImage const icon = pxIconForFile(path(m_folder.makeFile("notes.txt", "text")));
    EXPECT_EQ(formsOf(icon), "16x16 32x32 48x48 128x128");
    EXPECT_EQ(icon.size(), NSMakeSize(32, 32));
    EXPECT_TRUE(pxIconForFile(nil) == nil);
    EXPECT_EQ(formsOf(pxIconForFile(path(m_folder.path("missing")))), "16x16 32x32 48x48 128x128");
}

TEST_F(IconsOfItems, AreTrimmedToASide) {
    NSString const file = path(m_folder.makeFile("notes.txt", "text"));
    EXPECT_EQ(formsOf(pxSmallIconForFile(file)), "16x16");
    EXPECT_EQ(formsOf(pxLargeIconForFile(file)), "32x32");
    EXPECT_EQ(formsOf(pxHugeIconForFile(file)), "48x48");
    EXPECT_EQ(formsOf(pxThumbnailIconForFile(file)), "128x128");
    EXPECT_EQ(pxThumbnailIconForFile(file).size(), NSMakeSize(128, 128));
    NSImage const odd = pxIconForFileWithDimension_(file, 20);
    EXPECT_EQ(formsOf(odd), "16x16 32x32 48x48 128x128");
    EXPECT_EQ(odd.size(), NSMakeSize(20, 20));
    EXPECT_TRUE(pxSmallIconForFile(nil) == nil);
    EXPECT_TRUE(pxLargeIconForFile(nil) == nil);
    EXPECT_TRUE(pxHugeIconForFile(nil) == nil);
    EXPECT_TRUE(pxThumbnailIconForFile(nil) == nil);
    EXPECT_TRUE(pxIconForFileWithDimension_(nil, 16) == nil);
}

TEST_F(IconsOfItems, AreTheItemsOwnWhereTheyHaveOne) {
    std::string const file = m_folder.makeFile("file", "");
    ReleaseIconRef(customIconOf(file, coloredFamily(Red)));
    EXPECT_EQ(colorOf(pxSmallIconForFile(path(file))), Red);
    makeApplication("XyZa", "XyZb");
    EXPECT_EQ(colorOf(pxHugeIconForFile(path(m_folder.path("Applications/XyZa.app")))), Blue);
}

TEST_F(IconsOfItems, AreThereForTypes) {
    NSImage const icon = pxSmallIconForFileType("txt");
    EXPECT_EQ(formsOf(icon), "16x16");
    EXPECT_EQ(icon.size(), NSMakeSize(16, 16));
    EXPECT_EQ(formsOf(pxSmallIconForFileType("'TEXT'")), "16x16");
    EXPECT_EQ(formsOf(pxSmallIconForFileType("")), "16x16");
    EXPECT_TRUE(pxSmallIconForFileType(nil) == nil);
}

TEST(IconsAndImages, TrimmingLeavesTheFormOfExactlyThatSide) {
    NSImage const image = imageWithForms({{16, 16}, {32, 16}, {32, 32}, {32, 32}, {128, 128}});
    id const wanted = image.representations().objectAtIndex_(2);
    pxTrimWithDimension_(image, 32);
    EXPECT_EQ(formsOf(image), "32x32");
    EXPECT_TRUE(isSame(image.representations().objectAtIndex_(0), wanted));
    EXPECT_EQ(image.size(), NSMakeSize(32, 32));
}

TEST(IconsAndImages, TrimmingToASideThatNoFormHasOnlyScales) {
    NSImage const image = imageWithForms({{16, 16}, {32, 32}, {128, 128}});
    pxTrimWithDimension_(image, 20);
    EXPECT_EQ(formsOf(image), "16x16 32x32 128x128");
    EXPECT_EQ(image.size(), NSMakeSize(20, 20));
    pxTrimWithDimension_(nil, 20);
}

TEST_F(IconsOfItems, OfAKindAreMadeOnce) {
    NSImage const first = genericIcon({}, OSType("TEXT"), "txt", 16);
    EXPECT_EQ(formsOf(first), "16x16");
    EXPECT_TRUE(isSame(genericIcon({}, OSType("TEXT"), "txt", 16), first));
    EXPECT_FALSE(isSame(genericIcon({}, OSType("TEXT"), "txt", 32), first));
    EXPECT_FALSE(isSame(genericIcon({}, OSType("TEXT"), "png", 16), first));
    EXPECT_FALSE(isSame(genericIcon({}, {}, "txt", 16), first));
    // A missing type string is an empty one, and the code 0 is the text that it has in the key.
    EXPECT_TRUE(isSame(genericIcon({}, {}, nil), genericIcon(OSType("????"), OSType("????"), "")));
}

TEST_F(IconsOfItems, OfAKindAreThoseThatTheApplicationDeclares) {
    makeApplication("XyZc", "XyZd");
    NSImage const document = genericIcon(OSType("XyZc"), OSType("XyZd"), "txt", 48);
    EXPECT_EQ(formsOf(document), "48x48");
    EXPECT_EQ(colorOf(document), Red);
    EXPECT_EQ(colorOf(genericIcon(OSType("XyZc"), OSType("APPL"), nil)), Blue);
    EXPECT_NE(colorOf(genericIcon(OSType("XyZc"), OSType("XyZe"), nil)), Red);
}

TEST_F(IconsOfItems, OfAKindWithoutACodeAreThoseOfTheTypeString) {
    constexpr OSType system{"macs"};
    constexpr OSType application{"APPL"};
    NSData const document = pixelsOf(pxSmallIconForFileType(""));
    NSData const program = pixelsOf(pxSmallIconForFileType("app"));
    ASSERT_FALSE(program.isEqualToData_(document));
    NSData const drawn = pixelsOf(iconOfServices(system, application));
    ASSERT_FALSE(drawn.isEqualToData_(document));
    for (OSType const unknown : {OSType(), OSType("????")}) {
        EXPECT_TRUE(pixelsOf(genericIcon(unknown, application, "none", 16)).isEqualToData_(document));
        EXPECT_TRUE(pixelsOf(genericIcon(unknown, application, nil, 16)).isEqualToData_(document));
        EXPECT_TRUE(pixelsOf(genericIcon(unknown, OSType("TEXT"), "app", 16)).isEqualToData_(program));
        EXPECT_TRUE(pixelsOf(genericIcon(system, unknown, "app", 16)).isEqualToData_(program));
    }
    EXPECT_TRUE(pixelsOf(genericIcon(system, application, "none", 16)).isEqualToData_(drawn));
}

TEST_F(IconsOfItems, OfAKindLookForNoApplicationWhereACodeSaysNothing) {
    makeApplication("????", "XyZf");
    makeApplication("XyZg", "????");
    EXPECT_EQ(colorOf(iconOfServices(OSType("????"), OSType("XyZf"))), Red);
    EXPECT_EQ(colorOf(iconOfServices(OSType("XyZg"), OSType("????"))), Red);
    EXPECT_NE(colorOf(genericIcon(OSType("????"), OSType("XyZf"), nil)), Red);
    EXPECT_NE(colorOf(genericIcon(OSType("XyZg"), OSType("????"), nil)), Red);
}

TEST(IconsAndImages, AnIconIsDrawnInADimension) {
    IconRef const icon = coloredIcon(Red);
    NSImage const image = pxImageWithIconRef_dimension_(icon, 20);
    EXPECT_EQ(image.size(), NSMakeSize(20, 20));
    EXPECT_EQ(formsOf(image), "20x20");
    EXPECT_EQ(colorOf(image), Red);
    EXPECT_EQ(formsOf(pxImageWithIconRef_dimension_(icon, 16.5F)), "17x17");
    EXPECT_EQ(ReleaseIconRef(icon), noErr);
}

TEST(IconsAndImages, AnIconIsNotDrawnWhereItCannotBe) {
    EXPECT_TRUE(pxImageWithIconRef_dimension_({}, 32) == nil);
    IconRef const icon = coloredIcon(Red);
    for (float const dimension :
         {0.0F, -1.0F, 5000.0F, 1e30F, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()})
        EXPECT_TRUE(pxImageWithIconRef_dimension_(icon, dimension) == nil) << dimension;
    EXPECT_EQ(colorOf(pxImageWithIconRef_dimension_(icon, 16)), Red);
    EXPECT_EQ(ReleaseIconRef(icon), noErr);
}

TEST_F(IconsOfItems, AreMadeOfTheirDataAndLeaveNothingBehind) {
    std::string const file = m_folder.makeFile("Icon\r", "");
    ReleaseIconRef(customIconOf(file, coloredFamily(Blue)));
    NSArray const before = temporaryItems();
    NSImage const icon = pxIconWithData_(pxExtendedAttributes(path(file)));
    EXPECT_EQ(formsOf(icon), "16x16 32x32 48x48 128x128");
    EXPECT_EQ(colorOf(icon), Blue);
    EXPECT_TRUE(temporaryItems().isEqualToArray_(before));
}

TEST_F(IconsOfItems, OfUselessDataAreAFoldersAndLeaveNothingBehind) {
    NSArray const before = temporaryItems();
    for (id const& data : {id(nil), id("text"), id(NSDictionary::dictionary()),
                           id(NSDictionary::dictionaryWithObject_forKey_(bytes("icns"), XATTR_RESOURCEFORK_NAME))})
        EXPECT_NE(colorOf(pxIconWithData_(data)), Blue);
    EXPECT_TRUE(temporaryItems().isEqualToArray_(before));
}

TEST_F(IconsOfItems, OfDataAreNoneWithoutAPlaceForTemporaryItems) {
    EnvironmentVariable const cache("XDG_CACHE_HOME", m_folder.makeFile("file", ""));
    ASSERT_TRUE(pxTemporaryItemsFolderPath() == nil);
    EXPECT_TRUE(pxIconWithData_(NSDictionary::dictionary()) == nil);
}

class IconsOnAFullDisk : public PrivateMounts {
protected:
    TemporaryFolder const m_disk{};
};

TEST_F(IconsOnAFullDisk, OfDataAreNoneAndLeaveNothingBehind) {
    mountMemory(m_disk.path(), "size=64k,nr_inodes=16");
    EnvironmentVariable const cache("XDG_CACHE_HOME", m_disk.path());
    NSString const place = pxTemporaryItemsFolderPath();
    ASSERT_FALSE(place == nil);
    std::vector<std::string> fillers{m_disk.path("0")};
    while (::mkdir(fillers.back().c_str(), 0700) == 0)
        fillers.push_back(m_disk.path(std::to_string(fillers.size())));
    // First there is no room for the folder, then none for the file in it, then none for the folder's flags: a disk in
    // memory counts attributes as files, as far as it keeps them.
    int failures = 0;
    for (; pxIconWithData_(NSDictionary::dictionary()) == nil; ++failures) {
        EXPECT_TRUE(namesIn(place.UTF8String()).empty()) << failures;
        fillers.pop_back();
        ASSERT_FALSE(fillers.empty());
        ASSERT_EQ(::rmdir(fillers.back().c_str()), 0);
    }
    EXPECT_EQ(failures, 3);
    EXPECT_TRUE(namesIn(place.UTF8String()).empty());
}

TEST(IconsAndImages, AColorOfQuickDrawHasItsChannelsInSinglePrecision) {
    RGBColor const color{65535, 32768, 1};
    NSColor const made = pxColorWithQuickDrawRGBColor_(&color);
    EXPECT_TRUE(made.colorSpaceName().isEqualToString_(NSCalibratedRGBColorSpace));
    EXPECT_EQ(made.redComponent(), 1);
    EXPECT_EQ(made.greenComponent(), double{32768 / 65535.0F});
    EXPECT_EQ(made.blueComponent(), double{1 / 65535.0F});
    EXPECT_EQ(made.alphaComponent(), 1);
    EXPECT_TRUE(pxColorWithQuickDrawRGBColor_({}) == nil);
}

TEST_F(IconsOfItems, ColorsAreKeptInTheUserDefaults) {
    NSUserDefaults const defaults = NSUserDefaults::standardUserDefaults();
    NSColor const color = NSColor::colorWithDeviceCyan_magenta_yellow_black_alpha_(0.1, 0.2, 0.3, 0.4, 0.5);
    pxSetColor_forKey_(defaults, color, "color");
    EXPECT_TRUE(pxColorForKey_(defaults, "color").isEqual_(color));
    EXPECT_TRUE(pxColorForKey_(defaults, "missing") == nil);
    defaults.setObject_forKey_("text", "text");
    EXPECT_TRUE(pxColorForKey_(defaults, "text") == nil);
    defaults.setObject_forKey_(bytes("no archive"), "data");
    EXPECT_TRUE(pxColorForKey_(defaults, "data") == nil);
    pxSetColor_forKey_(defaults, nil, "color");
    EXPECT_TRUE(pxColorForKey_(defaults, "color") == nil);
    pxSetColor_forKey_(nil, color, "color");
    EXPECT_TRUE(pxColorForKey_(nil, "color") == nil);
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

TEST(IconsAndImages, DatesBehindThe32BitsOfSecondsAreRecords) {
    // 6 February 2040, 06:28:16: the second behind the last one of 32 bits.
    constexpr double secondsFrom2001 = 4'294'967'296.0 - 3'061'152'000.0;
    UTCDateTime record;
    EXPECT_TRUE(pxUTCDateTime_(NSDate::dateWithTimeIntervalSinceReferenceDate_(secondsFrom2001 - 1), &record));
    EXPECT_EQ(record, (UTCDateTime{0, 0xFFFFFFFF, 0}));
    EXPECT_TRUE(pxUTCDateTime_(NSDate::dateWithTimeIntervalSinceReferenceDate_(secondsFrom2001), &record));
    EXPECT_EQ(record, (UTCDateTime{1, 0, 0}));
    EXPECT_EQ(pxDateWithUTCDateTime_(&record).timeIntervalSinceReferenceDate(), secondsFrom2001);
}

TEST(IconsAndImages, FractionsOfASecondAreTheNearestOnes) {
    UTCDateTime record;
    constexpr double step = 1.0 / 65536;
    EXPECT_TRUE(pxUTCDateTime_(NSDate::dateWithTimeIntervalSinceReferenceDate_(2.4 * step), &record));
    EXPECT_EQ(record.fraction, 2);
    EXPECT_TRUE(pxUTCDateTime_(NSDate::dateWithTimeIntervalSinceReferenceDate_(2.6 * step), &record));
    EXPECT_EQ(record.fraction, 3);
    EXPECT_TRUE(pxUTCDateTime_(NSDate::dateWithTimeIntervalSinceReferenceDate_(1 - 0.4 * step), &record));
    EXPECT_EQ(record, (UTCDateTime{0, 3'061'152'001, 0}));
    EXPECT_TRUE(pxUTCDateTime_(NSDate::dateWithTimeIntervalSinceReferenceDate_(-0.25), &record));
    EXPECT_EQ(record, (UTCDateTime{0, 3'061'151'999, 0xC000}));
}

TEST(IconsAndImages, DatesOutsideTheRecordsRangeAreRefused) {
    UTCDateTime record{1, 2, 3};
    EXPECT_FALSE(pxUTCDateTime_(NSDate::distantPast(), &record));
    EXPECT_FALSE(pxUTCDateTime_(nil, &record));
    for (double const seconds : {-3'061'152'000.5, 281'474'976'710'656.0, std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<double>::quiet_NaN()})
        EXPECT_FALSE(pxUTCDateTime_(NSDate::dateWithTimeIntervalSinceReferenceDate_(seconds), &record)) << seconds;
    EXPECT_EQ(record, (UTCDateTime{1, 2, 3}));
    EXPECT_FALSE(pxUTCDateTime_(NSDate::date(), {}));
    EXPECT_TRUE(pxDateWithUTCDateTime_({}) == nil);
}

} // namespace
} // namespace mac::test
