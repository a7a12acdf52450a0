#pragma once

#include "platform/appkit/workspace/NSImageRep.h"
#include "platform/icons/Picture.h"

namespace mac {

// What a form of an image holds. Main thread.
class NSImageRep::Body : public ObjectBody {
public:
    explicit Body(SharedPicture picture) : m_picture(std::move(picture)), m_size(m_picture->size) {}

    Picture const& picture() const { return *m_picture; }
    NSSize size() const { return m_size; }
    void setSize(NSSize size) { m_size = size; }

    // Copies share the pixels, which are immutable.
    id copy() const override;

private:
    // Never null.
    SharedPicture m_picture;
    NSSize m_size;
};

// The pictures in an image file's contents, see NSBitmapImageRep.
std::vector<Picture> picturesInImageData(std::span<std::byte const> bytes);

} // namespace mac
