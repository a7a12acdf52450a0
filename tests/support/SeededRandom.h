#pragma once

#include <random>

namespace mac::test {

// A generator with the same numbers in every run, so that a failure can be repeated.
inline std::mt19937 seededRandom(std::mt19937::result_type seed) { return std::mt19937(seed); }

} // namespace mac::test
