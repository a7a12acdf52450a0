#pragma once

#include "platform/foundation/NSString.h"
#include <optional>

namespace mac {

// Users and groups of the system by number and by name; nil and nothing for
// those it does not know. For implementations.
NSString nameOfUser(unsigned number);
NSString nameOfGroup(unsigned number);
std::optional<unsigned> numberOfUser(NSString const& name);
std::optional<unsigned> numberOfGroup(NSString const& name);

} // namespace mac
