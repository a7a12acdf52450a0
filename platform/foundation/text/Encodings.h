#pragma once

#include "platform/foundation/objects/Types.h"
#include "platform/foundation/text/NSString.h"
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Conversions between bytes and UTF-16 code units, for implementations. Any thread.

namespace mac {

// Decodes UTF-8; nullopt for other bytes (overlong forms, surrogates and cut sequences included).
std::optional<std::u16string> unitsFromUTF8(std::string_view bytes);
// Encodes UTF-8; a lone surrogate becomes U+FFFD.
std::string utf8FromUnits(std::u16string_view units);

// Decodes a file name of any bytes: a byte that is not part of UTF-8 becomes the lone surrogate U+DC00 + byte.
std::u16string unitsFromFileSystemBytes(std::string_view bytes);
// The inverse of unitsFromFileSystemBytes; nullopt for a NUL character and for lone surrogates that it does not make,
// so that no two texts name one file.
std::optional<std::string> fileSystemBytesFromUnits(std::u16string_view units);

// Decodes and encodes text; nullopt for what the encoding cannot hold and for an unknown encoding. Of UTF-8 a byte
// order mark at the start is no part of the text that is read, so that a text which begins with one is read without it.
std::optional<std::u16string> unitsFromBytes(std::string_view bytes, NSStringEncoding encoding);
std::optional<std::string> bytesFromUnits(std::u16string_view units, NSStringEncoding encoding);
// Encodes text and replaces a character that the encoding lacks: by itself without its marks, else by one that looks
// alike, else by a question mark. nullopt for an unknown encoding only.
std::optional<std::string> bytesFromUnitsWithLoss(std::u16string_view units, NSStringEncoding encoding);

// Decodes and encodes UTF-16 and UTF-32. Encodings without a byte order in their name are read in the order of the byte
// order mark, else the machine's, and written with a mark in the machine's.
std::optional<std::u16string> unitsFromWideBytes(std::string_view bytes, NSStringEncoding encoding);
std::optional<std::string> wideBytesFromUnits(std::u16string_view units, NSStringEncoding encoding);

// The code point at the index; a lone surrogate stands for itself. appendCodePoint is the inverse.
char32_t codePointAt(std::u16string_view units, std::size_t index);
void appendCodePoint(std::u16string& units, char32_t codePoint);
constexpr std::size_t unitCount(char32_t codePoint) { return codePoint < 0x10000 ? 1 : 2; }

inline bool isHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
inline bool isLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

// Four-character codes as texts: each of their bytes is a character of Mac OS Roman.
std::u16string textOfCode(FourCharCode code);
// The inverse of textOfCode; nullopt for text that is not four characters of that encoding.
std::optional<FourCharCode> codeOfText(std::u16string_view text);

} // namespace mac
