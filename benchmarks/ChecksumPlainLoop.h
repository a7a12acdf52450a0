#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// Compiled without vector instructions of the compiler's own making.

// The steps of the checksum's sum as one would write them down.
std::uint32_t sumWordByWord(std::span<std::byte const> bytes);
