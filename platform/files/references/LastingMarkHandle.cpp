#include "platform/files/references/LastingMark.h"
#include "platform/system/LongPath.h"
#include <array>
#include <cstring>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>

namespace mac {

namespace {

// Empty if the file system has no handles.
std::string handleOf(FileDescriptor const& item) {
    alignas(file_handle) std::array<char, sizeof(file_handle) + MAX_HANDLE_SZ> place{};
    auto& handle = *reinterpret_cast<file_handle*>(place.data());
    handle.handle_bytes = MAX_HANDLE_SZ;
    int mount = 0;
    if (::name_to_handle_at(item.number(), "", &handle, &mount, AT_EMPTY_PATH) != 0) return {};
    std::string result(sizeof handle.handle_type, '\0');
    std::memcpy(result.data(), &handle.handle_type, sizeof handle.handle_type);
    return result.append(place.data() + offsetof(file_handle, f_handle), handle.handle_bytes);
}

// File systems in memory count their inode numbers up.
bool hasUniqueNumbers(FileDescriptor const& item) {
    struct statfs volume {};
    return ::fstatfs(item.number(), &volume) == 0 && (volume.f_type == RAMFS_MAGIC || volume.f_type == TMPFS_MAGIC);
}

} // namespace

Result<LastingMark> lastingMarkOf(FileDescriptor const& item) {
    LastingMark mark{.handle = handleOf(item)};
    if (!mark.handle.empty()) return mark;
    mark.hasUniqueNumbers = hasUniqueNumbers(item);
    if (mark.hasUniqueNumbers) return mark;
    Result<FileStatus> const status = fileStatusOf(item);
    if (!status.hasValue()) return status.problem();
    mark.changed = status.value().changed;
    return mark;
}

bool areOfOneItem(LastingMark const& earlier, LastingMark const& later) {
    if (!earlier.handle.empty()) return earlier.handle == later.handle;
    if (earlier.hasUniqueNumbers) return later.hasUniqueNumbers;
    return earlier.changed != 0 && earlier.changed == later.changed;
}

} // namespace mac
