#pragma once

#include "platform/appkit/workspace/NSColor.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/objects/NSGeometry.h"
#include <memory>

namespace mac {

struct Picture;

// A representation of an image: a number of pixels, to be shown at a size in points. Main thread.
class NSImageRep : public Handle<NSImageRep, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    NSInteger pixelsWide() const;
    NSInteger pixelsHigh() const;
    // In points; the pixels stay as they are.
    NSSize size() const;
    void setSize_(NSSize size) const;
    // Scaled to the rectangle of the current context (NSGraphicsContext.h). NO without one, and from nil.
    bool drawInRect_(NSRect rect) const;
};

// The formats of image files, numbered as the framework does.
enum NSBitmapImageFileType : NSUInteger {
    NSTIFFFileType = 0,
    NSBMPFileType = 1,
    NSGIFFileType = 2,
    NSJPEGFileType = 3,
    NSPNGFileType = 4,
};

// Pixels in memory.
class NSBitmapImageRep : public Handle<NSBitmapImageRep, NSImageRep> {
public:
    using Handle::Handle;

    static ClassDescription describeClass();

    // The pictures in the contents of an image file, in their order there: in one of the formats of
    // CGImageSourceCopyTypeIdentifiers, JPEG 2000 or a family of icons. Empty for data of any other kind, and for more
    // than 32 Mi pixels in all.
    static NSArray imageRepsWithData_(NSData const& data);
    // The first of them; nil without one.
    static NSBitmapImageRep imageRepWithData_(NSData const& data);
    // For implementations: shares the pixels.
    static NSBitmapImageRep withPicture(std::shared_ptr<Picture const> picture);

    // The pixel counted from the upper left, in calibrated red, green and blue; nil outside.
    NSColor colorAtX_y_(NSInteger x, NSInteger y) const;
    // The contents of a PNG file; the properties do not count. Linux: nil for the other formats.
    NSData representationUsingType_properties_(NSBitmapImageFileType type, NSDictionary const& properties) const;
};

} // namespace mac
