#pragma once

#include "platform/foundation/objects/Object.h"
#include <algorithm>
#include <array>
#include <cstddef>

namespace mac {

// The numbers that make a colour, each from 0 to 1; those that a model does not have are 0. For implementations; any
// thread.
using ColorComponents = std::array<double, 4>;

enum class ColorModel { White, RGB, CMYK };

constexpr std::size_t componentCount(ColorModel model) {
    if (model == ColorModel::White) return 1;
    return model == ColorModel::RGB ? 3 : 4;
}

ColorComponents convertedComponents(ColorComponents const& components, ColorModel from, ColorModel to);

// Hue, saturation and brightness, and back. A grey has hue 0.
ColorComponents hsbOfRGB(ColorComponents const& rgb);
ColorComponents rgbOfHSB(ColorComponents const& hsb);

// The form in which colours are archived (NSArchiver.h): a dictionary with the name of the space and its components,
// the opacity last. For implementations; any thread.

inline constexpr char ArchivedSpaceKey[] = "space";
inline constexpr char ArchivedComponentsKey[] = "components";

// REQUIRES: the object is a colour.
id archivedColor(id const& object);
// Nil for what archivedColor does not answer.
id unarchivedColor(id const& list);

} // namespace mac
