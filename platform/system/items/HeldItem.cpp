#include "platform/system/items/HeldItem.h"
#include <cerrno>
#include <fcntl.h>

namespace mac {

namespace {

ItemTraits traitsIn(ItemStatus const& status) { return {.identity = status.place.identity, .mark = markOf(status)}; }

Result<OpenItem> itemNamed(FileDescriptor const& folder, std::string const& name) {
    OpenItem item{.folder = FileDescriptor(::openat(folder.number(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC)),
                  .item = FileDescriptor(::openat(folder.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)),
                  .name = name};
    if (!item.item.isOpen()) return lastSystemError("open", name);
    if (!item.folder.isOpen()) return lastSystemError("open", ".");
    return item;
}

} // namespace

Result<ItemTraits> traitsOf(FileDescriptor const& item) {
    Result<ItemStatus> const status = statusOf(item);
    if (!status.hasValue()) return status.problem();
    return traitsIn(status.value());
}

Result<void> confirmTraitsInFolder(FileDescriptor const& folder, std::string const& name, ItemTraits const& item) {
    Result<ItemStatus> const found = statusOf(folder, name);
    if (!found.hasValue()) return found.problem();
    if (item.isOfSameItem(traitsIn(found.value()))) return {};
    return SystemError{.code = ESTALE, .operation = "statx", .item = name};
}

Result<HeldItem> holdItem(FileDescriptor const& folder, std::string const& name) {
    Result<OpenItem> item = itemNamed(folder, name);
    if (!item.hasValue()) return item.problem();
    Result<ItemStatus> const status = statusOf(item.value().item);
    if (!status.hasValue()) return status.problem();
    return HeldItem{
        .item = item.takeValue(), .traits = traitsIn(status.value()), .isFolder = status.value().place.isFolder};
}

} // namespace mac
