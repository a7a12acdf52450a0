#include "platform/system/items/OverwritingCopy.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/ItemRemoval.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <unistd.h>

namespace mac {

namespace {

using Copied = Result<void, TransferProblem>;

Copied refuse(int code, std::string const& name) {
    return TransferProblem{.error = {.code = code, .operation = "copy", .item = name}};
}

Copied asCopied(Result<void> const& result) {
    return result.isDone() ? Copied() : TransferProblem{.error = result.problem()};
}

// The item of the name, open; ENOENT if there is none.
Result<OpenItem> itemNamed(FileDescriptor const& folder, std::string const& name) {
    OpenItem item{.folder = FileDescriptor(::openat(folder.number(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC)),
                  .item = FileDescriptor(::openat(folder.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)),
                  .name = name};
    if (!item.item.isOpen()) return lastSystemError("open", name);
    if (!item.folder.isOpen()) return lastSystemError("open", ".");
    return item;
}

// Exchanges a complete copy under a temporary name with the item that has its name, sidecars included.
class Exchange {
public:
    // All must outlive the object.
    Exchange(FileDescriptor const& folder, OpenItem const& old, std::string const& temporary)
        : m_folder(folder), m_old(old), m_temporary(temporary), m_sidecar(AppleDoubleSidecar::nameFor(old.name)),
          m_temporarySidecar(AppleDoubleSidecar::nameFor(temporary)) {}

    Result<void> run() const {
        if (Result<void> const exchanged = exchange(m_temporary, m_old.name); !exchanged.isDone()) return exchanged;
        Result<void> const isOld = confirmItemInFolder(m_folder, m_temporary, m_old.item);
        Result<void> followed = isOld.isDone() ? exchangeSidecars() : isOld;
        if (!followed.isDone()) static_cast<void>(exchange(m_temporary, m_old.name));
        return followed;
    }

private:
    bool isThere(std::string const& name) const {
        return ::faccessat(m_folder.number(), name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
    }

    Result<void> exchangeSidecars() const {
        bool const hasNew = isThere(m_temporarySidecar);
        bool const hasOld = isThere(m_sidecar);
        if (hasNew && hasOld) return exchange(m_temporarySidecar, m_sidecar);
        if (hasNew) return renameWithoutReplacing(m_folder, m_temporarySidecar, m_folder, m_sidecar);
        return hasOld ? renameWithoutReplacing(m_folder, m_sidecar, m_folder, m_temporarySidecar) : Result<void>();
    }

    Result<void> exchange(std::string const& one, std::string const& other) const {
        int const folder = m_folder.number();
        if (::renameat2(folder, one.c_str(), folder, other.c_str(), RENAME_EXCHANGE) == 0) return {};
        SystemError error = lastSystemError("rename", other);
        bool const isUnknown = error.is(EINVAL) || error.is(ENOSYS) || error.is(EOPNOTSUPP);
        return isUnknown ? exchangeStepwise(one, other) : error;
    }

    Result<void> exchangeStepwise(std::string const& one, std::string const& other) const {
        Result<std::string> const third = temporaryName();
        if (!third.hasValue()) return third.problem();
        Result<void> const away = renameWithoutReplacing(m_folder, other, m_folder, third.value());
        if (!away.isDone()) return away;
        Result<void> renamed = renameWithoutReplacing(m_folder, one, m_folder, other);
        std::string const& place = renamed.isDone() ? one : other;
        Result<void> const placed = renameWithoutReplacing(m_folder, third.value(), m_folder, place);
        return renamed.isDone() ? placed : renamed;
    }

    FileDescriptor const& m_folder;
    OpenItem const& m_old;
    std::string const& m_temporary;
    std::string m_sidecar;
    std::string m_temporarySidecar;
};

// Why the copy may not take the place of the old item; the problem is EEXIST if both are one.
Copied confirmReplaceable(ItemTransfer const& transfer, OpenItem const& old) {
    Result<IdentifiedItem> const original = identify(transfer.item.item);
    if (!original.hasValue()) return TransferProblem{.error = original.problem()};
    Result<IdentifiedItem> const replaced = identify(old.item);
    if (!replaced.hasValue()) return TransferProblem{.error = replaced.problem()};
    if (original.value().identity == replaced.value().identity) return refuse(EEXIST, old.name);
    if (replaced.value().isFolder && mayLieIn(transfer.item.folder, replaced.value().identity))
        return refuse(EINVAL, old.name);
    return asCopied(confirmRemovable(old));
}

// Removes a copy that did not get its name, as far as possible; a lock that was copied does not count.
void removeTemporary(FileDescriptor const& folder, std::string const& temporary) {
    Result<ItemPlace> const place = placeOf(folder, temporary);
    if (!place.hasValue()) return;
    ::unlinkat(folder.number(), AppleDoubleSidecar::nameFor(temporary).c_str(), 0);
    static_cast<void>(removeTree(folder, temporary, place.value().identity, {.makesAccessible = true}));
}

} // namespace

Result<void, TransferProblem> copyItemOver(ItemTransfer const& transfer, OverwritingSteps const& steps) {
    Result<OpenItem> const old = itemNamed(transfer.folder, transfer.name);
    bool const isFree = !old.hasValue() && old.problem().is(ENOENT);
    ItemTransfer copy = {.item = transfer.item,
                         .folder = transfer.folder,
                         .name = transfer.name,
                         .shouldContinue = transfer.shouldContinue};
    if (isFree) return copyItem(copy);
    if (!old.hasValue()) return TransferProblem{.error = old.problem()};
    if (Copied const may = confirmReplaceable(transfer, old.value()); !may.isDone()) return may;
    Result<std::string> const temporary = temporaryName();
    if (!temporary.hasValue()) return TransferProblem{.error = temporary.problem()};
    copy.name = temporary.value();
    if (Copied const copied = copyItem(copy); !copied.isDone()) return copied;
    if (steps) steps(OverwritingStep::Copied);
    Result<void> const exchanged = Exchange(transfer.folder, old.value(), temporary.value()).run();
    if (!exchanged.isDone()) {
        removeTemporary(transfer.folder, temporary.value());
        return TransferProblem{.error = exchanged.problem()};
    }
    if (steps) steps(OverwritingStep::Exchanged);
    Result<OpenItem> const leaving = itemNamed(transfer.folder, temporary.value());
    Result<void> removed = leaving.hasValue() ? removeItem(leaving.value()) : leaving.problem();
    if (removed.isDone()) return {};
    return TransferProblem{.kind = TransferProblem::Kind::OriginalStays, .error = removed.problem()};
}

} // namespace mac
