#pragma once

#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/text/NSCharacterSet.h"
#include <cstdint>

namespace mac {

// Small operations on text and bytes. Indexes and counts are of UTF-16 code units. A nil receiver answers nil, 0 or NO.
// Caller's thread.

// How often the text occurs, literally, without overlaps: aa is twice in aaaa. 0 for a nil or empty substring.
NSUInteger pxCountOf_(NSString receiver, NSString substring);

// Whether it holds at least one of the characters; an empty text holds none. Nil characters raise
// NSInvalidArgumentException.
bool pxContainsCharactersInString_(NSString receiver, NSString characters);

// A new text without the code units of the set. Each is tested by itself, so that characters beyond 16 bits stay. A nil
// set has no members.
NSString pxStringByRemovingCharactersInSet_(NSString receiver, NSCharacterSet set);

// A new text with each occurrence of the target replaced, literally, from left to right, without overlaps; an empty
// target does not occur. A nil replacement is empty; a nil target raises NSInvalidArgumentException.
NSString pxStringBySubstituting_with_(NSString receiver, NSString target, NSString replacement);

// A new identifier: upper-case hexadecimal digits in groups of 8, 4, 4, 4 and 12, with hyphens between.
NSString pxUUID();

// The Internet checksum of RFC 1071 over words in the order of this machine, so that it can be compared with others
// made here and nowhere else. The sum wraps at 32 bits, which shows in more than 128 KiB of data. 65535 for no data.
int pxChecksum(NSData receiver);

// A number of bytes for people, in units of 1024: "1023 Bytes", "1 KB", and with one decimal "1.5 MB", "1.0 GB", "1.0
// TB", the decimal separator being the locale's. A unit is used from above 1 of it: exactly 1024 bytes are "1024
// Bytes". To be called first on the main thread.
NSString pxFormattedStringWithSize_(std::uint64_t size);

// A system error code with its three fields in hexadecimal digits; nil for 0.
NSString pxDescriptionOfSystemErrorCode_(std::int32_t code);

} // namespace mac
