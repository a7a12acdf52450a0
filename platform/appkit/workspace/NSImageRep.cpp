#include "platform/appkit/workspace/NSGraphicsContext.h"
#include "platform/appkit/workspace/NSImageRepBody.h"
#include "platform/foundation/objects/Method.h"
#include "platform/icons/IconPictures.h"
#include "platform/icons/PlotIcon.h"
#include "platform/system/BigEndian.h"

namespace mac {

namespace {

// OpenJPEG's memory is many times that of the picture.
constexpr int LargestJPEG2000Side = 2048;

double levelIn(std::uint32_t pixel, int shift) { return (pixel >> shift & 0xFF) / 255.0; }

} // namespace

std::vector<Picture> picturesInImageData(std::span<std::byte const> bytes) {
    constexpr std::uint32_t iconFamily = FourCharCode("icns").value();
    if (bytes.size() >= sizeof(iconFamily) && bigEndian32(bytes, 0) == iconFamily) return picturesInIconFile(bytes);
    std::optional<Picture> picture = pictureInJPEG2000(bytes, LargestJPEG2000Side);
    return picture ? std::vector{std::move(*picture)} : picturesInImageFile(bytes);
}

id NSImageRep::Body::copy() const {
    NSBitmapImageRep const other = adopt<NSBitmapImageRep>(m_picture);
    other.setSize_(m_size);
    return other;
}

ClassDescription NSImageRep::describeClass() {
    return {
        .name = "NSImageRep",
        .superclass = classOf<NSObject>(),
        .methods = {method<&NSImageRep::pixelsWide>("pixelsWide"), method<&NSImageRep::pixelsHigh>("pixelsHigh"),
                    method<&NSImageRep::setSize_>("setSize:"), method<&NSImageRep::drawInRect_>("drawInRect:")},
    };
}

NSInteger NSImageRep::pixelsWide() const { return *this == nil ? 0 : bodyOf(*this)->picture().width; }
NSInteger NSImageRep::pixelsHigh() const { return *this == nil ? 0 : bodyOf(*this)->picture().height; }
NSSize NSImageRep::size() const { return *this == nil ? NSZeroSize : bodyOf(*this)->size(); }

void NSImageRep::setSize_(NSSize size) const {
    if (*this != nil) bodyOf(*this)->setSize(size);
}

bool NSImageRep::drawInRect_(NSRect rect) const {
    CGContextRef context = NSGraphicsContext::currentContext().graphicsPort();
    if (*this == nil || !context) return false;
    return drawInContext(*context, rect, bodyOf(*this)->picture()) == noErr;
}

ClassDescription NSBitmapImageRep::describeClass() {
    using Self = NSBitmapImageRep;
    return {
        .name = "NSBitmapImageRep",
        .superclass = classOf<NSImageRep>(),
        .methods = {method<&Self::colorAtX_y_>("colorAtX:y:"),
                    method<&Self::representationUsingType_properties_>("representationUsingType:properties:")},
        .classMethods = {classMethod<&imageRepsWithData_>("imageRepsWithData:"),
                         classMethod<&imageRepWithData_>("imageRepWithData:")},
    };
}

NSArray NSBitmapImageRep::imageRepsWithData_(NSData const& data) {
    std::vector<id> reps;
    for (Picture& picture : picturesInImageData(data.span()))
        reps.push_back(withPicture(std::make_shared<Picture const>(std::move(picture))));
    return NSArray::arrayWithVector(std::move(reps));
}

NSBitmapImageRep NSBitmapImageRep::imageRepWithData_(NSData const& data) {
    NSArray const reps = imageRepsWithData_(data);
    return reps.count() == 0 ? NSBitmapImageRep() : as<NSBitmapImageRep>(reps.objectAtIndex_(0));
}

NSBitmapImageRep NSBitmapImageRep::withPicture(SharedPicture picture) {
    return adopt<NSBitmapImageRep>(std::move(picture));
}

NSColor NSBitmapImageRep::colorAtX_y_(NSInteger x, NSInteger y) const {
    bool const isWithin = x >= 0 && y >= 0 && x < pixelsWide() && y < pixelsHigh();
    if (!isWithin) return nil;
    Picture const& picture = bodyOf(*this)->picture();
    std::uint32_t const pixel = picture.pixels[std::size_t(y) * std::size_t(picture.width) + std::size_t(x)];
    return NSColor::colorWithCalibratedRed_green_blue_alpha_(levelIn(pixel, 16), levelIn(pixel, 8), levelIn(pixel, 0),
                                                             levelIn(pixel, 24));
}

NSData NSBitmapImageRep::representationUsingType_properties_(NSBitmapImageFileType type, NSDictionary const&) const {
    if (*this == nil || type != NSPNGFileType) return nil;
    std::vector<std::byte> const contents = contentsOfPNG(bodyOf(*this)->picture());
    return contents.empty() ? NSData() : NSData::dataWithBytes(contents);
}

} // namespace mac
