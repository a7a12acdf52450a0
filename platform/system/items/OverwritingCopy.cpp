#include "platform/system/items/OverwritingCopy.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/ItemRemoval.h"
#include "platform/system/items/ItemStatus.h"
#include "platform/system/items/TreeRemoval.h"
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

// A complete copy under its temporary name, with its sidecar; held open so that nothing else is taken for them.
struct TemporaryCopy {
    OpenItem item{};
    std::optional<OpenSidecar> sidecar{};
};

Result<TemporaryCopy> openCopy(FileDescriptor const& folder, std::string const& temporary) {
    Result<OpenItem> item = itemNamed(folder, temporary);
    if (!item.hasValue()) return item.problem();
    Result<std::optional<OpenSidecar>> sidecar = sidecarBeside(folder, temporary);
    if (!sidecar.hasValue()) return sidecar.problem();
    return TemporaryCopy{.item = item.takeValue(), .sidecar = sidecar.takeValue()};
}

bool isThere(FileDescriptor const& folder, std::string const& name) {
    return ::faccessat(folder.number(), name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

bool isItem(FileDescriptor const& folder, std::string const& name, FileDescriptor const& item) {
    return confirmItemInFolder(folder, name, item).isDone();
}

// Gives what has the copy's temporary name now, and its sidecar, a name that it keeps if this process is killed; the
// error tells the name.
SystemError keepAside(FileDescriptor const& folder, TemporaryCopy const& copy, SystemError error) {
    std::string const& temporary = copy.item.name;
    // What was being removed may have another name by now, which the error tells.
    if (!isThere(folder, temporary)) return error;
    error.item = temporary;
    Result<std::string> const kept = asideName(MarkOfNoItem);
    if (!kept.hasValue()) return error;
    if (!moveAside(folder, temporary, kept.value()).isDone()) return error;
    error.item = kept.value();
    std::string const sidecar = AppleDoubleSidecar::nameFor(temporary);
    bool const isOfCopy = copy.sidecar && isItem(folder, sidecar, copy.sidecar->file);
    // If it cannot follow, it stays all the same: it has not the mark in its name.
    if (!isOfCopy && isThere(folder, sidecar))
        static_cast<void>(renameWithoutReplacing(folder, sidecar, folder, AppleDoubleSidecar::nameFor(kept.value())));
    return error;
}

// Exchanges a complete copy under a temporary name with the item that has its name, sidecars included. After a failure
// the copy may still have the temporary name; no other item that has it then may be removed.
class Exchange {
public:
    // All must outlive the object.
    Exchange(FileDescriptor const& folder, OpenItem const& old, TemporaryCopy const& copy,
             OverwritingSteps const& steps)
        : m_folder(folder), m_old(old), m_copy(copy), m_temporary(copy.item.name), m_steps(steps),
          m_sidecar(AppleDoubleSidecar::nameFor(old.name)),
          m_temporarySidecar(AppleDoubleSidecar::nameFor(m_temporary)) {}

    Copied run() const {
        Copied const exchanged = exchange(m_temporary, m_old.name);
        if (!exchanged.isDone()) {
            if (exchanged.problem().kind == OriginalStays) placeSidecars(exchanged.problem().error.item);
            return exchanged;
        }
        tell(OverwritingStep::NamesExchanged);
        Result<void> const isOld = confirmItemInFolder(m_folder, m_temporary, m_old.item);
        Copied const followed = isOld.isDone() ? exchangeSidecars() : asCopied(isOld);
        if (followed.isDone()) return followed;
        // The copy is complete with its sidecar.
        if (followed.problem().kind == OriginalStays) return stranded(followed.problem().error);
        Copied const back = swapBack();
        if (isItem(m_folder, m_temporary, m_copy.item.item)) return followed;
        if (!back.isDone() && !isThere(m_folder, m_temporary))
            return TransferProblem{.kind = MovedWrongItem, .error = back.problem().error};
        return stranded(followed.problem().error);
    }

private:
    using enum TransferProblem::Kind;

    void tell(OverwritingStep step) const {
        if (m_steps) m_steps(step);
    }

    Copied exchangeSidecars() const {
        bool const hasNew = isThere(m_folder, m_temporarySidecar);
        bool const hasOld = isThere(m_folder, m_sidecar);
        if (hasNew && hasOld) return exchange(m_temporarySidecar, m_sidecar);
        if (hasNew) return asCopied(renameWithoutReplacing(m_folder, m_temporarySidecar, m_folder, m_sidecar));
        if (!hasOld) return {};
        return asCopied(renameWithoutReplacing(m_folder, m_sidecar, m_folder, m_temporarySidecar));
    }

    // The copy has the name and the old item a third one; their sidecars follow as far as possible.
    void placeSidecars(std::string const& third) const {
        static_cast<void>(renameWithoutReplacing(m_folder, m_sidecar, m_folder, AppleDoubleSidecar::nameFor(third)));
        if (!m_copy.sidecar || !isItem(m_folder, m_temporarySidecar, m_copy.sidecar->file)) return;
        static_cast<void>(renameWithoutReplacing(m_folder, m_temporarySidecar, m_folder, m_sidecar));
    }

    // Only while the copy has the name: another item there has been saved since and is to keep it.
    Copied swapBack() const {
        Result<void> const isCopy = confirmItemInFolder(m_folder, m_old.name, m_copy.item.item);
        return isCopy.isDone() ? exchange(m_temporary, m_old.name) : asCopied(isCopy);
    }

    // The item that has the temporary name cannot go back, and stays.
    Copied stranded(SystemError error) const {
        bool const isReplaced =
            isItem(m_folder, m_old.name, m_copy.item.item) && isItem(m_folder, m_temporary, m_old.item);
        return TransferProblem{.kind = isReplaced ? OriginalStays : MovedWrongItem,
                               .error = keepAside(m_folder, m_copy, std::move(error))};
    }

    // MovedWrongItem or OriginalStays: what had the second name has the name that the error tells, and what had the
    // first name still has that or has the second one.
    Copied exchange(std::string const& one, std::string const& other) const {
        int const folder = m_folder.number();
        if (::renameat2(folder, one.c_str(), folder, other.c_str(), RENAME_EXCHANGE) == 0) return {};
        SystemError error = lastSystemError("rename", other);
        bool const isUnknown = error.is(EINVAL) || error.is(ENOSYS) || error.is(EOPNOTSUPP);
        if (isUnknown) return exchangeStepwise(one, other);
        return TransferProblem{.error = std::move(error)};
    }

    Copied exchangeStepwise(std::string const& one, std::string const& other) const {
        // If this process is killed meanwhile, the item must not go with it.
        Result<std::string> const third = asideName(MarkOfNoItem);
        if (!third.hasValue()) return TransferProblem{.error = third.problem()};
        Result<void> const away = moveAside(m_folder, other, third.value());
        if (!away.isDone()) return asCopied(away);
        tell(OverwritingStep::MovedAway);
        Result<void> const renamed = renameWithoutReplacing(m_folder, one, m_folder, other);
        if (renamed.isDone()) tell(OverwritingStep::CopyPlaced);
        std::string const& place = renamed.isDone() ? one : other;
        Result<void> const placed = renameWithoutReplacing(m_folder, third.value(), m_folder, place);
        if (placed.isDone()) return asCopied(renamed);
        SystemError error = placed.problem();
        error.item = third.value();
        return TransferProblem{.kind = renamed.isDone() ? OriginalStays : MovedWrongItem, .error = std::move(error)};
    }

    FileDescriptor const& m_folder;
    OpenItem const& m_old;
    TemporaryCopy const& m_copy;
    std::string const& m_temporary;
    OverwritingSteps const& m_steps;
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

// Removes a copy that did not get its name, as far as possible, and nothing else that has its temporary name; a lock
// that was copied does not count.
void removeTemporary(FileDescriptor const& folder, TemporaryCopy const& copy) {
    std::string const& temporary = copy.item.name;
    Result<IdentifiedItem> const identified = identify(copy.item.item);
    if (!identified.hasValue() || !isItem(folder, temporary, copy.item.item)) return;
    std::string const sidecar = AppleDoubleSidecar::nameFor(temporary);
    Result<IdentifiedItem> const beside =
        copy.sidecar ? identify(copy.sidecar->file) : SystemError{.code = ENOENT, .operation = "statx"};
    if (beside.hasValue()) static_cast<void>(removeTree(folder, sidecar, beside.value().identity));
    static_cast<void>(removeTree(folder, temporary, identified.value().identity, {.makesAccessible = true}));
}

// Removes the old item, which has the copy's temporary name now.
Result<void> removeOld(FileDescriptor const& folder, OpenItem const& old, std::string const& temporary) {
    if (Result<void> const isOld = confirmItemInFolder(folder, temporary, old.item); !isOld.isDone()) return isOld;
    Result<OpenItem> const leaving = itemNamed(folder, temporary);
    return leaving.hasValue() ? removeItem(leaving.value()) : leaving.problem();
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
    // If this process is killed once the names are exchanged, only the old item goes, and only as it is now.
    Result<ItemStatus> const status = statusOf(old.value().item);
    if (!status.hasValue()) return TransferProblem{.error = status.problem()};
    Result<std::string> const temporary = asideName(markOf(status.value()));
    if (!temporary.hasValue()) return TransferProblem{.error = temporary.problem()};
    copy.name = temporary.value();
    if (Copied const copied = copyItem(copy); !copied.isDone()) return copied;
    Result<TemporaryCopy> const complete = openCopy(transfer.folder, temporary.value());
    if (!complete.hasValue()) return TransferProblem{.error = complete.problem()};
    if (steps) steps(OverwritingStep::Copied);
    Copied const exchanged = Exchange(transfer.folder, old.value(), complete.value(), steps).run();
    if (!exchanged.isDone()) {
        removeTemporary(transfer.folder, complete.value());
        return exchanged;
    }
    if (steps) steps(OverwritingStep::Exchanged);
    Result<void> const removed = removeOld(transfer.folder, old.value(), temporary.value());
    if (removed.isDone()) return {};
    return TransferProblem{.kind = TransferProblem::Kind::OriginalStays,
                           .error = keepAside(transfer.folder, complete.value(), removed.problem())};
}

} // namespace mac
