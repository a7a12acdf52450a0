#pragma once

#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/system/Result.h"
#include <optional>
#include <string>
#include <string_view>

namespace mac {

// The XML form. Text may be wrapped in a plist element or not; attributes and the document type's names do not matter.
// Blanks before an XML declaration and text behind the root element are ignored; strings may hold control characters. A
// dictionary with the integer "CF$UID" alone is a CFKeyedArchiverUIDRef.
// Declarations of a document's own (entities, in short) are refused, and nothing outside the text is ever looked at.
Result<id, Failure> readPropertyListXML(std::u16string_view text, NSPropertyListMutabilityOptions option);

// UTF-8 text in the usual layout: tabs, keys in the order of their code units, equal lists as equal bytes. Fails for
// what XML cannot carry: control characters, lone surrogates, dates before year -9999 or after year 9999.
Result<std::string, Failure> writePropertyListXML(id const& propertyList);

// Reads a property list whose text is as programs write it: the usual declaration and document type, a plist element,
// elements without attributes, no comments, CDATA or references but those of the five characters of markup. nullopt for
// every other text, well-formed or not, and for lists with mistakes: an XML parser is to read those. It takes a
// fraction of the parser's time.
std::optional<id> readPlainPropertyListXML(std::u16string_view text, NSPropertyListMutabilityOptions option);

// Why the text, taken as XML, must not reach an XML parser, with its line; empty when it may, well-formed or not.
// Parsers check each attribute against all others of its tag, so that one long tag would keep them busy for hours, and
// let a document declare what it likes: tags are bounded, and declarations of a document's own are refused.
std::string complaintAboutMarkup(std::u16string_view text);

// How many characters the comment, CDATA section or instruction at the beginning of the text has, to the end of the
// text if it has no end of its own; 0 if there is none.
std::size_t lengthOfLiteralMarkup(std::u16string_view text);

} // namespace mac
