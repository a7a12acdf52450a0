#pragma once

#include "platform/foundation/objects/Types.h"
#include "platform/foundation/text/NSString.h"
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Conversions between bytes and UTF-16 code units, for implementations. Any thread.

namespace mac {

// Nothing for bytes that are not UTF-8 (overlong forms, surrogates and cut sequences included).
std::optional<std::u16string> unitsFromUTF8(std::string_view bytes);
// A lone surrogate becomes U+FFFD.
std::string utf8FromUnits(std::u16string_view units);

// Any bytes: one that is no part of UTF-8 becomes the lone surrogate U+DC00 + byte.
std::u16string unitsFromFileSystemBytes(std::string_view bytes);
// The way back. Nothing for a NUL character and for lone surrogates that unitsFromFileSystemBytes would not have made,
// so that no two texts name one file.
std::optional<std::string> fileSystemBytesFromUnits(std::u16string_view units);

// The bytes as text of the encoding, and back; nothing for what one of them cannot hold and for an unknown encoding.
std::optional<std::u16string> unitsFromBytes(std::string_view bytes, NSStringEncoding encoding);
std::optional<std::string> bytesFromUnits(std::u16string_view units, NSStringEncoding encoding);
// The same, with what cannot be held replaced: without its marks, else by what looks like it, else by a question mark.
// Nothing for an unknown encoding alone.
std::optional<std::string> bytesFromUnitsWithLoss(std::u16string_view units, NSStringEncoding encoding);

// UTF-16 and UTF-32: those without an order in their name are read in that of their byte order mark, else of the
// machine, and written with one in the order of the machine.
std::optional<std::u16string> unitsFromWideBytes(std::string_view bytes, NSStringEncoding encoding);
std::optional<std::string> wideBytesFromUnits(std::u16string_view units, NSStringEncoding encoding);

// The code point at the index; a lone surrogate stands for itself. Appending is the way back.
char32_t codePointAt(std::u16string_view units, std::size_t index);
void appendCodePoint(std::u16string& units, char32_t codePoint);
constexpr std::size_t unitCount(char32_t codePoint) { return codePoint < 0x10000 ? 1 : 2; }

inline bool isHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
inline bool isLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

// Four-character codes as texts: each of their bytes is a character of Mac OS Roman.
std::u16string textOfCode(FourCharCode code);
// Nothing for what is not four characters of that encoding.
std::optional<FourCharCode> codeOfText(std::u16string_view text);

} // namespace mac
