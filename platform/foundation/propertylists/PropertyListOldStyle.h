#pragma once

#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/system/Result.h"
#include <string_view>

namespace mac {

// The old-style text form: { key = value; }, ( value, value ), <0F0F>, strings with or without quotes, comments as in
// C. A dictionary's content may stand without braces; blank text is an empty dictionary; a key without value is its own
// value. Octal escapes in strings are in the NeXTSTEP encoding.
Result<id, Failure> readPropertyListOldStyle(std::u16string_view text, NSPropertyListMutabilityOptions option);

} // namespace mac
