#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include <string_view>

namespace mac {

// The information file of the bundle at the path (the file system's bytes). What was read stays in memory, within
// bounds, until the file changes, so that asking again costs one look at its status. An empty dictionary when there is
// no file, or none that can be used; the latter is logged once for each state of the file. Main thread.
NSDictionary informationOfBundle(std::string_view bundlePath);

} // namespace mac
