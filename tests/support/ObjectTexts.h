#pragma once

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/text/NSString.h"
#include <string>
#include <string_view>
#include <vector>

// Short spellings for the objects that tests make and for the texts that they compare.

namespace mac::test {

inline NSNumber number(int value) { return NSNumber::numberWithInt_(value); }

// A string of UTF-8.
inline NSString utf8(std::string_view bytes) { return NSString::stringWithUTF8String_(bytes); }

// The object's description; "-" for nil.
inline std::string text(id const& object) { return object == nil ? "-" : object.description().UTF8String(); }

// The descriptions of the array's objects with the separator between; "-" for a nil array.
inline std::string joined(NSArray const& array, char const* separator = " ") {
    return text(array.componentsJoinedByString_(utf8(separator)));
}

// A path's or name's bytes in the file system; "-" for nil and for an object of another kind, "" for a
// string that the file system cannot hold.
inline std::string fileSystemBytes(id const& path) {
    NSString const string = as<NSString>(path);
    return string == nil ? "-" : string.fileSystemRepresentation().value_or("");
}

// The bytes in the file system of an array of paths or names, in the array's order.
inline std::vector<std::string> fileSystemBytesOfEach(NSArray const& paths) {
    std::vector<std::string> bytes;
    for (id const& path : paths)
        bytes.push_back(fileSystemBytes(path));
    return bytes;
}

} // namespace mac::test
