#include "platform/system/FileDescriptor.h"
#include "platform/system/items/ItemDates.h"
#include <array>
#include <fcntl.h>
#include <sys/stat.h>

namespace mac {

// Both dates are always given: some file systems of a server, on FUSE for one, lose a date that comes without the other
// and answer that it is set.
Result<void> setDates(FileDescriptor const& item, ItemDates const& dates) {
    if (!dates.access && !dates.modified) return {};
    struct stat status {};
    if (::fstat(item.number(), &status) != 0) return lastSystemError("stat");
    std::array<timespec, 2> const times{dates.access.value_or(status.st_atim), dates.modified.value_or(status.st_mtim)};
    if (::utimensat(item.number(), "", times.data(), AT_EMPTY_PATH) != 0) return lastSystemError("utimensat");
    return {};
}

} // namespace mac
