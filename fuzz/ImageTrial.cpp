#include "fuzz/Trials.h"
#include "platform/appkit/workspace/NSImage.h"
#include "platform/foundation/objects/NSArchiver.h"
#include "platform/icons/IconFamilies.h"
#include "platform/icons/IconFamily.h"
#include "platform/icons/IconTheme.h"

namespace mac::fuzz {

namespace {

std::string complaintAboutForms(NSImage const& image) {
    if (image == nil) return "";
    if (image.representations().count() == 0) return "an image has no forms";
    std::size_t pixels = 0;
    for (id const& form : image.representations()) {
        NSBitmapImageRep const rep = as<NSBitmapImageRep>(form);
        if (rep.pixelsWide() <= 0 || rep.pixelsHigh() <= 0) return "a form has no pixels";
        pixels += std::size_t(rep.pixelsWide()) * std::size_t(rep.pixelsHigh());
        if (rep.colorAtX_y_(rep.pixelsWide() - 1, rep.pixelsHigh() - 1) == nil) return "a pixel has no colour";
        if (rep.colorAtX_y_(rep.pixelsWide(), 0) != nil) return "there is a colour outside";
    }
    return pixels <= MostImagePixels ? "" : "an image has too many pixels";
}

std::string complaintAboutFamily(std::span<std::byte const> bytes) {
    IconRef icon{};
    if (GetIconRefFromIconFamilyPtr(bytes.data(), bytes.size(), &icon) != noErr) return "";
    bool const hasAllSides = picturesOfIcon(icon).size() >= IconSides.size();
    std::optional<std::vector<IconPart>> const parts = partsOfIcon(icon);
    ReleaseIconRef(icon);
    if (!hasAllSides) return "an icon lacks one of the sides";
    if (!parts) return "an icon has lost its pieces";
    return readIconFamily(contentsOfIconFamily(*parts)) == parts ? "" : "pieces come back otherwise";
}

} // namespace

std::string complaintAboutImage(std::span<std::byte const> bytes) {
    std::string const text = complaintAboutForms(NSImage::alloc().initWithData_(NSData::dataWithBytes(bytes)));
    return text.empty() ? complaintAboutFamily(bytes) : text;
}

std::string complaintAboutArchivedColor(std::span<std::byte const> bytes) {
    id const object = NSUnarchiver::unarchiveObjectWithData_(NSData::dataWithBytes(bytes));
    if (object == nil) return "";
    NSData const archive = NSArchiver::archivedDataWithRootObject_(object);
    id const again = NSUnarchiver::unarchiveObjectWithData_(archive);
    NSColor const color = as<NSColor>(object);
    if (color == nil) return "";
    if (!again.isEqual_(color)) return "a colour comes back otherwise";
    NSColor const converted = color.colorUsingColorSpaceName_(NSCalibratedRGBColorSpace);
    bool const isWithin = converted.redComponent() >= 0 && converted.redComponent() <= 1 &&
                          color.alphaComponent() >= 0 && color.alphaComponent() <= 1;
    return isWithin ? "" : "a component is outside of its limits";
}

} // namespace mac::fuzz
