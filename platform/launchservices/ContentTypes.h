#pragma once

#include <string>

namespace mac {

struct DiskItem;

// The type identifier of what the item holds: of a folder by what it is, of a file by its name, where that says nothing
// by the types that applications declare and its old type code, and by its first bytes last. For implementations; any
// thread.
std::string contentTypeOf(DiskItem const& item);

} // namespace mac
