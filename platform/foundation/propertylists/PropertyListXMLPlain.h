#pragma once

#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include <optional>
#include <string_view>

namespace mac {

// Reads a property list whose text is as programs write it: the usual declaration and document type, a plist element,
// elements without attributes, no comments, CDATA or references but those of the five characters of markup. nullopt for
// every other text, well-formed or not, and for lists with mistakes: an XML parser is to read those. It takes a
// fraction of the parser's time.
std::optional<id> readPlainPropertyListXML(std::u16string_view text, NSPropertyListMutabilityOptions option);

} // namespace mac
