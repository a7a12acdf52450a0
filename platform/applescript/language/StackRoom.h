#pragma once

#include <cstdint>

namespace mac::applescript {

// Throws the script error "Stack overflow." when the calling thread's stack is nearly used up. Whatever recurses over a
// script's source or values asks first, so that no nesting ends the program.
void requireStackRoom();

// The address that the stack of the calling thread must not fall below, for those who look very often.
std::uintptr_t lowestStackAddress();
inline std::uintptr_t currentStackAddress() { return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)); }

} // namespace mac::applescript
