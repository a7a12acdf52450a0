#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/urls/URLParts.h"

namespace mac {

std::u16string unescapedPath(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t index = 0; index < text.size(); ++index) {
        std::optional<unsigned> const high =
            text[index] == u'%' && text.size() - index > 2 ? hexadecimalValue(text[index + 1]) : std::nullopt;
        std::optional<unsigned> const low = high ? hexadecimalValue(text[index + 2]) : std::nullopt;
        bytes.push_back(static_cast<char>(low ? *high << 4 | *low : text[index]));
        if (low) index += 2;
    }
    return unitsFromFileSystemBytes(bytes);
}

std::optional<std::u16string> escapedPath(std::u16string_view path) {
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(path);
    if (!bytes) return std::nullopt;
    std::u16string text;
    text.reserve(bytes->size());
    for (char const signedByte : *bytes) {
        auto const byte = static_cast<unsigned char>(signedByte);
        if (isURLCharacter(byte) && byte != ';' && byte != '?')
            text.push_back(byte);
        else
            appendEscapedByte(text, byte);
    }
    return text;
}

void appendEscapedByte(std::u16string& text, unsigned char byte) {
    constexpr std::u16string_view digits = u"0123456789ABCDEF";
    text.push_back(u'%');
    text.push_back(digits[byte >> 4]);
    text.push_back(digits[byte & 0xF]);
}

} // namespace mac
