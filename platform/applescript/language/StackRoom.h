#pragma once

#include <cstdint>

namespace mac::applescript {

// False when the calling thread's stack is nearly used up.
bool hasStackRoom();

// The address that the stack of the calling thread must not fall below, for those who look very often.
std::uintptr_t lowestStackAddress();
inline std::uintptr_t currentStackAddress() { return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)); }

} // namespace mac::applescript
