#pragma once

#include "platform/foundation/urls/NSURL.h"
#include <string_view>

// Short spellings for the URLs that tests make.

namespace mac::test {

// The URL of the UTF-8 text; nil where the text is none.
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
