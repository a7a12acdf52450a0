#pragma once

#include <string>

namespace mac {

// A real as the framework writes it where no format says more: %.16g for a double and %.7g for a float, so that 0.1 is
// "0.1"; "nan", "inf" and "-inf". No locale. For implementations.
std::string generalText(double value);
std::string generalText(float value);

// The nearest float, which is infinite from half a step past the largest on; the language leaves what lies beyond open.
float nearestFloat(double value);

// The fewest digits that read back as the same number, with an exponent below 0.0001 and from 1e17 on.
std::string shortestText(double value);

} // namespace mac
