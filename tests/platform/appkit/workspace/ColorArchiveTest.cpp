#include "platform/appkit/workspace/ColorModels.h"
#include "platform/appkit/workspace/NSColor.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/NSArchiver.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <limits>

namespace mac::test {
namespace {

NSColor unarchived(NSData const& data) { return as<NSColor>(NSUnarchiver::unarchiveObjectWithData_(data)); }

// Half-transparent orange, as the first version of archives has it.
constexpr char FirstVersion[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>$archiver</key><string>NSArchiver</string><key>$version</key><integer>1</integer>
<key>$class</key><string>NSColor</string>
<key>$list</key><dict><key>space</key><string>NSCalibratedRGBColorSpace</string>
<key>components</key><array><real>1</real><real>0.5</real><real>0</real><real>0.5</real></array></dict>
</dict></plist>)";

std::string firstVersionWith(std::string_view part, std::string_view other) {
    std::string text = FirstVersion;
    return text.replace(text.find(part), part.size(), other);
}

TEST(ColorArchive, ComesBackInEverySpace) {
    for (NSColor const& color : {NSColor::blackColor(), NSColor::colorWithDeviceWhite_alpha_(0.3, 0.1),
                                 NSColor::colorWithCalibratedRed_green_blue_alpha_(0.1, 0.2, 0.3, 0.4),
                                 NSColor::colorWithDeviceRed_green_blue_alpha_(0.1, 0.2, 1.0 / 3, 0.4),
                                 NSColor::colorWithDeviceCyan_magenta_yellow_black_alpha_(0.1, 0.2, 0.3, 0.4, 0.5)}) {
        NSData const archive = NSArchiver::archivedDataWithRootObject_(color);
        EXPECT_TRUE(unarchived(archive).isEqual_(color)) << color.description().UTF8String();
    }
}

TEST(ColorArchive, OfTheFirstVersionIsRead) {
    EXPECT_TRUE(
        unarchived(bytes(FirstVersion)).isEqual_(NSColor::colorWithCalibratedRed_green_blue_alpha_(1, 0.5, 0, 0.5)));
}

TEST(ColorArchive, ThatContradictsItselfIsRefused) {
    for (std::string const& text :
         {firstVersionWith("<integer>1<", "<integer>2<"), firstVersionWith("<integer>1<", "<real>1.5<"),
          firstVersionWith("<string>NSArchiver", "<string>NSKeyedArchiver"),
          firstVersionWith("<string>NSColor<", "<string>NSUnknown<"),
          firstVersionWith("<string>NSColor<", "<string>property list<"),
          firstVersionWith("NSCalibratedRGBColorSpace", "NSCalibratedWhiteColorSpace"),
          firstVersionWith("NSCalibratedRGBColorSpace", "NSPatternColorSpace"),
          firstVersionWith("<real>0.5</real>", ""), firstVersionWith("<real>0.5</real>", "<string>0.5</string>"),
          firstVersionWith("<real>0.5</real>", "<real>nan</real>"),
          firstVersionWith("<real>0.5</real>", "<real>inf</real>"), firstVersionWith("<key>space", "<key>place"),
          firstVersionWith("<key>$list", "<key>$other"), std::string("no archive"), std::string()})
        EXPECT_TRUE(unarchived(bytes(text)) == nil) << text;
    EXPECT_TRUE(unarchived(nil) == nil);
}

TEST(ColorArchive, TakesComponentsOutsideForTheNearerEnd) {
    NSColor const color = unarchived(bytes(firstVersionWith("<real>0.5</real>", "<real>7e300</real>")));
    EXPECT_EQ(color.greenComponent(), 1);
}

TEST(ColorArchive, ThatIsTruncatedIsRefused) {
    NSData const archive = NSArchiver::archivedDataWithRootObject_(NSColor::blackColor());
    for (NSUInteger length = 0; length < archive.length(); ++length)
        EXPECT_TRUE(unarchived(archive.subdataWithRange_({0, length})) == nil) << length;
}

} // namespace
} // namespace mac::test
