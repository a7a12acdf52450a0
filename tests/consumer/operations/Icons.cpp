#include "coreutils/IconsAndImages.h"
#include "platform/appkit/workspace/NSColor.h"

#include "tests/consumer/operations/Trial.h"
#include <cstdlib>

// Icons, colours in the user defaults, and dates of catalogs.

namespace consumer {

using namespace mac;

namespace {

bool hasSide(NSImage const& image, float side) { return image != nil && image.size().width == side; }

// An application whose documents have an icon of one piece, three bytes of 'is32'.
void makeApplication(Places const& home) {
    home.file("Applications/Draw.app/Contents/Info.plist",
              "{CFBundleIdentifier = \"com.example.draw\"; CFBundleSignature = DrAw; CFBundleDocumentTypes = "
              "({CFBundleTypeOSTypes = (DrWg); CFBundleTypeIconFile = \"drawing.icns\";});}");
    constexpr std::string_view family("icns\0\0\0\x13is32\0\0\0\x0B"
                                      "abc",
                                      19);
    home.file("Applications/Draw.app/Contents/Resources/drawing.icns", family);
}

void tryIconRefs(Trial const& trial) {
    makeApplication(Places(std::getenv("HOME")));
    IconRef icon = nullptr;
    bool const isFound = GetIconRef(kOnSystemDisk, OSType("DrAw"), OSType("DrWg"), &icon) == noErr;
    trial.expect("pxImageWithIconRef_dimension_", isFound && hasSide(pxImageWithIconRef_dimension_(icon, 32), 32));
    NSDictionary const pieces = pxDictionaryWithIconRef_(icon);
    trial.expect("pxDictionaryWithIconRef_", as<NSData>(pieces.objectForKey_("is32")).length() == 3);
    if (icon) ReleaseIconRef(icon);
}

void tryColorsAndDates(Trial const& trial) {
    RGBColor const red{65535, 0, 0};
    NSColor const color = pxColorWithQuickDrawRGBColor_(&red);
    trial.expect("pxColorWithQuickDrawRGBColor_", color != nil && pxColorWithQuickDrawRGBColor_(nullptr) == nil);
    NSUserDefaults const defaults = NSUserDefaults::standardUserDefaults();
    pxSetColor_forKey_(defaults, color, "Colour");
    trial.expect("pxSetColor_forKey_", as<NSData>(defaults.objectForKey_("Colour")).length() > 0);
    trial.expect("pxColorForKey_", pxColorForKey_(defaults, "Colour").isEqual_(color));
    UTCDateTime record{};
    NSDate const date = NSDate::dateWithTimeIntervalSince1970_(86400.5);
    trial.expect("pxUTCDateTime_", pxUTCDateTime_(date, &record) && record.fraction == 32768);
    trial.expect("pxDateWithUTCDateTime_", pxDateWithUTCDateTime_(&record).isEqualToDate_(date));
}

} // namespace

void tryIcons(Places const& places) {
    Trial const trial("coreutils/IconsAndImages");
    NSString const file = places.file("note.txt", "text");
    trial.expect("pxIconForFile", hasSide(pxIconForFile(file), 32));
    trial.expect("pxIconForFileWithDimension_", hasSide(pxIconForFileWithDimension_(file, 20), 20));
    trial.expect("pxSmallIconForFile", hasSide(pxSmallIconForFile(file), 16));
    trial.expect("pxLargeIconForFile", hasSide(pxLargeIconForFile(file), 32));
    trial.expect("pxHugeIconForFile", hasSide(pxHugeIconForFile(file), 48));
    trial.expect("pxThumbnailIconForFile", hasSide(pxThumbnailIconForFile(file), 128));
    trial.expect("pxSmallIconForFileType", hasSide(pxSmallIconForFileType("txt"), 16));
    NSImage const image = pxIconForFile(file);
    pxTrimWithDimension_(image, 48);
    trial.expect("pxTrimWithDimension_", hasSide(image, 48) && image.representations().count() == 1);
    NSImage const generic =
        pxGenericIconForFileCreatorCode_fileTypeCode_fileTypeString_dimension_(OSType(0), OSType(0), "txt", 32);
    trial.expect("pxGenericIconForFileCreatorCode_fileTypeCode_fileTypeString_dimension_", hasSide(generic, 32));
    tryIconRefs(trial);
    trial.expect("pxIconWithData_", pxIconWithData_(NSDictionary::dictionary()) != nil);
    tryColorsAndDates(trial);
}

} // namespace consumer
