#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include <span>
#include <string>

namespace mac {

// The defaults that a program's arguments (bytes, the program's own name first) set by words "-KEY VALUE", as told in
// NSUserDefaults.h. A byte that is not UTF-8 becomes a lone surrogate, as in paths. Of equal keys the last one counts.
NSDictionary argumentDomain(std::span<std::string const> arguments);

} // namespace mac
