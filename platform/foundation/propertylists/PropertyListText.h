#pragma once

#include "platform/system/Result.h"
#include <cstddef>
#include <span>
#include <string>

namespace mac {

// The text of a property list file as UTF-16, without a byte order mark. The encoding is what the byte order mark says,
// else UTF-16 where every other byte of the beginning is zero, else what an XML declaration names, else UTF-8. Bytes
// that the encoding does not know, and encodings in which markup would not be ASCII, are failures.
Result<std::u16string, Failure> decodePropertyListText(std::span<std::byte const> data);

} // namespace mac
