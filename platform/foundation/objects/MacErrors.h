#pragma once

#include "platform/foundation/objects/Types.h"

// The numbers by which the procedural services say how a call went, and the types that carry them.

namespace mac {

using OSErr = std::int16_t;
using OSStatus = std::int32_t;
using OSType = FourCharCode;

inline constexpr OSErr noErr = 0;
// An argument that cannot be used.
inline constexpr OSErr paramErr = -50;
// More than there is room for, or than is allowed.
inline constexpr OSErr memFullErr = -108;

} // namespace mac
