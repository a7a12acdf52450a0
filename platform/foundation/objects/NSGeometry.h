#pragma once

namespace mac {

// Places and extents in points, an inch having 72. The origin of a plane is at its lower left. Values; any thread.

struct NSPoint {
    float x{0};
    float y{0};

    constexpr bool operator==(NSPoint const&) const = default;
};

struct NSSize {
    float width{0};
    float height{0};

    constexpr bool operator==(NSSize const&) const = default;
};

struct NSRect {
    NSPoint origin{};
    NSSize size{};

    constexpr bool operator==(NSRect const&) const = default;
};

inline constexpr NSPoint NSZeroPoint{};
inline constexpr NSSize NSZeroSize{};
inline constexpr NSRect NSZeroRect{};

constexpr NSPoint NSMakePoint(float x, float y) { return {x, y}; }
constexpr NSSize NSMakeSize(float width, float height) { return {width, height}; }
constexpr NSRect NSMakeRect(float x, float y, float width, float height) { return {{x, y}, {width, height}}; }

// The coordinates of the rectangle's right and upper edge.
constexpr float NSMaxX(NSRect const& rect) { return rect.origin.x + rect.size.width; }
constexpr float NSMaxY(NSRect const& rect) { return rect.origin.y + rect.size.height; }
// Whether the rectangle has no area.
constexpr bool NSIsEmptyRect(NSRect const& rect) { return !(rect.size.width > 0 && rect.size.height > 0); }

} // namespace mac
