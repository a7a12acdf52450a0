#include "platform/system/PercentEscapes.h"
#include "platform/system/ASCII.h"
#include <array>
#include <charconv>

namespace mac {

namespace {

constexpr bool isUnreserved(unsigned char byte) {
    char16_t const lower = lowercaseASCII(byte);
    bool const isLetter = lower >= u'a' && lower <= u'z';
    return isLetter || isASCIIDigit(byte) ||
           std::string_view("/-._~").find(static_cast<char>(byte)) != std::string_view::npos;
}

constexpr std::array<bool, 256> StaysAsItIs = [] {
    std::array<bool, 256> stays{};
    for (std::size_t byte = 0; byte < stays.size(); ++byte)
        stays.at(byte) = isUnreserved(static_cast<unsigned char>(byte));
    return stays;
}();

} // namespace

std::string percentEscaped(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 2);
    for (char const character : bytes) {
        auto const byte = static_cast<unsigned char>(character);
        if (StaysAsItIs.at(byte)) {
            text.push_back(character);
            continue;
        }
        text.push_back('%');
        text.push_back(digits[byte >> 4]);
        text.push_back(digits[byte & 0xF]);
    }
    return text;
}

std::optional<std::string> percentUnescaped(std::string_view text) {
    std::string bytes;
    for (std::size_t index = 0; index < text.size(); ++index) {
        unsigned byte = static_cast<unsigned char>(text[index]);
        if (byte == '%') {
            std::string_view const digits = text.substr(index + 1, 2);
            char const* const end = digits.data() + digits.size();
            auto const [stop, error] = std::from_chars(digits.data(), end, byte, 16);
            if (error != std::errc() || stop != end || digits.size() != 2) return std::nullopt;
            index += 2;
        }
        bytes.push_back(static_cast<char>(byte));
    }
    return bytes;
}

} // namespace mac
