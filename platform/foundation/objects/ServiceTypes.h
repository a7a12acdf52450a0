#pragma once

#include "platform/foundation/objects/Types.h"

// The types that the procedural services share. Their objects are the framework's own: a CFURLRef is an NSURL, and what
// a Create or Copy function answers is let go by its handle.

namespace mac {

class NSString;
class NSURL;

using CFIndex = std::int32_t;
using CFStringRef = NSString;
using CFURLRef = NSURL;
// There is one allocator.
using CFAllocatorRef = Nil;
inline constexpr CFAllocatorRef kCFAllocatorDefault = nil;

inline constexpr CFIndex kCFNotFound = -1;

struct CFRange {
    CFIndex location{0};
    CFIndex length{0};

    constexpr bool operator==(CFRange const&) const = default;
};

// The numbers by which the procedural services say how a call went, and the types that carry them.

using OSErr = std::int16_t;
using OSStatus = std::int32_t;
using OSType = FourCharCode;

inline constexpr OSErr noErr = 0;
// An argument that cannot be used.
inline constexpr OSErr paramErr = -50;
// More than there is room for, or than is allowed.
inline constexpr OSErr memFullErr = -108;

} // namespace mac
