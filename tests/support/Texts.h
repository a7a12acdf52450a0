#pragma once

#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/text/NSString.h"
#include "platform/foundation/urls/NSURL.h"
#include <string_view>

// Short spellings for the strings, data and URLs that tests make, and for the bytes that they compare.

namespace mac::test {

// A path of the file system's bytes.
inline NSString path(std::string_view bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

inline NSString units(std::u16string_view text) { return NSString::stringWithCodeUnits(text); }

inline NSData bytes(std::string_view text) { return NSData::dataWithBytes(std::as_bytes(std::span(text))); }

// The bytes of the data as a string.
inline std::string bytesOf(NSData const& data) {
    return {reinterpret_cast<char const*>(data.bytes()), data.span().size()};
}

// The URL of the UTF-8 text; nil if the text is not a URL.
inline NSURL url(std::string_view text) { return NSURL::URLWithString_(NSString::stringWithUTF8String_(text)); }

// The URL of the UTF-8 text, relative to the URL of the base's text.
inline NSURL url(std::string_view text, std::string_view base) {
    return NSURL::URLWithString_relativeToURL_(NSString::stringWithUTF8String_(text), url(base));
}

// The file URL of a path of the file system's bytes.
inline NSURL fileURL(std::string_view path) {
    return NSURL::fileURLWithPath_(NSString::stringWithFileSystemRepresentation_(path));
}

} // namespace mac::test
