#pragma once

#include <string>
#include <string_view>

namespace mac {

// Why the text, taken as XML, must not reach an XML parser, with its line; empty when it may, well-formed or not.
// Parsers check each attribute against all others of its tag, so that one long tag would keep them busy for hours, and
// let a document declare what it likes: tags are bounded, and declarations of a document's own are refused.
std::string complaintAboutMarkup(std::u16string_view text);

// How many characters the comment, CDATA section or instruction at the beginning of the text has, to the end of the
// text if it has no end of its own; 0 if there is none.
std::size_t lengthOfLiteralMarkup(std::u16string_view text);

} // namespace mac
