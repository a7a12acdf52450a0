#include "platform/icons/PlotIcon.h"
#include <algorithm>
#include <cmath>

namespace mac {

namespace {

Picture const& fittingPicture(std::vector<SharedPicture> const& pictures, double pixels) {
    auto const fitting =
        std::ranges::find_if(pictures, [pixels](SharedPicture const& picture) { return picture->width >= pixels; });
    return fitting == pictures.end() ? *pictures.back() : **fitting;
}

// The rectangle in pixels of the context's picture, which has some.
CGRect pixelsOf(CGRect const& rect, Picture const& picture) {
    float const across = static_cast<float>(picture.width) / picture.size.width;
    float const upward = static_cast<float>(picture.height) / picture.size.height;
    return NSMakeRect(rect.origin.x * across, rect.origin.y * upward, rect.size.width * across,
                      rect.size.height * upward);
}

bool isUsableRect(CGRect const& rect) {
    constexpr float farthest = 65536;
    bool const isFinite = std::abs(rect.origin.x) < farthest && std::abs(rect.origin.y) < farthest;
    return isFinite && !NSIsEmptyRect(rect) && rect.size.width < farthest && rect.size.height < farthest;
}

} // namespace

OSStatus drawInContext(CGContext& context, CGRect const& rect, Picture const& picture) {
    if (context.picture.pixels.empty() || !isUsableRect(rect)) return paramErr;
    drawPicture(context.picture, pixelsOf(rect, context.picture), picture);
    return noErr;
}

OSStatus PlotIconRefInContext(CGContextRef context, CGRect const* rect, IconAlignmentType align,
                              IconTransformType transform, RGBColor const* labelColor, PlotIconRefFlags flags,
                              IconRef iconRef) {
    if (!iconRef) return invalidIconRefErr;
    bool const isOrdinary =
        align == kAlignNone && transform == kTransformNone && !labelColor && flags == kPlotIconRefNormalFlags;
    if (!context || !rect || !isOrdinary || context->picture.pixels.empty()) return paramErr;
    CGSize const size = pixelsOf(*rect, context->picture).size;
    std::vector<SharedPicture> const pictures = picturesOfIcon(iconRef);
    return drawInContext(*context, *rect, fittingPicture(pictures, double{std::max(size.width, size.height)}));
}

} // namespace mac
