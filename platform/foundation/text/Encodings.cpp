#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/text/EncodingTables.h"
#include "platform/foundation/text/StringBody.h"
#include <algorithm>

namespace mac {

namespace {

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
        return unitsFromTable(bytes, upperHalfOfNEXTSTEP());
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
        return bytesFromTable(units, upperHalfOfNEXTSTEP());
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

} // namespace mac
