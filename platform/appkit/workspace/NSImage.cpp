#include "platform/appkit/workspace/NSImage.h"
#include "platform/appkit/workspace/NSGraphicsContext.h"
#include "platform/appkit/workspace/NSImageRepBody.h"
#include "platform/foundation/objects/Method.h"
#include "platform/system/LongPath.h"

namespace mac {

namespace {

constexpr std::size_t LargestImageFile = std::size_t{256} << 20;

} // namespace

class NSImage::Body : public ObjectBody {
public:
    NSSize size() const { return m_size; }
    void setSize(NSSize size) { m_size = size; }
    std::vector<NSImageRep>& representations() { return m_representations; }
    std::vector<NSGraphicsContext>& locks() { return m_locks; }

    id copy() const override {
        NSImage const other = adopt<NSImage>();
        other.setSize_(m_size);
        for (NSImageRep const& representation : m_representations)
            other.addRepresentation_(uncheckedCast<NSImageRep>(representation.copy()));
        return other;
    }

    // The first form that has at least the image's size in pixels, else the largest; nil without forms.
    NSImageRep shownForm() const {
        NSImageRep largest;
        for (NSImageRep const& form : m_representations) {
            if (static_cast<float>(form.pixelsWide()) >= m_size.width) return form;
            if (form.pixelsWide() > largest.pixelsWide()) largest = form;
        }
        return largest;
    }

private:
    NSSize m_size{};
    std::vector<NSImageRep> m_representations{};
    // Each takes the drawing of one lock.
    std::vector<NSGraphicsContext> m_locks{};
};

ClassDescription NSImage::describeClass() {
    using Self = NSImage;
    return {
        .name = "NSImage",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<Self>,
        .methods =
            {
                method<&Self::initWithSize_>("initWithSize:"),
                method<&Self::initWithData_>("initWithData:"),
                method<&Self::initWithContentsOfFile_>("initWithContentsOfFile:"),
                method<&Self::isValid>("isValid"),
                method<&Self::setSize_>("setSize:"),
                method<&Self::representations>("representations"),
                method<&Self::addRepresentation_>("addRepresentation:"),
                method<&Self::addRepresentations_>("addRepresentations:"),
                method<&Self::removeRepresentation_>("removeRepresentation:"),
                method<&Self::lockFocus>("lockFocus"),
                method<&Self::unlockFocus>("unlockFocus"),
            },
    };
}

NSImage NSImage::initWithSize_(NSSize size) const {
    setSize_(size);
    return *this;
}

NSImage NSImage::initWithData_(NSData const& data) const {
    NSArray const forms = NSBitmapImageRep::imageRepsWithData_(data);
    if (*this == nil || forms.count() == 0) return nil;
    addRepresentations_(forms);
    setSize_(as<NSImageRep>(forms.objectAtIndex_(0)).size());
    return *this;
}

NSImage NSImage::initWithContentsOfFile_(NSString const& path) const {
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    if (!bytes || bytes->empty()) return nil;
    Result<FileContents> const contents = readFileAtPath(*bytes, LargestImageFile);
    return contents.hasValue() ? initWithData_(NSData::dataWithBytes(contents.value().bytes)) : NSImage();
}

bool NSImage::isValid() const {
    return *this != nil && (!bodyOf(*this)->representations().empty() || !NSIsEmptyRect({{}, size()}));
}

NSSize NSImage::size() const { return *this == nil ? NSZeroSize : bodyOf(*this)->size(); }

void NSImage::setSize_(NSSize size) const {
    if (*this != nil) bodyOf(*this)->setSize(size);
}

NSArray NSImage::representations() const {
    if (*this == nil) return nil;
    std::vector<NSImageRep> const& forms = bodyOf(*this)->representations();
    return NSArray::arrayWithVector({forms.begin(), forms.end()});
}

void NSImage::addRepresentation_(NSImageRep const& representation) const {
    if (*this != nil && representation != nil) bodyOf(*this)->representations().push_back(representation);
}

void NSImage::addRepresentations_(NSArray const& representations) const {
    for (id const& representation : representations)
        addRepresentation_(as<NSImageRep>(representation));
}

void NSImage::removeRepresentation_(NSImageRep const& representation) const {
    if (*this == nil) return;
    std::erase_if(bodyOf(*this)->representations(),
                  [&representation](NSImageRep const& other) { return isSame(other, representation); });
}

void NSImage::lockFocus() const {
    if (*this == nil) return;
    Body& body = *bodyOf(*this);
    body.locks().push_back(NSGraphicsContext::push(body.size()));
    body.shownForm().drawInRect_({{}, body.size()});
}

void NSImage::unlockFocus() const {
    if (*this == nil || bodyOf(*this)->locks().empty()) return;
    Body& body = *bodyOf(*this);
    NSGraphicsContext const context = body.locks().back();
    body.locks().pop_back();
    NSGraphicsContext::pop(context);
    Picture& drawn = context.graphicsPort()->picture;
    if (drawn.pixels.empty()) return;
    NSBitmapImageRep const form = NSBitmapImageRep::withPicture(std::make_shared<Picture const>(std::move(drawn)));
    body.representations().assign(1, form);
}

} // namespace mac
