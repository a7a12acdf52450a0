#include "platform/foundation/text/FourCharCodeText.h"
#include "platform/foundation/text/Encodings.h"

namespace mac {

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
