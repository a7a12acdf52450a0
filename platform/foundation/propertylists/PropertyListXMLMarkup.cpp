#include "platform/foundation/propertylists/PropertyListLimits.h"
#include "platform/foundation/propertylists/PropertyListXML.h"
#include <algorithm>

namespace mac {

namespace {

// The most characters of a tag with its attributes, or of a document type. Property lists need less than 200.
constexpr std::size_t kLongestTag = 4096;

// Stretches of markup that end with a text and not with the first ">" outside of quotes.
struct Stretch {
    std::u16string_view begin;
    std::u16string_view end;
};
constexpr Stretch kStretches[] = {
    {u"<!--", u"-->"},
    {u"<![CDATA[", u"]]>"},
    {u"<?", u"?>"},
};

std::size_t lineOf(std::u16string_view text, std::size_t position) {
    return 1 + static_cast<std::size_t>(std::ranges::count(text.substr(0, position), u'\n'));
}

// How many characters the tag at the beginning of the text has, at most one more than is allowed.
std::size_t lengthOfTag(std::u16string_view text) {
    char16_t quote = 0;
    std::size_t const most = std::min(text.size(), kLongestTag + 1);
    for (std::size_t length = 1; length < most; ++length) {
        char16_t const unit = text[length];
        if (quote == 0 && unit == u'>') return length + 1;
        if (unit == quote)
            quote = 0;
        else if (quote == 0 && (unit == u'"' || unit == u'\''))
            quote = unit;
    }
    return most;
}

} // namespace

std::size_t lengthOfLiteralMarkup(std::u16string_view text) {
    auto const* const stretch =
        std::ranges::find_if(kStretches, [text](Stretch const& each) { return text.starts_with(each.begin); });
    if (stretch == std::end(kStretches)) return 0;
    std::size_t const end = text.find(stretch->end, stretch->begin.size());
    return end == std::u16string_view::npos ? text.size() : end + stretch->end.size();
}

std::string complaintAboutMarkup(std::u16string_view text) {
    for (std::size_t position = text.find(u'<'); position < text.size(); position = text.find(u'<', position)) {
        std::u16string_view const rest = text.substr(position);
        std::size_t const literal = lengthOfLiteralMarkup(rest);
        if (literal > 0) {
            position += literal;
            continue;
        }
        std::size_t const length = lengthOfTag(rest);
        if (length > kLongestTag) return atLine("There is a tag that is too long", lineOf(text, position));
        if (rest.starts_with(u"<!") && rest.substr(0, length).find(u'[') != std::u16string_view::npos)
            return atLine("There are declarations in the document type", lineOf(text, position));
        position += length;
    }
    return {};
}

} // namespace mac
