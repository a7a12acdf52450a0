#include "platform/appkit/NSColor.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/Method.h"
#include <algorithm>
#include <array>

namespace mac {

namespace {

enum class Space { White, RGB };

double within(double component) { return std::clamp(component == component ? component : 0.0, 0.0, 1.0); }

// How bright the eye finds red, green and blue.
constexpr std::array<double, 3> Luminance{0.299, 0.587, 0.114};

} // namespace

// Grey is held as three equal components.
class NSColor::Body : public ObjectBody {
public:
    Body(Space space, std::array<double, 3> components, double alpha)
        : m_space(space), m_components(components), m_alpha(within(alpha)) {
        for (double& component : m_components)
            component = within(component);
    }

    Space space() const { return m_space; }
    std::array<double, 3> const& components() const { return m_components; }
    double alpha() const { return m_alpha; }
    double component(Space space, std::size_t index) const {
        if (space != m_space) throw NSInvalidArgumentException("The colour has no such component in its colour space");
        return m_components[index];
    }
    double brightness() const {
        if (m_space == Space::White) return m_components[0];
        return Luminance[0] * m_components[0] + Luminance[1] * m_components[1] + Luminance[2] * m_components[2];
    }

    bool isEqual(id const& other) const override {
        NSColor const color = as<NSColor>(other);
        if (color == nil) return false;
        Body const& body = *bodyOf(color);
        return m_space == body.m_space && m_components == body.m_components && m_alpha == body.m_alpha;
    }
    std::uint64_t hash() const override {
        std::uint64_t result = m_space == Space::White ? 1 : 2;
        for (double const component : {m_components[0], m_components[1], m_components[2], m_alpha})
            result = result * 1000003 + std::hash<double>()(component);
        return result;
    }
    id copy() const override { return id::retain(const_cast<Body*>(this)); }
    NSString description() const override {
        NSColor const self = uncheckedCast<NSColor>(copy());
        if (m_space == Space::White)
            return NSString::stringWithFormat_("%@ %g %g", self.colorSpaceName(), m_components[0], m_alpha);
        return NSString::stringWithFormat_("%@ %g %g %g %g", self.colorSpaceName(), m_components[0], m_components[1],
                                           m_components[2], m_alpha);
    }

private:
    Space m_space;
    std::array<double, 3> m_components;
    double m_alpha;
};

ClassDescription NSColor::describeClass() {
    using Self = NSColor;
    return {
        .name = "NSColor",
        .superclass = classOf<NSObject>(),
        .methods =
            {
                method<&Self::colorSpaceName>("colorSpaceName"),
                method<&Self::colorUsingColorSpaceName_>("colorUsingColorSpaceName:"),
                method<&Self::whiteComponent>("whiteComponent"),
                method<&Self::redComponent>("redComponent"),
                method<&Self::greenComponent>("greenComponent"),
                method<&Self::blueComponent>("blueComponent"),
                method<&Self::alphaComponent>("alphaComponent"),
            },
        .classMethods =
            {
                method<&Self::blackColor>("blackColor"),
                method<&Self::darkGrayColor>("darkGrayColor"),
                method<&Self::whiteColor>("whiteColor"),
            },
    };
}

NSColor NSColor::colorWithCalibratedWhite_alpha_(double white, double alpha) {
    return adopt<NSColor>(Space::White, std::array{white, white, white}, alpha);
}

NSColor NSColor::colorWithCalibratedRed_green_blue_alpha_(double red, double green, double blue, double alpha) {
    return adopt<NSColor>(Space::RGB, std::array{red, green, blue}, alpha);
}

NSColor NSColor::blackColor() {
    static NSColor const color = colorWithCalibratedWhite_alpha_(0, 1);
    return color;
}

NSColor NSColor::darkGrayColor() {
    static NSColor const color = colorWithCalibratedWhite_alpha_(1.0 / 3, 1);
    return color;
}

NSColor NSColor::whiteColor() {
    static NSColor const color = colorWithCalibratedWhite_alpha_(1, 1);
    return color;
}

NSString NSColor::colorSpaceName() const {
    if (*this == nil) return nil;
    return bodyOf(*this)->space() == Space::White ? NSString(NSCalibratedWhiteColorSpace)
                                                  : NSString(NSCalibratedRGBColorSpace);
}

NSColor NSColor::colorUsingColorSpaceName_(NSString const& name) const {
    if (*this == nil || name == nil) return nil;
    if (name.isEqualToString_(colorSpaceName())) return *this;
    Body const& body = *bodyOf(*this);
    if (name.isEqualToString_(NSCalibratedRGBColorSpace))
        return adopt<NSColor>(Space::RGB, body.components(), body.alpha());
    if (!name.isEqualToString_(NSCalibratedWhiteColorSpace)) return nil;
    return colorWithCalibratedWhite_alpha_(body.brightness(), body.alpha());
}

double NSColor::whiteComponent() const { return *this == nil ? 0 : bodyOf(*this)->component(Space::White, 0); }
double NSColor::redComponent() const { return *this == nil ? 0 : bodyOf(*this)->component(Space::RGB, 0); }
double NSColor::greenComponent() const { return *this == nil ? 0 : bodyOf(*this)->component(Space::RGB, 1); }
double NSColor::blueComponent() const { return *this == nil ? 0 : bodyOf(*this)->component(Space::RGB, 2); }
double NSColor::alphaComponent() const { return *this == nil ? 0 : bodyOf(*this)->alpha(); }

} // namespace mac
