#include "platform/foundation/text/VisibleLine.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

namespace {

std::string escaped(char16_t unit) {
    constexpr std::string_view digits = "0123456789abcdef";
    bool const isByte = unit < 0x100;
    std::string text = isByte ? "\\x" : "\\u";
    for (int shift = isByte ? 4 : 12; shift >= 0; shift -= 4)
        text += digits[(static_cast<unsigned>(unit) >> shift) & 0xFU];
    return text;
}

// What would end the line, drive a terminal or turn the text around is written as its code, so that a file's name
// cannot fake a line of the log.
bool isDangerous(char16_t unit) {
    bool const isControl = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
    bool const isBreakOrDirection = (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
    bool const isDirectionMark = unit == 0x061C || unit == 0x200E || unit == 0x200F;
    return isControl || isBreakOrDirection || isDirectionMark;
}

} // namespace

std::string visibleLine(std::u16string_view text) {
    std::string line;
    std::size_t start = 0;
    auto const flush = [&](std::size_t end) {
        line += NSString::stringWithCodeUnits(text.substr(start, end - start)).UTF8String();
        start = end + 1;
    };
    for (std::size_t index = 0; index < text.size(); ++index) {
        char16_t const unit = text[index];
        // A byte of a file name, unless it is the second half of a surrogate pair.
        bool const isPaired = index > 0 && text[index - 1] >= 0xD800 && text[index - 1] < 0xDC00;
        bool const isByte = unit >= 0xDC80 && unit < 0xDD00 && !isPaired;
        if (!isByte && !isDangerous(unit)) continue;
        flush(index);
        line += unit == u'\n' ? "\\n" : escaped(isByte ? static_cast<char16_t>(unit - 0xDC00) : unit);
    }
    flush(text.size());
    return line;
}

} // namespace mac
