#pragma once

#include <array>
#include <cstdint>

namespace mac {

// The characters of an encoding of one byte, by byte from 0x80 on; U+FFFD where there is none.
using UpperHalf = std::array<char16_t, 0x80>;

UpperHalf const& upperHalfOfISOLatin2();
UpperHalf const& upperHalfOfMacOSRoman();
UpperHalf const& upperHalfOfNEXTSTEP();
UpperHalf const& upperHalfOfWindowsCP1252();

} // namespace mac
