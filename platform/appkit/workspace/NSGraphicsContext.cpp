#include "platform/appkit/workspace/NSGraphicsContext.h"
#include "platform/foundation/objects/Method.h"
#include <algorithm>
#include <cmath>

namespace mac {

namespace {

// Larger images have no pixels to draw on.
constexpr float LargestCanvasSide = 4096;

CGContext contextOf(NSSize size) {
    bool const isUsable =
        size.width > 0 && size.height > 0 && size.width <= LargestCanvasSide && size.height <= LargestCanvasSide;
    if (!isUsable) return {};
    CGContext context{emptyPicture(static_cast<int>(std::ceil(size.width)), static_cast<int>(std::ceil(size.height)))};
    context.picture.size = size;
    return context;
}

// The last one is current. Never destroyed: images may draw until the program's last instruction.
std::vector<NSGraphicsContext>& contexts() {
    static std::vector<NSGraphicsContext>& shared = *std::make_unique<std::vector<NSGraphicsContext>>().release();
    return shared;
}

} // namespace

class NSGraphicsContext::Body : public ObjectBody {
public:
    explicit Body(NSSize size) : m_context(contextOf(size)) {}

    CGContext& context() { return m_context; }

private:
    CGContext m_context;
};

ClassDescription NSGraphicsContext::describeClass() {
    return {.name = "NSGraphicsContext",
            .superclass = classOf<NSObject>(),
            .methods = {method<&NSGraphicsContext::graphicsPort>("graphicsPort")},
            .classMethods = {classMethod<&currentContext>("currentContext")}};
}

NSGraphicsContext NSGraphicsContext::currentContext() {
    return contexts().empty() ? NSGraphicsContext() : contexts().back();
}

CGContextRef NSGraphicsContext::graphicsPort() const {
    return *this == nil ? CGContextRef() : &bodyOf(*this)->context();
}

NSGraphicsContext NSGraphicsContext::push(NSSize size) {
    contexts().push_back(adopt<NSGraphicsContext>(size));
    return contexts().back();
}

void NSGraphicsContext::pop(NSGraphicsContext const& context) {
    std::erase_if(contexts(), [&context](NSGraphicsContext const& other) { return isSame(other, context); });
}

} // namespace mac
