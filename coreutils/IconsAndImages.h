#pragma once

#include "platform/appkit/workspace/NSImage.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/dates/UTCDateTime.h"
#include "platform/icons/PlotIcon.h"
#include "platform/preferences/NSUserDefaults.h"

namespace mac {

// Icons of files and types in fixed sizes, icons as data, colours in the user defaults, and dates as the records in
// which catalogs keep them. Main thread. A nil receiver answers nil or NO.

// The item's icon as the workspace has it (NSWorkspace): a new image in forms of several sizes.
NSImage pxIconForFile(NSString receiver);
// The item's icon, trimmed to so many pixels a side; see pxTrimWithDimension_.
NSImage pxIconForFileWithDimension_(NSString receiver, int dimension);
// The item's icon, trimmed to 16 pixels a side.
NSImage pxSmallIconForFile(NSString receiver);
// The item's icon, trimmed to 32 pixels a side.
NSImage pxLargeIconForFile(NSString receiver);
// The item's icon, trimmed to 48 pixels a side.
NSImage pxHugeIconForFile(NSString receiver);
// The item's icon, trimmed to 128 pixels a side.
NSImage pxThumbnailIconForFile(NSString receiver);
// The icon of files of the type that the text names, an extension or a type code in single quotes, trimmed to 16
// pixels.
NSImage pxSmallIconForFileType(NSString receiver);

// Leaves the image the first of its forms that has exactly so many pixels a side, or all of them where none has, and
// sets its size to so many points.
void pxTrimWithDimension_(NSImage receiver, int dimension);

// The icon of files with this creator and type, drawn at the dimension in points, if neither code is 0 or '????' and
// icon services know one; else the workspace's icon for the trimmed type string, nil counting as empty. Made once for
// the same arguments: later calls return the same image, which is shared and lives as long as the program.
NSImage pxGenericIconForFileCreatorCode_fileTypeCode_fileTypeString_dimension_(OSType creatorCode, OSType typeCode,
                                                                               NSString typeString, int dimension);

// A new image of so many points with the icon drawn in it; nil for null, and for a dimension that has no pixels, or
// more than 4096. The icon stays the caller's.
NSImage pxImageWithIconRef_dimension_(IconRef iconRef, float dimension);

// The icon of a file whose extended attributes were read as a dictionary (pxExtendedAttributes), custom icons being
// kept in them. It is looked at by way of a folder for temporary items, which is gone afterwards in any case. Nil where
// that cannot be made or written.
NSImage pxIconWithData_(id attributeData);

// The data of the icon's pieces under their types, four characters each; nil for null, and for an icon without data.
// Empty pieces are left out. The icon stays the caller's.
NSDictionary pxDictionaryWithIconRef_(IconRef iconRef);

// The colour in the calibrated space of red, green and blue, opaque, each channel divided by 65535 in single precision;
// nil for null.
NSColor pxColorWithQuickDrawRGBColor_(RGBColor const* color);

// Keeps the colour, archived (NSArchiver), under the key.
void pxSetColor_forKey_(NSUserDefaults receiver, NSColor color, NSString key);
// The colour that is archived under the key; nil if there is no data under it, or if the data is no archived colour.
NSColor pxColorForKey_(NSUserDefaults receiver, NSString key);

// The date of the record, with its fraction; nil for null.
NSDate pxDateWithUTCDateTime_(UTCDateTime const* utcDateTime);
// Converts the date to the nearest 1/65536 of a second; NO, and nothing is written, for a null pointer and for a date
// before 1904 or beyond 48 bits of seconds.
bool pxUTCDateTime_(NSDate receiver, UTCDateTime* utcDateTime);

} // namespace mac
