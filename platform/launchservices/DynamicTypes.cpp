#include "platform/launchservices/DiskItem.h"
#include "platform/launchservices/TypeTree.h"
#include "platform/system/ASCII.h"
#include <array>

namespace mac {

namespace {

// Behind it the class's letter, the kind where one was said, a line end and the tag, in Base32: identifiers have
// letters in no case, digits, dots and hyphens alone.
constexpr std::string_view Prefix = "dyn.";
constexpr std::string_view Digits = "abcdefghijklmnopqrstuvwxyz234567";
constexpr std::array<char, 3> ClassLetters{'e', 'm', 'o'};
constexpr unsigned BitsOfADigit = 5;
constexpr unsigned BitsOfAByte = 8;
constexpr std::size_t LongestIdentifier = 2048;

std::string encoded(std::string_view bytes) {
    std::string digits;
    std::uint32_t rest = 0;
    unsigned bits = 0;
    for (char const byte : bytes) {
        rest = rest << BitsOfAByte | static_cast<unsigned char>(byte);
        for (bits += BitsOfAByte; bits >= BitsOfADigit; bits -= BitsOfADigit)
            digits += Digits[rest >> (bits - BitsOfADigit) & 31];
        rest &= (1U << bits) - 1;
    }
    if (bits > 0) digits += Digits[rest << (BitsOfADigit - bits) & 31];
    return digits;
}

std::optional<std::string> decoded(std::string_view digits) {
    std::string bytes;
    std::uint32_t rest = 0;
    unsigned bits = 0;
    for (char const digit : digits) {
        std::size_t const value = Digits.find(digit);
        if (value == std::string_view::npos) return std::nullopt;
        rest = rest << BitsOfADigit | static_cast<std::uint32_t>(value);
        bits += BitsOfADigit;
        if (bits < BitsOfAByte) continue;
        bits -= BitsOfAByte;
        bytes += static_cast<char>(rest >> bits & 0xFF);
        rest &= (1U << bits) - 1;
    }
    return bytes;
}

} // namespace

std::string dynamicIdentifier(DynamicType const& type) {
    std::string text(1, ClassLetters[static_cast<std::size_t>(type.tagClass)]);
    // No identifier has a line end; a tag, which comes from a file's name, may.
    if (type.conformsTo.find('\n') == std::string::npos) text += asciiLowercase(type.conformsTo);
    text += '\n';
    // A code's letters mean something in their case.
    text += type.tagClass == TagClass::TypeCode ? type.tag : asciiLowercase(type.tag);
    return std::string(Prefix) + encoded(text);
}

std::optional<DynamicType> readDynamicIdentifier(std::string_view identifier) {
    std::string const name = asciiLowercase(identifier.substr(0, LongestIdentifier + 1));
    if (!name.starts_with(Prefix) || name.size() > LongestIdentifier) return std::nullopt;
    std::optional<std::string> const text = decoded(std::string_view(name).substr(Prefix.size()));
    if (!text || text->size() < 2) return std::nullopt;
    std::size_t const letter = std::string_view(ClassLetters.data(), ClassLetters.size()).find(text->front());
    if (letter == std::string_view::npos) return std::nullopt;
    std::size_t const end = text->find('\n');
    if (end == std::string::npos) return std::nullopt;
    DynamicType const type{.tagClass = static_cast<TagClass>(letter),
                           .tag = text->substr(end + 1),
                           .conformsTo = text->substr(1, end - 1)};
    // Only what is written here is read.
    return dynamicIdentifier(type) == name ? std::optional(type) : std::nullopt;
}

} // namespace mac
