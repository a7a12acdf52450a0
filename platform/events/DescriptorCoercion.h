#pragma once

#include "platform/events/AEDataModel.h"
#include "platform/foundation/text/NSString.h"
#include <optional>
#include <string>

namespace mac {

// The value as another type; nothing where it cannot be had. Handlers that were installed come first. Any thread.
std::optional<AEDesc> coerced(AEDesc const& desc, DescType toType);

// The value of a type that is text, without converting anything else; nothing for other types and for bytes that are no
// text of the type.
std::optional<std::u16string> plainTextOf(AEDesc const& desc);

// Text as UTF-16 of the machine.
AEDesc makeText(std::u16string_view units);

} // namespace mac
