#include "coreutils/IconsAndImages.h"
#include "pathutils/AliasesAndContents.h"
#include "pathutils/ExtendedAttributes.h"
#include "pathutils/FileOperations.h"
#include "pathutils/FinderMetadata.h"
#include "platform/appkit/workspace/NSGraphicsContext.h"
#include "platform/appkit/workspace/NSWorkspace.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/objects/NSArchiver.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/icons/IconFamilies.h"

namespace mac {

namespace {

// The sides of icons in pixels.
constexpr int SmallIcon = 16;
constexpr int LargeIcon = 32;
constexpr int HugeIcon = 48;
constexpr int ThumbnailIcon = 128;
constexpr OSType UndefinedCode{"????"};
constexpr char TemporaryFolderName[] = "MatchIconTemp";
// The file that holds the custom icon of the folder in which it lies.
constexpr char CustomIconFileName[] = "Icon\r";

NSString textOf(OSType code) { return NSString::stringWithCodeUnits(textOfCode(code)); }

// The code as part of a key, four characters long.
NSString textForKey(OSType code) { return code == OSType() ? textOf(UndefinedCode) : textOf(code); }

bool isDefined(OSType code) { return code != OSType() && code != UndefinedCode; }

// Images by creator, type, dimension and type string. Never destroyed: icons may be asked for until the program's last
// instruction.
NSMutableDictionary const& genericIcons() {
    static NSMutableDictionary const& icons =
        *std::make_unique<NSMutableDictionary const>(NSMutableDictionary::dictionary()).release();
    return icons;
}

// Nil where icon services have none.
NSImage iconOfCodes(OSType creatorCode, OSType typeCode, int dimension) {
    IconRef icon{};
    if (GetIconRef(kOnSystemDisk, creatorCode, typeCode, &icon) != noErr || !icon) return nil;
    NSImage const image = pxImageWithIconRef_dimension_(icon, static_cast<float>(dimension));
    ReleaseIconRef(icon);
    return image;
}

NSImage newGenericIcon(OSType creatorCode, OSType typeCode, NSString const& typeString, int dimension) {
    NSImage image;
    if (isDefined(creatorCode) && isDefined(typeCode)) image = iconOfCodes(creatorCode, typeCode, dimension);
    if (image != nil) return image;
    image = NSWorkspace::sharedWorkspace().iconForFileType_(typeString);
    pxTrimWithDimension_(image, dimension);
    return image;
}

// Makes the folder, which exists already, have the custom icon that is in the attributes.
NSImage iconOfFolderWithAttributes(NSString const& folder, id const& attributeData) {
    NSString const file = folder.stringByAppendingPathComponent_(CustomIconFileName);
    if (!NSFileManager::defaultManager().createFileAtPath_contents_attributes_(file, nil, nil)) return nil;
    pxSetExtendedAttributes_(file, as<NSDictionary>(attributeData));
    return pxSetFinderFlagsOfPath_mask_(folder, kHasCustomIcon, kHasCustomIcon) ? pxIconForFile(folder) : NSImage();
}

// Keeps the data of a piece; called with a dictionary.
OSErr keepPiece(OSType type, MemoryHandle* icon, void* dictionary) {
    auto const& pieces = *static_cast<NSMutableDictionary const*>(dictionary);
    NSData const data = pxDataWithHandle_(*icon);
    if (data != nil) pieces.setObject_forKey_(data, textOf(type));
    return noErr;
}

NSDictionary piecesOfFamily(IconFamilyHandle family) {
    IconSuiteRef suite{};
    if (IconFamilyToIconSuite(family, kSelectorAllAvailableData, &suite) != noErr) return nil;
    NSMutableDictionary pieces = NSMutableDictionary::dictionary();
    OSErr const visited = ForEachIconDo(suite, kSelectorAllAvailableData, &keepPiece, &pieces);
    OSErr const disposed = DisposeIconSuite(suite, YES);
    return visited == noErr && disposed == noErr ? NSDictionary::dictionaryWithDictionary_(pieces) : NSDictionary();
}

} // namespace

NSImage pxIconForFile(NSString receiver) { return NSWorkspace::sharedWorkspace().iconForFile_(receiver); }

NSImage pxIconForFileWithDimension_(NSString receiver, int dimension) {
    NSImage const image = pxIconForFile(receiver);
    pxTrimWithDimension_(image, dimension);
    return image;
}

NSImage pxSmallIconForFile(NSString receiver) { return pxIconForFileWithDimension_(receiver, SmallIcon); }
NSImage pxLargeIconForFile(NSString receiver) { return pxIconForFileWithDimension_(receiver, LargeIcon); }
NSImage pxHugeIconForFile(NSString receiver) { return pxIconForFileWithDimension_(receiver, HugeIcon); }
NSImage pxThumbnailIconForFile(NSString receiver) { return pxIconForFileWithDimension_(receiver, ThumbnailIcon); }

NSImage pxSmallIconForFileType(NSString receiver) {
    NSImage const image = NSWorkspace::sharedWorkspace().iconForFileType_(receiver);
    pxTrimWithDimension_(image, SmallIcon);
    return image;
}

void pxTrimWithDimension_(NSImage receiver, int dimension) {
    NSArray const forms = receiver.representations();
    NSImageRep kept;
    for (id const& form : forms) {
        NSImageRep const candidate = as<NSImageRep>(form);
        bool const fits = candidate.pixelsHigh() == dimension && candidate.pixelsWide() == dimension;
        if (fits && kept == nil) kept = candidate;
    }
    for (id const& form : forms) {
        if (kept != nil && !isSame(form, kept)) receiver.removeRepresentation_(as<NSImageRep>(form));
    }
    auto const side = static_cast<float>(dimension);
    receiver.setSize_(NSMakeSize(side, side));
}

NSImage pxGenericIconForFileCreatorCode_fileTypeCode_fileTypeString_dimension_(OSType creatorCode, OSType typeCode,
                                                                               NSString typeString, int dimension) {
    NSString const type = typeString == nil ? NSString("") : typeString;
    NSString const key =
        NSString::stringWithFormat_("%@-%@-%03d-%@", textForKey(creatorCode), textForKey(typeCode), dimension, type);
    NSImage image = as<NSImage>(genericIcons().objectForKey_(key));
    if (image != nil) return image;
    image = newGenericIcon(creatorCode, typeCode, type, dimension);
    genericIcons().setObject_forKey_(image, key);
    return image;
}

NSImage pxImageWithIconRef_dimension_(IconRef iconRef, float dimension) {
    NSSize const size = NSMakeSize(dimension, dimension);
    CGRect const rect{{}, size};
    NSImage const image = NSImage::alloc().initWithSize_(size);
    image.lockFocus();
    OSStatus const status = PlotIconRefInContext(NSGraphicsContext::currentContext().graphicsPort(), &rect, kAlignNone,
                                                 kTransformNone, {}, kPlotIconRefNormalFlags, iconRef);
    image.unlockFocus();
    return status == noErr ? image : NSImage();
}

NSImage pxIconWithData_(id attributeData) {
    NSString const place = pxTemporaryItemsFolderPath();
    if (place == nil) return nil;
    NSString const folder = pxCreateUniqueFolder(place.stringByAppendingPathComponent_(TemporaryFolderName));
    if (folder == nil) return nil;
    NSImage const image = iconOfFolderWithAttributes(folder, attributeData);
    pxRemoveFile(folder);
    return image;
}

NSDictionary pxDictionaryWithIconRef_(IconRef iconRef) {
    IconFamilyHandle family{};
    if (IconRefToIconFamily(iconRef, kSelectorAllAvailableData, &family) != noErr) return nil;
    NSDictionary const pieces = piecesOfFamily(family);
    DisposeHandle(family);
    return pieces;
}

NSColor pxColorWithQuickDrawRGBColor_(RGBColor const* color) {
    if (!color) return nil;
    auto const level = [](std::uint16_t channel) { return static_cast<float>(channel) / 65535.0F; };
    return NSColor::colorWithCalibratedRed_green_blue_alpha_(double{level(color->red)}, double{level(color->green)},
                                                             double{level(color->blue)}, 1.0);
}

void pxSetColor_forKey_(NSUserDefaults receiver, NSColor color, NSString key) {
    receiver.setObject_forKey_(NSArchiver::archivedDataWithRootObject_(color), key);
}

NSColor pxColorForKey_(NSUserDefaults receiver, NSString key) {
    return as<NSColor>(NSUnarchiver::unarchiveObjectWithData_(receiver.dataForKey_(key)));
}

NSDate pxDateWithUTCDateTime_(UTCDateTime const* utcDateTime) {
    CFAbsoluteTime time = 0;
    if (UCConvertUTCDateTimeToCFAbsoluteTime(utcDateTime, &time) != noErr) return nil;
    return NSDate::dateWithTimeIntervalSinceReferenceDate_(time);
}

bool pxUTCDateTime_(NSDate receiver, UTCDateTime* utcDateTime) {
    return receiver != nil &&
           UCConvertCFAbsoluteTimeToUTCDateTime(receiver.timeIntervalSinceReferenceDate(), utcDateTime) == noErr;
}

} // namespace mac
