#pragma once

#include "platform/foundation/objects/Object.h"
#include "platform/foundation/objects/ServiceTypes.h"

namespace mac {

// The unique identifier by which a keyed archive refers to one of its objects: an unsigned 32-bit number, but not an
// NSNumber. A value of property lists: binary has a kind of its own for it, XML the dictionary {"CF$UID" = number}.
// Immutable; equal by its value; any thread.
class CFKeyedArchiverUIDRef : public Handle<CFKeyedArchiverUIDRef, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();
};

CFKeyedArchiverUIDRef CFKeyedArchiverUIDCreate(CFAllocatorRef allocator, std::uint32_t value);
// 0 for nil.
std::uint32_t CFKeyedArchiverUIDGetValue(CFKeyedArchiverUIDRef const& identifier);

} // namespace mac
