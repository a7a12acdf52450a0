#include "platform/files/trash/ReplacingTransfer.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/foundation/running/Log.h"
#include "platform/system/items/FolderPlace.h"
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace mac {

namespace {

using Transferred = Result<void, TransferProblem>;

// Makes room for a transfer by trashing the item that has the name, and puts it back if that was in vain.
class Replacement {
public:
    // Both must outlive the object.
    Replacement(ItemTransfer const& transfer, TrashSteps const& steps) : m_transfer(transfer), m_steps(steps) {}

    Transferred place(PlaceItem const& step);
    ReplacingProblem problem(TransferProblem transfer) const { return {std::move(transfer), m_trashProblem}; }

private:
    Result<TrashedItem, TransferProblem> makeRoom();

    ItemTransfer const& m_transfer;
    TrashSteps const& m_steps;
    std::optional<TrashProblem> m_trashProblem{};
};

TransferProblem notDone(int code, std::string const& name) {
    return {.error = {.code = code, .operation = "rename", .item = name}};
}

Result<TrashedItem, TransferProblem> Replacement::makeRoom() {
    std::string const& name = m_transfer.name;
    OpenItem old{
        .item = FileDescriptor(::openat(m_transfer.folder.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)),
        .name = name};
    if (!old.item.isOpen()) {
        SystemError error = lastSystemError("open", name);
        // Only a stray sidecar has the name.
        if (error.is(ENOENT)) return notDone(EEXIST, name);
        return TransferProblem{.error = std::move(error)};
    }
    old.folder = FileDescriptor(::openat(m_transfer.folder.number(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!old.folder.isOpen()) return TransferProblem{.error = lastSystemError("open", name)};
    Result<IdentifiedItem> const identified = identify(old.item);
    if (!identified.hasValue()) return TransferProblem{.error = identified.problem()};
    if (mayLieIn(m_transfer.item.folder, identified.value().identity)) return notDone(EINVAL, name);
    Result<TrashedItem, TrashProblem> trashed = moveToTrash(old, m_steps);
    if (trashed.hasValue()) return trashed.takeValue();
    m_trashProblem = trashed.problem();
    // Not the trash's own code, which says nothing about the transfer: EXDEV, say, would start a copy.
    return notDone(trashed.problem().kind == TrashProblem::ReadOnly ? EROFS : EPERM, name);
}

Transferred Replacement::place(PlaceItem const& step) {
    Transferred const first = step();
    if (first.isDone()) return first;
    bool const isTaken = first.problem().kind == TransferProblem::Kind::NotDone && first.problem().error.is(EEXIST);
    if (!isTaken) return first;
    Result<TrashedItem, TransferProblem> const old = makeRoom();
    if (!old.hasValue()) return old.problem();
    Transferred const second = step();
    // If another process has taken the name meanwhile, the old item stays in the trash.
    if (!second.isDone()) static_cast<void>(putBack(old.value(), m_steps));
    return second;
}

using Operation = Transferred (*)(ItemTransfer const& transfer);

Result<void, ReplacingProblem> run(Operation operation, ItemTransfer& transfer, NameClash clash,
                                   TrashSteps const& steps) {
    Replacement replacement(transfer, steps);
    transfer.placing = {};
    transfer.leftoverInDoubt = [](std::string const& name) {
        NSLog("A leftover of an unfinished copy stays, since it is not known whether its process still runs: %@",
              NSString::stringWithFileSystemRepresentation_(name));
    };
    if (clash == NameClash::IsReplaced)
        transfer.placing = [&](PlaceItem const& step) { return replacement.place(step); };
    Transferred const done = operation(transfer);
    if (done.isDone()) return {};
    return replacement.problem(done.problem());
}

} // namespace

Result<void, ReplacingProblem> copyItem(ItemTransfer transfer, NameClash clash, TrashSteps const& steps) {
    return run(&copyItem, transfer, clash, steps);
}

Result<void, ReplacingProblem> moveItem(ItemTransfer transfer, NameClash clash, TrashSteps const& steps) {
    bool const isThere = confirmItemInFolder(transfer.folder, transfer.name, transfer.item.item).isDone();
    if (clash == NameClash::IsReplaced && isThere) return {};
    Result<void, ReplacingProblem> moved = run(&moveItem, transfer, clash, steps);
    // The item may have come back from its new name.
    if (moved.isDone())
        followMovedItem(transfer.folder, transfer.name);
    else
        followMovedItem(transfer.item.folder, transfer.item.name);
    // The references would keep the space of an original that was removed.
    releaseRemovedItems();
    return moved;
}

} // namespace mac
