#include "platform/appkit/workspace/NSColor.h"
#include "platform/appkit/workspace/ColorModels.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include <cmath>

namespace mac {

namespace {

struct ColorSpace {
    char const* name;
    ColorModel model;
};
constexpr std::array ColorSpaces{
    ColorSpace{NSCalibratedWhiteColorSpace, ColorModel::White}, ColorSpace{NSCalibratedRGBColorSpace, ColorModel::RGB},
    ColorSpace{NSDeviceWhiteColorSpace, ColorModel::White},     ColorSpace{NSDeviceRGBColorSpace, ColorModel::RGB},
    ColorSpace{NSDeviceCMYKColorSpace, ColorModel::CMYK},
};

// Null for another name.
ColorSpace const* colorSpaceOf(NSString const& name) {
    auto const* const space = std::ranges::find_if(ColorSpaces, [&name](ColorSpace const& one) {
        return name.isEqualToString_(NSString::stringWithUTF8String_(one.name));
    });
    return space == ColorSpaces.end() ? nullptr : space;
}

double within(double component) { return std::clamp(component == component ? component : 0.0, 0.0, 1.0); }

} // namespace

// Components that the space does not have are 0.
class NSColor::Body : public ObjectBody {
public:
    Body(ColorSpace const& space, ColorComponents const& components, double alpha)
        : m_space(space), m_components(components), m_alpha(within(alpha)) {
        for (double& component : m_components)
            component = within(component);
    }

    ColorSpace const& space() const { return m_space; }
    ColorComponents const& components() const { return m_components; }
    double alpha() const { return m_alpha; }
    double component(ColorModel model, std::size_t index) const { return componentsOf(model)[index]; }
    ColorComponents const& componentsOf(ColorModel model) const {
        if (model != m_space.model)
            throw NSInvalidArgumentException("The colour has no such component in its colour space");
        return m_components;
    }

    bool isEqual(id const& other) const override {
        NSColor const color = as<NSColor>(other);
        if (color == nil) return false;
        Body const& body = *bodyOf(color);
        return &m_space == &body.m_space && m_components == body.m_components && m_alpha == body.m_alpha;
    }
    std::uint64_t hash() const override {
        auto result = static_cast<std::uint64_t>(&m_space - ColorSpaces.data() + 1);
        for (double const component : m_components)
            result = result * 1000003 + std::hash<double>()(component);
        return result * 1000003 + std::hash<double>()(m_alpha);
    }
    id copy() const override { return id::retain(const_cast<Body*>(this)); }
    NSString description() const override {
        NSMutableArray const words = NSMutableArray::arrayWithObjects_({NSString::stringWithUTF8String_(m_space.name)});
        for (std::size_t index = 0; index < componentCount(m_space.model); ++index)
            words.addObject_(NSString::stringWithFormat_("%g", m_components[index]));
        words.addObject_(NSString::stringWithFormat_("%g", m_alpha));
        return words.componentsJoinedByString_(" ");
    }

private:
    // A row of the table.
    ColorSpace const& m_space;
    ColorComponents m_components;
    double m_alpha;
};

namespace {

NSColor colorIn(char const* name, ColorComponents const& components, double alpha) {
    return adopt<NSColor>(*colorSpaceOf(NSString::stringWithUTF8String_(name)), components, alpha);
}

} // namespace

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
                method<&Self::hueComponent>("hueComponent"),
                method<&Self::saturationComponent>("saturationComponent"),
                method<&Self::brightnessComponent>("brightnessComponent"),
                method<&Self::cyanComponent>("cyanComponent"),
                method<&Self::magentaComponent>("magentaComponent"),
                method<&Self::yellowComponent>("yellowComponent"),
                method<&Self::blackComponent>("blackComponent"),
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
    return colorIn(NSCalibratedWhiteColorSpace, {white}, alpha);
}

NSColor NSColor::colorWithCalibratedRed_green_blue_alpha_(double red, double green, double blue, double alpha) {
    return colorIn(NSCalibratedRGBColorSpace, {red, green, blue}, alpha);
}

NSColor NSColor::colorWithCalibratedHue_saturation_brightness_alpha_(double hue, double saturation, double brightness,
                                                                     double alpha) {
    return colorIn(NSCalibratedRGBColorSpace, rgbOfHSB({within(hue), within(saturation), within(brightness)}), alpha);
}

NSColor NSColor::colorWithDeviceWhite_alpha_(double white, double alpha) {
    return colorIn(NSDeviceWhiteColorSpace, {white}, alpha);
}

