#pragma once

#include "platform/appkit/workspace/NSImageRep.h"

namespace mac {

// An image of one size in points, in several forms: the same picture in different numbers of pixels. Main thread. Nil
// answers nil, 0 and NO.
class NSImage : public Handle<NSImage, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // A new image without forms.
    NSImage initWithSize_(NSSize size) const;
    // With the forms that the contents of an image file have, in their order there (see NSBitmapImageRep), in the size
    // of the first; nil without any.
    NSImage initWithData_(NSData const& data) const;
    // An image of a file of at most 256 MiB; nil if the file cannot be read.
    NSImage initWithContentsOfFile_(NSString const& path) const;

    // Whether it has a form, or a size to draw in.
    bool isValid() const;
    NSSize size() const;
    // The forms stay as they are.
    void setSize_(NSSize size) const;

    // The present representations, in the order in which they were added.
    NSArray representations() const;
    // Adding nil does nothing.
    void addRepresentation_(NSImageRep const& representation) const;
    void addRepresentations_(NSArray const& representations) const;
    // This very form; nothing happens where the image does not have it.
    void removeRepresentation_(NSImageRep const& representation) const;

    // From then on drawing goes into the image, in points from its lower left, upon what it shows. An image without
    // area, and one of more than 4096 points a side, has nothing to draw on.
    void lockFocus() const;
    // What was drawn is the image's only form from then on, with one pixel a point. Nothing happens without a lock.
    void unlockFocus() const;
};

} // namespace mac
