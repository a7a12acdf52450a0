#include "platform/icons/IconPictures.h"
#include "platform/icons/Picture.h"
#include <algorithm>
#include <array>

namespace mac {

namespace {

constexpr std::string_view Blanks = " \t\r\n";
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

std::string_view withoutBlanksAhead(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(Blanks), text.size()));
}

// A drawing may stand in another drawing as an image, and only the contents tell: with the signatures of the formats,
// in base 64, there is none. The reader takes what follows the last "base64,".
bool isEmbeddedImage(std::string_view value) {
    constexpr std::string_view encoding = "base64,";
    std::size_t const place = value.rfind(encoding);
    // A reference to a character could spell the encoding once more.
    if (place == std::string_view::npos || value.find('&') != std::string_view::npos) return false;
    std::string_view const data = withoutBlanksAhead(value.substr(place + encoding.size()));
    return data.starts_with("iVBORw0KGgo") || data.starts_with("/9j/4AAQSkZJRg");
}

// Whether the text begins as the value of an attribute does that names an element or an image of the drawing itself.
bool beginsWithInnerReference(std::string_view text) {
    if (text.empty() || (text.front() != '"' && text.front() != '\'')) return false;
    std::size_t const end = text.find(text.front(), 1);
    if (end == std::string_view::npos) return false;
    std::string_view const value = withoutBlanksAhead(text.substr(1, end - 1));
    return value.starts_with('#') || (value.starts_with("data:") && isEmbeddedImage(value));
}

bool areReferencesInner(std::string_view drawing) {
    constexpr std::string_view name = "href";
    for (std::size_t place = drawing.find(name); place != std::string_view::npos; place = drawing.find(name, place)) {
        place += name.size();
        std::string_view const rest = withoutBlanksAhead(drawing.substr(place));
        // Without a value it is part of another word.
        if (!rest.starts_with('=')) continue;
        if (!beginsWithInnerReference(withoutBlanksAhead(rest.substr(1)))) return false;
    }
    return true;
}

// In styles the reference stands in quotes or bare.
bool areStylesInner(std::string_view drawing) {
    constexpr std::string_view name = "url(";
    for (std::size_t place = drawing.find(name); place != std::string_view::npos; place = drawing.find(name, place)) {
        place += name.size();
        std::string_view rest = withoutBlanksAhead(drawing.substr(place));
        for (std::string_view const quote : {"\"", "'", "&quot;", "&apos;"}) {
            if (!rest.starts_with(quote)) continue;
            rest = withoutBlanksAhead(rest.substr(quote.size()));
            break;
        }
        if (!rest.starts_with('#') && !rest.starts_with("data:")) return false;
    }
    return true;
}

// Names of encodings are of ASCII letters, in either case.
bool isUsualEncoding(std::string_view name) {
    constexpr std::array<std::string_view, 3> usual{"utf-8", "us-ascii", "iso-8859-1"};
    auto const isEqualLetter = [](char left, char right) {
        return left == (right >= 'A' && right <= 'Z' ? right - 'A' + 'a' : right);
    };
    return std::ranges::any_of(usual,
                               [&](std::string_view known) { return std::ranges::equal(known, name, isEqualLetter); });
}

// In an encoding that keeps ASCII as it is, so that the signs can be looked for in the bytes.
bool isPlainText(std::string_view drawing) {
    if (drawing.starts_with(ByteOrderMark)) drawing.remove_prefix(ByteOrderMark.size());
    bool const isMarkup = withoutBlanksAhead(drawing).starts_with('<') && drawing.find("<svg") != drawing.npos;
    if (!isMarkup || drawing.find('\0') != drawing.npos) return false;
    constexpr std::string_view name = "encoding";
    std::size_t const end = drawing.find("?>");
    if (!withoutBlanksAhead(drawing).starts_with("<?xml") || end == drawing.npos) return true;
    std::string_view const declaration = drawing.substr(0, end);
    std::size_t const place = declaration.find(name);
    if (place == declaration.npos) return true;
    std::size_t const first = declaration.find_first_of("\"'", place);
    if (first == declaration.npos) return false;
    std::size_t const last = declaration.find(declaration[first], first + 1);
    return last != declaration.npos && isUsualEncoding(declaration.substr(first + 1, last - first - 1));
}

} // namespace

bool isSelfContainedDrawing(std::string_view drawing) {
    if (!isPlainText(drawing)) return false;
    constexpr std::array<std::string_view, 4> signs{"<!ENTITY", "<!ATTLIST", "<?xml-stylesheet", "@import"};
    bool const hasSign = std::ranges::any_of(
        signs, [drawing](std::string_view sign) { return drawing.find(sign) != std::string_view::npos; });
    return !hasSign && areReferencesInner(drawing) && areStylesInner(drawing);
}

} // namespace mac
