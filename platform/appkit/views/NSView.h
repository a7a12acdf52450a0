#pragma once

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/objects/NSGeometry.h"

namespace mac {

// What of a view's place in its superview changes with the superview's size; along each axis the change goes to the
// flexible parts in proportion to their sizes.
inline constexpr NSUInteger NSViewNotSizable = 0x00;
inline constexpr NSUInteger NSViewMinXMargin = 0x01;
inline constexpr NSUInteger NSViewWidthSizable = 0x02;
inline constexpr NSUInteger NSViewMaxXMargin = 0x04;
inline constexpr NSUInteger NSViewMinYMargin = 0x08;
inline constexpr NSUInteger NSViewHeightSizable = 0x10;
inline constexpr NSUInteger NSViewMaxYMargin = 0x20;

// A part of a window: a rectangle with subviews in it. The interface file makes what is shown; the handle outlives it
// and then keeps its own frame. A message to nil answers an empty value or does nothing. Main thread.
//
// Linux: a view that no interface file made has its geometry, and is shown nowhere.
class NSView : public Handle<NSView, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    NSView initWithFrame_(NSRect const& frame) const;

    bool isHidden() const;
    void setHidden_(BOOL hidden) const;

    // In points of the superview, whose origin is at its lower left.
    NSRect frame() const;
    // Resizes the subviews as their masks say. Linux: those that a layout of the interface file arranges stay with it.
    void setFrame_(NSRect const& frame) const;
    // The bits above; NSViewNotSizable at first.
    NSUInteger autoresizingMask() const;
    void setAutoresizingMask_(NSUInteger mask) const;

    // Back to front.
    NSArray subviews() const;
    // Nil for a view that lies in no other one.
    NSView superview() const;
    // Takes the view, which must not hold the receiver, from its superview first; nil does nothing.
    void addSubview_(NSView const& view) const;
    void removeFromSuperview() const;
};

} // namespace mac
