#pragma once

#include "platform/foundation/objects/ServiceTypes.h"
#include "platform/system/SystemError.h"

namespace mac {

// The File Manager's status of a system error. Any thread.

enum class FileOperation {
    // Making a reference: an error that has no status of its own is fnfErr.
    Finding,
    // Reading or writing what the catalog holds of an item: an error that has no status of its own is ioErr.
    UsingCatalog,
    // Making, renaming and copying: an error that has no status of its own is ioErr.
    Changing,
};

OSErr statusOf(SystemError const& error, FileOperation operation);

} // namespace mac
