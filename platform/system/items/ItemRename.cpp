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

bool isAppleDouble(FileDescriptor const& item) {
    struct stat status {};
    // Opening an item that is no file may block or have side effects.
    if (::fstat(item.number(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    FileDescriptor const file(::open(descriptorPath(item).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    std::array<std::byte, appledouble::HeaderSize> head{};
    if (!file.isOpen() || ::pread(file.number(), head.data(), head.size(), 0) != std::ssize(head)) return false;
    return bigEndian32(head, 0) == appledouble::Magic && bigEndian32(head, 4) == appledouble::Version;
}

} // namespace

Result<void, RenameProblem> renameItem(FileDescriptor const& item, NameInFolder from, NameInFolder to,
                                       RenameSteps const& steps) {
    Result<void> const there = confirmItemInFolder(from.folder, from.name, item);
    if (!there.isDone()) return RenameProblem{.error = there.problem()};
    if (isLockedIn(from.folder, from.name)) return RenameProblem{.error = lockedItem(from.name)};
    if (steps) steps(RenameStep::Checked);
    Result<void> const renamed = renameWithoutReplacing(from.folder, from.name, to.folder, to.name);
    if (!renamed.isDone()) return RenameProblem{.error = renamed.problem()};
    if (steps) steps(RenameStep::Renamed);
    if (confirmItemInFolder(to.folder, to.name, item).isDone()) return {};
    bool const isBack = renameWithoutReplacing(to.folder, to.name, from.folder, from.name).isDone();
    return RenameProblem{.movedWrongItem = !isBack,
                         .error = {.code = ESTALE, .operation = "rename", .item = from.name}};
}

std::optional<OpenSidecar> sidecarBeside(FileDescriptor const& folder, std::string const& itemName) {
    if (itemName.starts_with(AppleDoubleSidecar::namePrefix)) return std::nullopt;
    OpenSidecar sidecar{.name = AppleDoubleSidecar::nameFor(itemName)};
    sidecar.file = FileDescriptor(::openat(folder.number(), sidecar.name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!sidecar.file.isOpen() || !isAppleDouble(sidecar.file)) return std::nullopt;
    return sidecar;
}

} // namespace mac
