#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace mac {

// Bytes as pairs of lowercase hexadecimal digits, which every reader of desktop entries, shell and unit file reads
// alike. Any thread.
inline std::string hexTextOf(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (char const byte : bytes) {
        auto const value = static_cast<unsigned char>(byte);
        text.push_back(digits[value >> 4]);
        text.push_back(digits[value & 0xF]);
    }
    return text;
}

// The bytes that hexadecimal digits in any case stand for; nullopt for other text.
inline std::optional<std::string> bytesFromHexText(std::string_view text) {
    auto const valueOf = [](char digit) {
        if (digit >= '0' && digit <= '9') return digit - '0';
        if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
        return digit >= 'A' && digit <= 'F' ? digit - 'A' + 10 : -1;
    };
    if (text.size() % 2 != 0) return std::nullopt;
    std::string bytes;
    bytes.reserve(text.size() / 2);
    for (std::size_t index = 0; index < text.size(); index += 2) {
        int const high = valueOf(text[index]);
        int const low = valueOf(text[index + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        bytes.push_back(static_cast<char>(high << 4 | low));
    }
    return bytes;
}

} // namespace mac
