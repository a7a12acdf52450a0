#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/text/StringBody.h"
#include <algorithm>
#include <array>
#include <memory>
#include <unicode/ucnv.h>

namespace mac {

namespace {

// The characters of an encoding of one byte, by byte from 0x80 on; U+FFFD where there is none.
using UpperHalf = std::array<char16_t, 0x80>;

struct CloseTableConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};

UpperHalf tableFromICU(char const* name) {
    UpperHalf table;
    table.fill(u'\uFFFD');
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UConverter, CloseTableConverter> const converter(ucnv_open(name, &status));
    if (U_FAILURE(status)) return table;
    for (std::size_t index = 0; index < table.size(); ++index) {
        char const byte = static_cast<char>(0x80 + index);
        UErrorCode byteStatus = U_ZERO_ERROR;
        std::array<char16_t, 4> units{};
        std::int32_t const length = ucnv_toUChars(converter.get(), units.data(), units.size(), &byte, 1, &byteStatus);
        if (U_SUCCESS(byteStatus) && length == 1) table[index] = units[0];
    }
    return table;
}

// As the Unicode consortium's mapping file has it; ICU knows no such converter.
constexpr UpperHalf NEXTSTEP{
    0x00A0, 0x00C0, 0x00C1, 0x00C2, 0x00C3, 0x00C4, 0x00C5, 0x00C7, 0x00C8, 0x00C9, 0x00CA, 0x00CB, 0x00CC,
    0x00CD, 0x00CE, 0x00CF, 0x00D0, 0x00D1, 0x00D2, 0x00D3, 0x00D4, 0x00D5, 0x00D6, 0x00D9, 0x00DA, 0x00DB,
    0x00DC, 0x00DD, 0x00DE, 0x00B5, 0x00D7, 0x00F7, 0x00A9, 0x00A1, 0x00A2, 0x00A3, 0x2044, 0x00A5, 0x0192,
    0x00A7, 0x00A4, 0x2019, 0x201C, 0x00AB, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x00AE, 0x2013, 0x2020, 0x2021,
    0x00B7, 0x00A6, 0x00B6, 0x2022, 0x201A, 0x201E, 0x201D, 0x00BB, 0x2026, 0x2030, 0x00AC, 0x00BF, 0x00B9,
    0x02CB, 0x00B4, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x00A8, 0x00B2, 0x02DA, 0x00B8, 0x00B3, 0x02DD,
    0x02DB, 0x02C7, 0x2014, 0x00B1, 0x00BC, 0x00BD, 0x00BE, 0x00E0, 0x00E1, 0x00E2, 0x00E3, 0x00E4, 0x00E5,
    0x00E7, 0x00E8, 0x00E9, 0x00EA, 0x00EB, 0x00EC, 0x00C6, 0x00ED, 0x00AA, 0x00EE, 0x00EF, 0x00F0, 0x00F1,
    0x0141, 0x00D8, 0x0152, 0x00BA, 0x00F2, 0x00F3, 0x00F4, 0x00F5, 0x00F6, 0x00E6, 0x00F9, 0x00FA, 0x00FB,
    0x0131, 0x00FC, 0x00FD, 0x0142, 0x00F8, 0x0153, 0x00DF, 0x00FE, 0x00FF, 0xFFFD, 0xFFFD,
};

UpperHalf const& upperHalfOfISOLatin2() {
    static UpperHalf const table = tableFromICU("ISO-8859-2");
    return table;
}

UpperHalf const& upperHalfOfMacOSRoman() {
    static UpperHalf const table = tableFromICU("macintosh");
    return table;
}

UpperHalf const& upperHalfOfWindowsCP1252() {
    static UpperHalf const table = tableFromICU("windows-1252");
    return table;
}

constexpr std::string_view ByteOrderMarkUTF8 = "\xEF\xBB\xBF";

bool isASCII(std::string_view bytes) {
    return std::ranges::all_of(bytes, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

std::optional<std::u16string> unitsFromTable(std::string_view bytes, UpperHalf const& table) {
    std::u16string units;
    units.reserve(bytes.size());
    for (char const signedByte : bytes) {
        auto const byte = static_cast<unsigned char>(signedByte);
        char16_t const unit = byte < 0x80 ? byte : table[byte - 0x80];
        if (unit == 0xFFFD) return std::nullopt;
        units.push_back(unit);
    }
    return units;
}

std::optional<std::string> bytesFromTable(std::u16string_view units, UpperHalf const& table) {
    std::string bytes;
    bytes.reserve(units.size());
    for (char16_t const unit : units) {
        if (unit < 0x80) {
            bytes.push_back(static_cast<char>(unit));
            continue;
        }
        auto const index = static_cast<std::size_t>(std::ranges::find(table, unit) - table.begin());
        if (unit == 0xFFFD || index == table.size()) return std::nullopt;
        bytes.push_back(static_cast<char>(0x80 + index));
    }
    return bytes;
}

// For encodings whose characters are the first ones of Unicode.
std::optional<std::string> bytesBelow(std::u16string_view units, char16_t end) {
    if (std::ranges::any_of(units, [&](char16_t unit) { return unit >= end; })) return std::nullopt;
    return std::string(units.begin(), units.end());
}

std::u16string unitsFromLatin1(std::string_view bytes) {
    std::u16string units(bytes.size(), u'\0');
    std::ranges::transform(bytes, units.begin(), [](char byte) { return static_cast<unsigned char>(byte); });
    return units;
}

bool hasLoneSurrogate(std::u16string_view units) {
    for (std::size_t index = 0; index < units.size(); ++index) {
        bool const isPair =
            isHighSurrogate(units[index]) && index + 1 < units.size() && isLowSurrogate(units[index + 1]);
        if (isPair)
            ++index;
        else if (isHighSurrogate(units[index]) || isLowSurrogate(units[index]))
            return true;
    }
    return false;
}

} // namespace

std::optional<std::u16string> unitsFromBytes(std::string_view bytes, NSStringEncoding encoding) {
    switch (encoding) {
    case NSASCIIStringEncoding:
        return isASCII(bytes) ? std::optional(unitsFromLatin1(bytes)) : std::nullopt;
    case NSNEXTSTEPStringEncoding:
        return unitsFromTable(bytes, NEXTSTEP);
    case NSUTF8StringEncoding:
        return unitsFromUTF8(bytes.substr(bytes.starts_with(ByteOrderMarkUTF8) ? ByteOrderMarkUTF8.size() : 0));
    case NSISOLatin1StringEncoding:
        return unitsFromLatin1(bytes);
    case NSISOLatin2StringEncoding:
        return unitsFromTable(bytes, upperHalfOfISOLatin2());
    case NSWindowsCP1252StringEncoding:
        return unitsFromTable(bytes, upperHalfOfWindowsCP1252());
    case NSMacOSRomanStringEncoding:
        return unitsFromTable(bytes, upperHalfOfMacOSRoman());
    default:
        return unitsFromWideBytes(bytes, encoding);
    }
}

std::optional<std::string> bytesFromUnits(std::u16string_view units, NSStringEncoding encoding) {
    switch (encoding) {
    case NSASCIIStringEncoding:
        return bytesBelow(units, 0x80);
    case NSNEXTSTEPStringEncoding:
        return bytesFromTable(units, NEXTSTEP);
    case NSUTF8StringEncoding:
        return hasLoneSurrogate(units) ? std::nullopt : std::optional(utf8FromUnits(units));
    case NSISOLatin1StringEncoding:
        return bytesBelow(units, 0x100);
    case NSISOLatin2StringEncoding:
        return bytesFromTable(units, upperHalfOfISOLatin2());
    case NSWindowsCP1252StringEncoding:
        return bytesFromTable(units, upperHalfOfWindowsCP1252());
    case NSMacOSRomanStringEncoding:
        return bytesFromTable(units, upperHalfOfMacOSRoman());
    default:
        return wideBytesFromUnits(units, encoding);
    }
}

NSString NSString::stringWithData_encoding_(NSData const& data, NSStringEncoding encoding) {
    if (data == nil) return nil;
    std::span<std::byte const> const bytes = data.span();
    std::optional<std::u16string> units =
        unitsFromBytes({reinterpret_cast<char const*>(bytes.data()), bytes.size()}, encoding);
    return units ? makeString(std::move(*units)) : NSString(nil);
}

NSData NSString::dataUsingEncoding_(NSStringEncoding encoding) const {
    if (*this == nil) return nil;
    std::optional<std::string> const bytes = bytesFromUnits(codeUnits(), encoding);
    return bytes ? NSData::dataWithBytes(std::as_bytes(std::span(*bytes))) : NSData(nil);
}

NSData NSString::dataUsingEncoding_allowLossyConversion_(NSStringEncoding encoding, BOOL isLossy) const {
    NSData const exact = dataUsingEncoding_(encoding);
    if (*this == nil || exact != nil || !isLossy) return exact;
    std::optional<std::string> const bytes = bytesFromUnitsWithLoss(codeUnits(), encoding);
    return bytes ? NSData::dataWithBytes(std::as_bytes(std::span(*bytes))) : NSData(nil);
}

bool NSString::canBeConvertedToEncoding_(NSStringEncoding encoding) const {
    return *this != nil && bytesFromUnits(codeUnits(), encoding).has_value();
}

std::u16string textOfCode(FourCharCode code) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<char>(code.value() >> shift));
    return unitsFromBytes(bytes, NSMacOSRomanStringEncoding).value_or(std::u16string());
}

std::optional<FourCharCode> codeOfText(std::u16string_view text) {
    constexpr std::size_t length = sizeof(std::uint32_t);
    std::optional<std::string> const bytes =
        text.size() == length ? bytesFromUnits(text, NSMacOSRomanStringEncoding) : std::nullopt;
    if (!bytes || bytes->size() != length) return std::nullopt;
    std::uint32_t value = 0;
    for (char const byte : *bytes)
        value = value << 8 | static_cast<unsigned char>(byte);
    return FourCharCode(value);
}

} // namespace mac
