#include "platform/appkit/workspace/NSWorkspace.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/icons/IconSource.h"
#include "platform/launchservices/DiskItem.h"

namespace mac {

namespace {

constexpr float UsualIconSide = 32;

NSImage imageOf(IconSource const& source) {
    NSImage const image = NSImage::alloc().initWithSize_(NSMakeSize(UsualIconSide, UsualIconSide));
    for (SharedPicture const& picture : picturesOfSource(source))
        image.addRepresentation_(NSBitmapImageRep::withPicture(picture));
    return image;
}

} // namespace

NSImage NSWorkspace::iconForFile_(NSString const& fullPath) const {
    std::optional<std::string> const path = fullPath.fileSystemRepresentation();
    if (*this == nil || fullPath == nil) return nil;
    Result<DiskItem> const item = diskItemAtPath(path.value_or(""));
    return imageOf(item.hasValue() ? iconSourceOf(item.value()) : iconSourceOfFileType(""));
}

NSImage NSWorkspace::iconForFileType_(NSString const& fileType) const {
    return *this == nil || fileType == nil ? NSImage() : imageOf(iconSourceOfFileType(fileType));
}

NSString NSFileTypeForHFSTypeCode(OSType type) { return NSString::stringWithCodeUnits(u"'" + textOfCode(type) + u"'"); }

} // namespace mac
