#pragma once

#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/system/Result.h"
#include <cstddef>
#include <span>
#include <string>

namespace mac {

// The binary form: eight bytes of head, the objects, a table of their offsets, and 32 bytes of trailer.

bool isPropertyListBinary(std::span<std::byte const> data);

// Objects that the file shares are shared by what is read, unless containers are to be mutable: then each place gets
// its own. Keys are strings; sets, unique identifiers and nulls are refused. Reasons name the offset in the file.
Result<id, Failure> readPropertyListBinary(std::span<std::byte const> data, NSPropertyListMutabilityOptions option);

// Equal strings, numbers, dates and data are written once; keys in the order of their code units, so that equal lists
// become equal bytes. Fails for dates that are no number.
Result<std::string, Failure> writePropertyListBinary(id const& propertyList);

} // namespace mac
