#include "platform/system/items/OverwritingCopy.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/HeldItem.h"
#include "platform/system/items/ItemRemoval.h"
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

// A complete copy under its temporary name, with its sidecar; held open so that nothing else is taken for them.
struct TemporaryCopy {
    HeldItem held{};
    std::optional<OpenSidecar> sidecar{};
    ItemTraits sidecarTraits{};
    // The name that it was made under: whatever has it goes with this process.
    std::string firstName{};
};

Result<TemporaryCopy> openCopy(FileDescriptor const& folder, std::string const& temporary) {
    Result<HeldItem> held = holdItem(folder, temporary);
    if (!held.hasValue()) return held.problem();
    Result<std::optional<OpenSidecar>> sidecar = sidecarBeside(folder, temporary);
    if (!sidecar.hasValue()) return sidecar.problem();
    TemporaryCopy copy{.held = held.takeValue(), .sidecar = sidecar.takeValue(), .firstName = temporary};
    if (!copy.sidecar) return copy;
    Result<ItemTraits> const beside = traitsOf(copy.sidecar->file);
    if (!beside.hasValue()) return beside.problem();
    copy.sidecarTraits = beside.value();
    return copy;
}

bool isThere(FileDescriptor const& folder, std::string const& name) {
    return ::faccessat(folder.number(), name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

bool isItem(FileDescriptor const& folder, std::string const& name, ItemTraits const& item) {
    return confirmTraitsInFolder(folder, name, item).isDone();
}

// The mark of the item as it is now: it may have been written while the copy was made. Where that could make it another
// item, it is the mark that it is confirmed by.
std::uint64_t presentMark(HeldItem const& held) {
    Result<ItemTraits> const now = traitsOf(held.item.item);
    return now.hasValue() && now.value().isOfSameItem(held.traits) ? now.value().mark : held.traits.mark;
}

// Gives the copy the name that it is exchanged under, which tells it and the old item from all others: the one of them
// that has it goes with this process.
Result<void> nameForExchange(FileDescriptor const& folder, HeldItem const& old, TemporaryCopy& copy) {
    Result<std::string> name = asideNameForEither(presentMark(old), copy.held.traits.mark);
    if (!name.hasValue()) return name.problem();
    std::string const sidecar = AppleDoubleSidecar::nameFor(name.value());
    if (Result<void> const named = moveAside(folder, copy.held.item.name, name.value()); !named.isDone()) return named;
    copy.held.item.name = name.takeValue();
    if (!copy.sidecar) return {};
    Result<void> const followed = moveAside(folder, copy.sidecar->name, sidecar);
    if (followed.isDone()) copy.sidecar->name = sidecar;
    return followed;
}

// Gives an item that is not to go, and its sidecar, a name that it keeps if this process is killed; the error tells the
// name.
SystemError keepAside(FileDescriptor const& folder, TemporaryCopy const& copy, SystemError error) {
    std::string const& temporary = copy.held.item.name;
    if (!isThere(folder, temporary)) return error;
    error.item = temporary;
    Result<std::string> const kept = asideName(MarkOfNoItem);
    if (!kept.hasValue()) return error;
    if (!moveAside(folder, temporary, kept.value()).isDone()) return error;
    error.item = kept.value();
    std::string const sidecar = AppleDoubleSidecar::nameFor(temporary);
    bool const isOfCopy = copy.sidecar && isItem(folder, sidecar, copy.sidecarTraits);
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
    Exchange(FileDescriptor const& folder, HeldItem const& old, TemporaryCopy& copy, OverwritingSteps const& steps)
        : m_folder(folder), m_old(old), m_copy(copy), m_temporary(copy.held.item.name), m_steps(steps),
          m_sidecar(AppleDoubleSidecar::nameFor(old.item.name)),
          m_temporarySidecar(AppleDoubleSidecar::nameFor(m_temporary)) {}

    Copied run() const {
        // If this process is killed meanwhile, the old item must not go with it.
        Copied const exchanged = exchange(m_temporary, m_old.item.name, MarkOfNoItem);
        if (!exchanged.isDone()) {
            if (exchanged.problem().kind == OriginalStays) placeSidecars(exchanged.problem().error.item);
            return exchanged;
        }
        tell(OverwritingStep::NamesExchanged);
        Result<void> const isOld = confirmTraitsInFolder(m_folder, m_temporary, m_old.traits);
        Copied const followed = isOld.isDone() ? exchangeSidecars() : asCopied(isOld);
        if (followed.isDone()) return followed;
        // The copy is complete with its sidecar.
        if (followed.problem().kind == OriginalStays) return stranded(followed.problem().error);
        Copied const back = swapBack();
        if (isOldBack(back)) return followed;
        if (!back.isDone() && !isThere(m_folder, m_temporary))
            return TransferProblem{.kind = MovedWrongItem, .error = back.problem().error};
        return stranded(followed.problem().error);
    }

    // Gives the old item, which has the temporary name and is whole, its own name back, because it could not be
    // removed. If that cannot be done the copy keeps the name: OriginalStays.
    Copied takeBack(SystemError const& reason) const {
        Copied const sidecars = exchangeSidecars();
        // The old item's sidecar is in its place; the copy's goes with the copy.
        bool const isApart = !sidecars.isDone() && sidecars.problem().kind == OriginalStays;
        if (isApart && m_copy.sidecar) m_copy.sidecar->name = sidecars.problem().error.item;
        Copied const back = sidecars.isDone() || isApart ? swapBack() : sidecars;
        if (isOldBack(back)) return TransferProblem{.error = reason};
        // The old item's sidecar stays with it.
        bool const isOldThere = isItem(m_folder, m_temporary, m_old.traits);
        if (sidecars.isDone() && isOldThere) static_cast<void>(exchangeSidecars());
        return stranded(reason);
    }

private:
    using enum TransferProblem::Kind;

    void tell(OverwritingStep step) const {
        if (m_steps) m_steps(step);
    }

    Copied exchangeSidecars() const {
        bool const hasNew = isThere(m_folder, m_temporarySidecar);
        bool const hasOld = isThere(m_folder, m_sidecar);
        if (hasNew && hasOld) return exchange(m_temporarySidecar, m_sidecar, MarkOfNoItem);
        if (hasNew) return asCopied(renameWithoutReplacing(m_folder, m_temporarySidecar, m_folder, m_sidecar));
        if (!hasOld) return {};
        return asCopied(renameWithoutReplacing(m_folder, m_sidecar, m_folder, m_temporarySidecar));
    }

    // The copy has the name and the old item a third one; their sidecars follow as far as possible.
    void placeSidecars(std::string const& third) const {
        static_cast<void>(renameWithoutReplacing(m_folder, m_sidecar, m_folder, AppleDoubleSidecar::nameFor(third)));
        if (!m_copy.sidecar || !isItem(m_folder, m_temporarySidecar, m_copy.sidecarTraits)) return;
        static_cast<void>(renameWithoutReplacing(m_folder, m_temporarySidecar, m_folder, m_sidecar));
    }

    // Only while the copy has the name: another item there has been saved since and is to keep it.
    Copied swapBack() const {
        Result<void> const isCopy = confirmTraitsInFolder(m_folder, m_old.item.name, m_copy.held.traits);
        if (!isCopy.isDone()) return asCopied(isCopy);
        return exchange(m_temporary, m_old.item.name, m_copy.held.traits.mark);
    }

    // Whether the old item has its own name again after swapBack(). A copy that is under a third name then is known by
    // that.
    bool isOldBack(Copied const& back) const {
        if (isItem(m_folder, m_temporary, m_copy.held.traits)) return true;
        if (!isItem(m_folder, m_old.item.name, m_old.traits)) return false;
        if (!back.isDone()) m_copy.held.item.name = back.problem().error.item;
        return true;
    }

    // The item that has the temporary name cannot go back, and stays. The old item goes with the leftovers of this
    // process, as does what cannot be looked at if it is the old item.
    Copied stranded(SystemError error) const {
        Result<void> const isOld = confirmTraitsInFolder(m_folder, m_temporary, m_old.traits);
        bool const isAnother = !isOld.isDone() && isOld.problem().is(ESTALE);
        bool const isReplaced = isOld.isDone() && isItem(m_folder, m_old.item.name, m_copy.held.traits);
        if (isAnother || (isOld.isDone() && !isReplaced)) {
            error = keepAside(m_folder, m_copy, std::move(error));
        } else if (isThere(m_folder, m_temporary)) {
            error.item = m_temporary;
        }
        return TransferProblem{.kind = isReplaced ? OriginalStays : MovedWrongItem, .error = std::move(error)};
    }

    // MovedWrongItem or OriginalStays: what had the second name has the name that the error tells, and what had the
    // first name still has that or has the second one. The mark is for what has the second name.
    Copied exchange(std::string const& one, std::string const& other, std::uint64_t mark) const {
        int const folder = m_folder.number();
        if (::renameat2(folder, one.c_str(), folder, other.c_str(), RENAME_EXCHANGE) == 0) return {};
        SystemError error = lastSystemError("rename", other);
        bool const isUnknown = error.is(EINVAL) || error.is(ENOSYS) || error.is(EOPNOTSUPP);
        if (isUnknown) return exchangeStepwise(one, other, mark);
        return TransferProblem{.error = std::move(error)};
    }

    Copied exchangeStepwise(std::string const& one, std::string const& other, std::uint64_t mark) const {
        Result<std::string> const third = asideName(mark);
        if (!third.hasValue()) return TransferProblem{.error = third.problem()};
        Result<void> const away = moveAside(m_folder, other, third.value());
        if (!away.isDone()) return asCopied(away);
        tell(OverwritingStep::MovedAway);
        Result<void> const renamed = renameWithoutReplacing(m_folder, one, m_folder, other);
        if (renamed.isDone()) tell(OverwritingStep::CopyPlaced);
        std::string const& place = renamed.isDone() ? one : other;
        Result<void> placed = renameWithoutReplacing(m_folder, third.value(), m_folder, place);
        // A transient error: tried once more.
        if (!placed.isDone() && !placed.problem().is(EEXIST))
            placed = renameWithoutReplacing(m_folder, third.value(), m_folder, place);
        if (placed.isDone()) return asCopied(renamed);
        SystemError error = placed.problem();
        error.item = third.value();
        return TransferProblem{.kind = renamed.isDone() ? OriginalStays : MovedWrongItem, .error = std::move(error)};
    }

    FileDescriptor const& m_folder;
    HeldItem const& m_old;
    TemporaryCopy& m_copy;
    std::string m_temporary;
    OverwritingSteps const& m_steps;
    std::string m_sidecar;
    std::string m_temporarySidecar;
};

// Why the copy may not take the place of the old item; the problem is EEXIST if both are one.
Copied confirmReplaceable(ItemTransfer const& transfer, HeldItem const& held) {
    Result<IdentifiedItem> const original = identify(transfer.item.item);
    if (!original.hasValue()) return TransferProblem{.error = original.problem()};
    if (original.value().identity == held.traits.identity) return refuse(EEXIST, transfer.name);
    if (held.isFolder && mayLieIn(transfer.item.folder, held.traits.identity)) return refuse(EINVAL, transfer.name);
    return asCopied(confirmRemovable(held.item));
}

// Removes a copy that did not get its name, as far as possible, and nothing else that has its temporary name; a lock
// that was copied does not count.
void removeTemporary(FileDescriptor const& folder, TemporaryCopy const& copy) {
    std::string const& temporary = copy.held.item.name;
    if (!isItem(folder, temporary, copy.held.traits)) return;
    if (copy.sidecar && isItem(folder, copy.sidecar->name, copy.sidecarTraits))
        static_cast<void>(removeTree(folder, copy.sidecar->name, copy.sidecarTraits.identity));
    // A folder that is not whole any more is told by no mark.
    bool const needsName = copy.held.isFolder && temporary != copy.firstName;
    if (needsName && !renameWithoutReplacing(folder, temporary, folder, copy.firstName).isDone()) return;
    std::string const& name = needsName ? copy.firstName : temporary;
    static_cast<void>(removeTree(folder, name, copy.held.traits.identity, {.makesAccessible = true}));
}

// Removes a copy that has just been made under a name that no other process knows, as far as possible.
void removeUnopened(FileDescriptor const& folder, std::string const& temporary) {
    for (std::string const& name : {AppleDoubleSidecar::nameFor(temporary), temporary}) {
        Result<ItemPlace> const place = placeOf(folder, name);
        if (place.hasValue())
            static_cast<void>(removeTree(folder, name, place.value().identity, {.makesAccessible = true}));
    }
}

// Why the old item was not removed.
struct RemovalProblem {
    SystemError error{};
    // Whether the old item is complete under its temporary name.
    bool isWhole{true};
};

// Removes a folder under a name that goes with this process whatever is in it by then: once its contents begin to go,
// nothing else would tell it. Tries again after an error of the moment.
Result<void, RemovalProblem> removeFolder(HeldItem const& held, std::optional<OpenSidecar> const& sidecar,
                                          std::string const& name) {
    OpenItem const& old = held.item;
    if (Result<void> const named = moveAside(old.folder, old.name, name); !named.isDone())
        return RemovalProblem{.error = named.problem()};
    Result<void> const isOld = confirmTraitsInFolder(old.folder, name, held.traits);
    if (!isOld.isDone()) {
        bool const isBack = renameWithoutReplacing(old.folder, name, old.folder, old.name).isDone();
        return RemovalProblem{.error = isOld.problem(), .isWhole = isBack};
    }
    std::string const sidecarName = AppleDoubleSidecar::nameFor(name);
    bool const follows = sidecar && moveAside(old.folder, sidecar->name, sidecarName).isDone();
    Result<void> removed = removeTree(old.folder, name, held.traits.identity);
    if (!removed.isDone()) removed = removeTree(old.folder, name, held.traits.identity);
    if (!removed.isDone() && !removed.problem().is(ENOENT)) {
        SystemError error = removed.problem();
        error.item = name;
        return RemovalProblem{.error = std::move(error), .isWhole = false};
    }
    if (!sidecar) return {};
    Result<IdentifiedItem> const beside = identify(sidecar->file);
    // If it stays, it goes with the leftovers of this process: its folder is gone.
    if (beside.hasValue())
        static_cast<void>(removeTree(old.folder, follows ? sidecarName : sidecar->name, beside.value().identity));
    return {};
}

// Removes the old item, which has the copy's temporary name now, with its sidecar.
Result<void, RemovalProblem> removeOld(FileDescriptor const& folder, HeldItem const& old, TemporaryCopy const& copy) {
    std::string const& temporary = copy.held.item.name;
    Result<HeldItem> const leaving = holdItem(folder, temporary);
    if (!leaving.hasValue()) return RemovalProblem{.error = leaving.problem()};
    if (!leaving.value().traits.isOfSameItem(old.traits))
        return RemovalProblem{.error = {.code = ESTALE, .operation = "statx", .item = temporary}};
    if (!leaving.value().isFolder) {
        Result<void> const removed = removeItem(leaving.value().item);
        if (removed.isDone()) return {};
        return RemovalProblem{.error = removed.problem(), .isWhole = isThere(folder, temporary)};
    }
    if (Result<void> const may = confirmRemovable(leaving.value().item); !may.isDone())
        return RemovalProblem{.error = may.problem()};
    Result<std::optional<OpenSidecar>> const sidecar = sidecarBeside(folder, temporary);
    if (!sidecar.hasValue()) return RemovalProblem{.error = sidecar.problem()};
    return removeFolder(leaving.value(), sidecar.value(), copy.firstName);
}

// Tells under which temporary name an item lies that could not get its own one back.
TransferProblem withStrandedName(FileDescriptor const& folder, TransferProblem problem) {
    std::string const& name = problem.error.item;
    bool const isStranded = problem.kind != TransferProblem::Kind::NotDone && parseTemporaryName(name);
    if (isStranded && isThere(folder, name)) problem.strandedName = name;
    return problem;
}

} // namespace

Result<void, TransferProblem> copyItemOver(ItemTransfer const& transfer, OverwritingSteps const& steps) {
    Result<HeldItem> const old = holdItem(transfer.folder, transfer.name);
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
    Result<TemporaryCopy> opened = openCopy(transfer.folder, temporary.value());
    if (!opened.hasValue()) {
        removeUnopened(transfer.folder, temporary.value());
        return TransferProblem{.error = opened.problem()};
    }
    TemporaryCopy& complete = opened.value();
    if (Result<void> const named = nameForExchange(transfer.folder, old.value(), complete); !named.isDone()) {
        removeTemporary(transfer.folder, complete);
        return TransferProblem{.error = named.problem()};
    }
    if (steps) steps(OverwritingStep::Copied);
    Exchange const exchange(transfer.folder, old.value(), complete, steps);
    if (Copied const exchanged = exchange.run(); !exchanged.isDone()) {
        removeTemporary(transfer.folder, complete);
        return withStrandedName(transfer.folder, exchanged.problem());
    }
    if (steps) steps(OverwritingStep::Exchanged);
    Result<void, RemovalProblem> const removed = removeOld(transfer.folder, old.value(), complete);
    if (removed.isDone()) return {};
    RemovalProblem const& problem = removed.problem();
    if (!problem.isWhole)
        return withStrandedName(transfer.folder,
                                {.kind = TransferProblem::Kind::OriginalStays, .error = problem.error});
    Copied const back = exchange.takeBack(problem.error);
    removeTemporary(transfer.folder, complete);
    return withStrandedName(transfer.folder, back.problem());
}

} // namespace mac
