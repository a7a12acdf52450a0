#pragma once

#include "platform/foundation/NSString.h"

namespace mac {

// The names of the colour spaces, the framework's own.
inline constexpr char NSCalibratedWhiteColorSpace[] = "NSCalibratedWhiteColorSpace";
inline constexpr char NSCalibratedRGBColorSpace[] = "NSCalibratedRGBColorSpace";

// A colour: a grey level or red, green and blue, and opacity, each from 0 to 1. Colours of equal space and components
// are equal. Immutable; any thread.
//
// Linux: in a window black and dark grey mean the theme's text and its dimmed text, so that they can be read on any
// theme.
class NSColor : public Handle<NSColor, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Values outside 0 to 1 are taken as the nearer end.
    static NSColor colorWithCalibratedWhite_alpha_(double white, double alpha);
    static NSColor colorWithCalibratedRed_green_blue_alpha_(double red, double green, double blue, double alpha);
    static NSColor blackColor();
    // A third of white.
    static NSColor darkGrayColor();
    static NSColor whiteColor();

    NSString colorSpaceName() const;
    // The same colour in the other space, itself when it is in it already; nil for a name that is not above.
    NSColor colorUsingColorSpaceName_(NSString const& name) const;
    // A component of another space raises NSInvalidArgumentException.
    double whiteComponent() const;
    double redComponent() const;
    double greenComponent() const;
    double blueComponent() const;
    double alphaComponent() const;
};

} // namespace mac
