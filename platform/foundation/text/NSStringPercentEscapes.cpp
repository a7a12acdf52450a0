#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/StringBody.h"
#include "platform/foundation/urls/URLParts.h"
#include <algorithm>

namespace mac {

namespace {

bool isAnyASCII(char16_t unit) { return unit < 0x80; }

// The bytes of text without ASCII; in UTF-8 the bytes of file names as well.
std::optional<std::string> bytesToEscape(std::u16string_view text, NSStringEncoding encoding) {
    if (encoding == NSUTF8StringEncoding) return fileSystemBytesFromUnits(text);
    return bytesFromUnits(text, encoding);
}

// The bytes of the escapes at the front, which are taken off the text; nothing for a % that begins none.
std::optional<std::string> takeEscapes(std::u16string_view& text) {
    std::string bytes;
    while (text.starts_with(u'%')) {
        if (text.size() < 3) return std::nullopt;
        std::optional<unsigned> const high = hexadecimalValue(text[1]);
        std::optional<unsigned> const low = hexadecimalValue(text[2]);
        if (!high || !low) return std::nullopt;
        bytes.push_back(static_cast<char>(*high << 4 | *low));
        text.remove_prefix(3);
    }
    return bytes;
}

} // namespace

NSString NSString::stringByAddingPercentEscapesUsingEncoding_(NSStringEncoding encoding) const {
    if (*this == nil) return nil;
    std::u16string result;
    std::u16string_view rest = codeUnits();
    while (!rest.empty()) {
        if (isURLCharacter(rest[0])) {
            result.push_back(rest[0]);
            rest.remove_prefix(1);
            continue;
        }
        auto const behind = static_cast<std::size_t>(std::ranges::find_if(rest, isAnyASCII) - rest.begin());
        std::u16string_view const part = rest.substr(0, isAnyASCII(rest[0]) ? 1 : behind);
        std::optional<std::string> const bytes =
            isAnyASCII(rest[0]) ? bytesFromUnits(part, encoding) : bytesToEscape(part, encoding);
        if (!bytes) return nil;
        for (char const byte : *bytes)
            appendEscapedByte(result, static_cast<unsigned char>(byte));
        rest.remove_prefix(part.size());
    }
    return makeString(std::move(result));
}

NSString NSString::stringByReplacingPercentEscapesUsingEncoding_(NSStringEncoding encoding) const {
    if (*this == nil) return nil;
    std::u16string result;
    std::u16string_view rest = codeUnits();
    while (!rest.empty()) {
        std::size_t const percent = std::min(rest.find(u'%'), rest.size());
        result.append(rest.substr(0, percent));
        rest.remove_prefix(percent);
        std::optional<std::string> const bytes = takeEscapes(rest);
        // A byte order mark among them is text like any other.
        std::optional<std::u16string> const units = !bytes ? std::nullopt
                                                    : encoding == NSUTF8StringEncoding
                                                        ? unitsFromUTF8(*bytes)
                                                        : unitsFromBytes(*bytes, encoding);
        if (!units) return nil;
        result.append(*units);
    }
    return makeString(std::move(result));
}

} // namespace mac
