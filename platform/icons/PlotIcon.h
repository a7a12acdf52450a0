#pragma once

#include "platform/icons/IconRefs.h"

namespace mac {

// Drawing icons. Main thread.

using CGPoint = NSPoint;
using CGSize = NSSize;
using CGRect = NSRect;

// What is drawn into: a picture, in points from its lower left. It belongs to whoever made it.
struct CGContext {
    Picture picture{};
};
using CGContextRef = CGContext*;

// A colour of QuickDraw: channels from 0 to 65535.
struct RGBColor {
    std::uint16_t red{0};
    std::uint16_t green{0};
    std::uint16_t blue{0};

    constexpr bool operator==(RGBColor const&) const = default;
};

using IconAlignmentType = std::uint32_t;
inline constexpr IconAlignmentType kAlignNone = 0;
using IconTransformType = std::uint32_t;
inline constexpr IconTransformType kTransformNone = 0;
using PlotIconRefFlags = std::uint32_t;
inline constexpr PlotIconRefFlags kPlotIconRefNormalFlags = 0;

// For implementations: draws a picture, scaled, into the rectangle. paramErr for a rectangle without area or far away,
// and for a context without pixels.
OSStatus drawInContext(CGContext& context, CGRect const& rect, Picture const& picture);

// Draws the icon into the rectangle: the smallest of its pictures that fills it, else the largest, scaled to it.
// invalidIconRefErr for a null icon; paramErr for another null pointer, for a rectangle without area and a context
// without pixels.
// Linux: another alignment, transform or flag than those above, and a label colour, are paramErr.
OSStatus PlotIconRefInContext(CGContextRef context, CGRect const* rect, IconAlignmentType align,
                              IconTransformType transform, RGBColor const* labelColor, PlotIconRefFlags flags,
                              IconRef iconRef);

} // namespace mac
