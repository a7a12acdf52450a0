#include "platform/system/items/ItemRename.h"
#include "platform/system/BigEndian.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/AppleDoubleForm.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/ItemIdentity.h"
#include "platform/system/items/ItemLock.h"
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

Result<bool> isAppleDouble(OpenSidecar const& sidecar) {
    struct stat status {};
    if (::fstat(sidecar.file.number(), &status) != 0) return lastSystemError("stat", sidecar.name);
    // Opening an item that is no file may block or have side effects.
    if (!S_ISREG(status.st_mode)) return false;
    FileDescriptor const file(
        ::open(descriptorPath(sidecar.file).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) return lastSystemError("open", sidecar.name);
    std::array<std::byte, appledouble::HeaderSize> head{};
    ssize_t const length = ::pread(file.number(), head.data(), head.size(), 0);
    if (length < 0) return lastSystemError("read", sidecar.name);
    // Less than there is tells nothing.
    bool const isCut = length < std::ssize(head) && length < status.st_size;
    if (isCut) return SystemError{.code = EIO, .operation = "read", .item = sidecar.name};
    return length == std::ssize(head) && bigEndian32(head, 0) == appledouble::Magic &&
           bigEndian32(head, 4) == appledouble::Version;
}

} // namespace

Result<void, RenameProblem> renameItem(FileDescriptor const& item, NameInFolder from, NameInFolder to,
                                       RenameSteps const& steps) {
    Result<IdentifiedItem> const expected = identify(item);
    if (!expected.hasValue()) return RenameProblem{.error = expected.problem()};
    ItemIdentity const& identity = expected.value().identity;
    Result<void> const there = confirmItemInFolder(from.folder, from.name, identity);
    if (!there.isDone()) return RenameProblem{.error = there.problem()};
    if (isLockedIn(from.folder, from.name)) return RenameProblem{.error = lockedItem(from.name)};
    if (steps) steps(RenameStep::Checked);
    Result<void> const renamed = renameWithoutReplacing(from.folder, from.name, to.folder, to.name);
    if (!renamed.isDone()) return RenameProblem{.error = renamed.problem()};
    if (steps) steps(RenameStep::Renamed);
    Result<void> const moved = confirmItemInFolder(to.folder, to.name, identity);
    // The rename is done; that the item cannot be looked at, or has moved on, does not undo it.
    if (moved.isDone() || !moved.problem().is(ESTALE)) return {};
    bool const isBack = renameWithoutReplacing(to.folder, to.name, from.folder, from.name).isDone();
    return RenameProblem{.movedWrongItem = !isBack,
                         .error = {.code = ESTALE, .operation = "rename", .item = from.name}};
}

Result<std::optional<OpenSidecar>> sidecarBeside(FileDescriptor const& folder, std::string const& itemName) {
    if (itemName.starts_with(AppleDoubleSidecar::namePrefix)) return std::optional<OpenSidecar>();
    OpenSidecar sidecar{.name = AppleDoubleSidecar::nameFor(itemName)};
    sidecar.file = FileDescriptor(::openat(folder.number(), sidecar.name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!sidecar.file.isOpen()) {
        SystemError error = lastSystemError("open", sidecar.name);
        // No file can have a name that is too long.
        if (error.is(ENOENT) || error.is(ENAMETOOLONG)) return std::optional<OpenSidecar>();
        return error;
    }
    Result<bool> const isSidecar = isAppleDouble(sidecar);
    if (!isSidecar.hasValue()) return isSidecar.problem();
    if (!isSidecar.value()) return std::optional<OpenSidecar>();
    return std::optional(std::move(sidecar));
}

} // namespace mac