NSColor NSColor::colorWithDeviceRed_green_blue_alpha_(double red, double green, double blue, double alpha) {
    return colorIn(NSDeviceRGBColorSpace, {red, green, blue}, alpha);
}

NSColor NSColor::colorWithDeviceCyan_magenta_yellow_black_alpha_(double cyan, double magenta, double yellow,
                                                                 double black, double alpha) {
    return colorIn(NSDeviceCMYKColorSpace, {cyan, magenta, yellow, black}, alpha);
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
    return *this == nil ? NSString() : NSString::stringWithUTF8String_(bodyOf(*this)->space().name);
}

NSColor NSColor::colorUsingColorSpaceName_(NSString const& name) const {
    ColorSpace const* const space = *this == nil ? nullptr : colorSpaceOf(name);
    if (!space) return nil;
    Body const& body = *bodyOf(*this);
    if (space == &body.space()) return *this;
    return adopt<NSColor>(*space, convertedComponents(body.components(), body.space().model, space->model),
                          body.alpha());
}

double NSColor::whiteComponent() const { return *this == nil ? 0 : bodyOf(*this)->component(ColorModel::White, 0); }
double NSColor::redComponent() const { return *this == nil ? 0 : bodyOf(*this)->component(ColorModel::RGB, 0); }
double NSColor::greenComponent() const { return *this == nil ? 0 : bodyOf(*this)->component(ColorModel::RGB, 1); }
double NSColor::blueComponent() const { return *this == nil ? 0 : bodyOf(*this)->component(ColorModel::RGB, 2); }
double NSColor::hueComponent() const {
    return *this == nil ? 0 : hsbOfRGB(bodyOf(*this)->componentsOf(ColorModel::RGB))[0];
}
double NSColor::saturationComponent() const {
    return *this == nil ? 0 : hsbOfRGB(bodyOf(*this)->componentsOf(ColorModel::RGB))[1];
}
double NSColor::brightnessComponent() const {
    return *this == nil ? 0 : hsbOfRGB(bodyOf(*this)->componentsOf(ColorModel::RGB))[2];
}
double NSColor::cyanComponent() const { return *this == nil ? 0 : bodyOf(*this)->component(ColorModel::CMYK, 0); }
double NSColor::magentaComponent() const { return *this == nil ? 0 : bodyOf(*this)->component(ColorModel::CMYK, 1); }
double NSColor::yellowComponent() const { return *this == nil ? 0 : bodyOf(*this)->component(ColorModel::CMYK, 2); }
double NSColor::blackComponent() const { return *this == nil ? 0 : bodyOf(*this)->component(ColorModel::CMYK, 3); }
double NSColor::alphaComponent() const { return *this == nil ? 0 : bodyOf(*this)->alpha(); }

id archivedColor(id const& object) {
    NSColor::Body const& color = *bodyOf(as<NSColor>(object));
    NSMutableArray const numbers = NSMutableArray::array();
    for (std::size_t index = 0; index < componentCount(color.space().model); ++index)
        numbers.addObject_(NSNumber::numberWithDouble_(color.components()[index]));
    numbers.addObject_(NSNumber::numberWithDouble_(color.alpha()));
    NSMutableDictionary const list = NSMutableDictionary::dictionary();
    list.setObject_forKey_(as<NSColor>(object).colorSpaceName(), ArchivedSpaceKey);
    list.setObject_forKey_(numbers, ArchivedComponentsKey);
    return list;
}

id unarchivedColor(id const& list) {
    NSDictionary const dictionary = as<NSDictionary>(list);
    ColorSpace const* const space = colorSpaceOf(as<NSString>(dictionary.objectForKey_(ArchivedSpaceKey)));
    NSArray const numbers = as<NSArray>(dictionary.objectForKey_(ArchivedComponentsKey));
    std::size_t const count = space ? componentCount(space->model) : 0;
    if (!space || numbers.count() != count + 1) return nil;
    for (id const& number : numbers) {
        if (!std::isfinite(as<NSNumber>(number).doubleValue()) || as<NSNumber>(number) == nil) return nil;
    }
    ColorComponents components{};
    for (std::size_t index = 0; index < count; ++index)
        components[index] = as<NSNumber>(numbers.objectAtIndex_(static_cast<NSUInteger>(index))).doubleValue();
    return adopt<NSColor>(*space, components, as<NSNumber>(numbers.lastObject()).doubleValue());
}

} // namespace mac
