#pragma once

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSString.h"

// What tests write down as literals.

namespace mac::test {

// A path of the file system's bytes.
inline NSString path(std::string_view bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

inline NSString units(std::u16string_view text) { return NSString::stringWithCodeUnits(text); }

inline NSData bytes(std::string_view text) { return NSData::dataWithBytes(std::as_bytes(std::span(text))); }

} // namespace mac::test
