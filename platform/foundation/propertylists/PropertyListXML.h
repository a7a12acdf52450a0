#pragma once

#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/system/Result.h"
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

} // namespace mac
