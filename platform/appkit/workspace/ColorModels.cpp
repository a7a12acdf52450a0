#include "platform/appkit/workspace/ColorModels.h"
#include <cmath>

namespace mac {

namespace {

// How bright the eye finds red, green and blue.
constexpr std::array<double, 3> Luminance{0.299, 0.587, 0.114};

ColorComponents rgbOf(ColorComponents const& components, ColorModel model) {
    if (model == ColorModel::White) return {components[0], components[0], components[0]};
    if (model == ColorModel::RGB) return components;
    double const light = 1 - components[3];
    return {(1 - components[0]) * light, (1 - components[1]) * light, (1 - components[2]) * light};
}

ColorComponents cmykOfRGB(ColorComponents const& rgb) {
    double const light = std::max({rgb[0], rgb[1], rgb[2]});
    if (light == 0) return {0, 0, 0, 1};
    return {1 - rgb[0] / light, 1 - rgb[1] / light, 1 - rgb[2] / light, 1 - light};
}

} // namespace

ColorComponents convertedComponents(ColorComponents const& components, ColorModel from, ColorModel to) {
    if (from == to) return components;
    ColorComponents const rgb = rgbOf(components, from);
    if (to == ColorModel::RGB) return rgb;
    if (to == ColorModel::CMYK) return cmykOfRGB(rgb);
    // A grey stays exactly itself.
    if (rgb[0] == rgb[1] && rgb[1] == rgb[2]) return {rgb[0]};
    return {Luminance[0] * rgb[0] + Luminance[1] * rgb[1] + Luminance[2] * rgb[2]};
}

ColorComponents hsbOfRGB(ColorComponents const& rgb) {
    double const most = std::max({rgb[0], rgb[1], rgb[2]});
    double const spread = most - std::min({rgb[0], rgb[1], rgb[2]});
    if (spread == 0) return {0, 0, most};
    double sextant = 4 + (rgb[0] - rgb[1]) / spread;
    if (most == rgb[0])
        sextant = (rgb[1] - rgb[2]) / spread;
    else if (most == rgb[1])
        sextant = 2 + (rgb[2] - rgb[0]) / spread;
    return {(sextant < 0 ? sextant + 6 : sextant) / 6, spread / most, most};
}

ColorComponents rgbOfHSB(ColorComponents const& hsb) {
    ColorComponents rgb{};
    for (std::size_t channel = 0; channel < 3; ++channel) {
        // Each channel is full for a third of the circle around its own hue, and none for the third opposite.
        constexpr std::array<double, 3> offsets{5, 3, 1};
        double const place = std::fmod(offsets[channel] + hsb[0] * 6, 6);
        rgb[channel] = hsb[2] * (1 - hsb[1] * std::clamp(std::min(place, 4 - place), 0.0, 1.0));
    }
    return rgb;
}

} // namespace mac
