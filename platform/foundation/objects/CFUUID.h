#pragma once

#include "platform/foundation/objects/ServiceTypes.h"
#include "platform/foundation/text/NSString.h"
#include <array>

namespace mac {

using CFUUIDBytes = std::array<std::uint8_t, 16>;

// A universally unique identifier. Immutable; equal by its bytes; any thread.
class CFUUIDRef : public Handle<CFUUIDRef, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();
};

// A new identifier of random bits (version 4); nil when the system has no random bits.
CFUUIDRef CFUUIDCreate(CFAllocatorRef allocator);
// The identifier's bytes; all zero for nil.
CFUUIDBytes CFUUIDGetUUIDBytes(CFUUIDRef const& uuid);
// 36 characters: upper-case hexadecimal digits in groups of 8, 4, 4, 4 and 12. Nil for nil.
CFStringRef CFUUIDCreateString(CFAllocatorRef allocator, CFUUIDRef const& uuid);

} // namespace mac
