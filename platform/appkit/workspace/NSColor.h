#pragma once

#include "platform/foundation/text/NSString.h"

namespace mac {

// The names of the colour spaces, the framework's own.
inline constexpr char NSCalibratedWhiteColorSpace[] = "NSCalibratedWhiteColorSpace";
inline constexpr char NSCalibratedRGBColorSpace[] = "NSCalibratedRGBColorSpace";
inline constexpr char NSDeviceWhiteColorSpace[] = "NSDeviceWhiteColorSpace";
inline constexpr char NSDeviceRGBColorSpace[] = "NSDeviceRGBColorSpace";
inline constexpr char NSDeviceCMYKColorSpace[] = "NSDeviceCMYKColorSpace";

// A colour: a grey level, or red, green and blue, or cyan, magenta, yellow and black, and opacity, each from 0 to 1.
// Colours of equal space and components are equal. Immutable; any thread. Archived with its space (NSArchiver.h).
//
// Linux: in a window black and dark grey mean the theme's text and its dimmed text, so that they can be read on any
// theme. Calibrated and device spaces hold the same numbers for a colour.
class NSColor : public Handle<NSColor, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Values outside 0 to 1 are taken as the nearer end.
    static NSColor colorWithCalibratedWhite_alpha_(double white, double alpha);
    static NSColor colorWithCalibratedRed_green_blue_alpha_(double red, double green, double blue, double alpha);
    // Held as red, green and blue; a hue of 0 is red, of 1/3 green.
    static NSColor colorWithCalibratedHue_saturation_brightness_alpha_(double hue, double saturation, double brightness,
                                                                       double alpha);
    static NSColor colorWithDeviceWhite_alpha_(double white, double alpha);
    static NSColor colorWithDeviceRed_green_blue_alpha_(double red, double green, double blue, double alpha);
    static NSColor colorWithDeviceCyan_magenta_yellow_black_alpha_(double cyan, double magenta, double yellow,
                                                                   double black, double alpha);
    static NSColor blackColor();
    // A third of white.
    static NSColor darkGrayColor();
    static NSColor whiteColor();

    NSString colorSpaceName() const;
    // The colour converted to the named space, itself if it is in that space already; nil for a name not listed above.
    NSColor colorUsingColorSpaceName_(NSString const& name) const;
    // A component of another kind of space raises NSInvalidArgumentException.
    double whiteComponent() const;
    double redComponent() const;
    double greenComponent() const;
    double blueComponent() const;
    double hueComponent() const;
    double saturationComponent() const;
    double brightnessComponent() const;
    double cyanComponent() const;
    double magentaComponent() const;
    double yellowComponent() const;
    double blackComponent() const;
    double alphaComponent() const;
};

} // namespace mac
