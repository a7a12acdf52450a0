#pragma once

#include <string>

namespace mac {

struct DiskItem;

// The type identifier of what the item holds: of a folder by what it is, of a file by its extension, as
// bundles declare it or else the system, unless its first bytes prove another type than the system's; where no type has
// the extension, by its name, its old type code, and its first bytes last. For implementations; any
// thread.
std::string contentTypeOf(DiskItem const& item);

} // namespace mac
