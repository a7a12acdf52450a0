#pragma once

#include <random>

namespace mac::test {

// The same numbers in every run, so that what fails once fails again.
inline std::mt19937 seededRandom(std::mt19937::result_type seed) { return std::mt19937(seed); }

} // namespace mac::test
