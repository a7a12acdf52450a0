#pragma once

#include <string>

namespace mac {

// The fewest digits that read back as the same number, in C's %g style with an exponent below 0.0001 and from 1e17 on
// (1e9 for a float): "0.1", "1", "1e+20", "nan", "-inf". No locale. For implementations.
std::string shortestText(double value);
std::string shortestText(float value);

} // namespace mac
