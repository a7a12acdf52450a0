#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace mac {

// Control characters in the text of a property list. XML has only tab, line feed and carriage return of them, raw or as
// a character reference, but lists hold others in their strings. Each is replaced by two characters that XML has before
// the text is parsed, and put back in the strings that come out.
class SubstitutedControls {
public:
    // Substitutes in text and in references ("&#1;", "&#x1B;") outside of comments, CDATA and instructions. Does
    // nothing if every private character of the basic plane occurs in the text, as such or as a reference.
    explicit SubstitutedControls(std::u16string_view text);

    // What the parser is to read: the text itself if it needs no substitutes, which must outlive this object. As many
    // lines as before.
    std::u16string_view text() const { return m_escape == 0 ? m_original : std::u16string_view(m_text); }
    // A string of the parsed text with its control characters.
    std::u16string restored(std::u16string_view string) const;

private:
    void append(std::u16string_view text);
    // Appends one character or reference of text, and answers its length.
    std::size_t appendOne(std::u16string_view text);
    void appendControl(unsigned control);
    // The control character whose substitute the string of the parsed text begins with.
    std::optional<char16_t> controlAt(std::u16string_view string) const;

    std::u16string_view m_original;
    std::u16string m_text;
    // Announces a substitute; 0 if the text has no control characters.
    char16_t m_escape{0};
};

} // namespace mac
