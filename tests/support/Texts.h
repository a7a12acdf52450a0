#pragma once

#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/text/NSString.h"

// Short spellings for the strings and data that tests make, and for the bytes that they compare.

namespace mac::test {

// A path of the file system's bytes.
inline NSString path(std::string_view bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

inline NSString units(std::u16string_view text) { return NSString::stringWithCodeUnits(text); }

inline NSData bytes(std::string_view text) { return NSData::dataWithBytes(std::as_bytes(std::span(text))); }

// The bytes of the data as a string.
inline std::string bytesOf(NSData const& data) {
    return {reinterpret_cast<char const*>(data.bytes()), data.span().size()};
}

} // namespace mac::test
