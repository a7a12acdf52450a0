#pragma once

#include "platform/system/items/FileCopy.h"
#include "platform/system/items/ItemIdentity.h"
#include "platform/system/items/ItemRename.h"
#include "platform/system/items/OpenItem.h"
#include "platform/system/items/TreeRemoval.h"
#include <functional>
#include <optional>
#include <string>

namespace mac {

// Copying and moving whole items, folders with all that is in them, to any depth. Symbolic links are copied
// themselves, mount points in a folder are not entered (EBUSY), and several names of one file in a folder become
// several names of its copy. A copy has the contents, permissions, access lists, dates and attributes of the original,
// and its owner where that is allowed; no user gets more access than before. An item's AppleDouble sidecar goes with it
// or neither goes: EEXIST if a stray one has its new name. A failure leaves the items as they were. What killed
// processes have left in the folder under temporary names is removed first. Any thread.

// Why an item was not moved or copied, and in what state that leaves it.
struct TransferProblem {
    enum class Kind {
        // The item is where it was. ESTALE: another item has its name; EEXIST: the new name is taken; ItemIsLocked: the
        // item must not be moved.
        NotDone,
        // Another item was moved in the item's stead and could not be moved back, or the item could not be moved back
        // when its sidecar did not follow: what was moved has the new name.
        MovedWrongItem,
        // Moved to another volume: the copy is complete and in its place, but not all of the original could be removed.
        OriginalStays,
    };

    Kind kind{Kind::NotDone};
    SystemError error{};
    // The temporary name, in the folder, of an item that was to be replaced and could not get its own name back. See
    // OverwritingCopy.h.
    std::optional<std::string> strandedName{};
};

// Gives the item its name. Fails with EEXIST, once the item is complete, if the name is taken.
using PlaceItem = std::function<Result<void, TransferProblem>()>;

// One item and the name it is to have in an open folder. The descriptors must outlive the transfer.
struct ItemTransfer {
    OpenItem const& item;
    FileDescriptor const& folder;
    std::string name;
    // Asked now and then; the transfer fails with ECANCELED once it answers false. If empty, it continues.
    std::function<bool()> shouldContinue{};
    // Calls the given step, and may free the name and call it again. If empty, a name that is taken fails with EEXIST
    // before anything is copied.
    std::function<Result<void, TransferProblem>(PlaceItem const& place)> placing{};
    // Called after each step of a move within a volume; of a copy; of the removal of each original after it was copied.
    RenameSteps steps{};
    CopySteps copySteps{};
    RemovalSteps removalSteps{};
    // Called with the name of each leftover in the folder that was in doubt and stays.
    std::function<void(std::string const& name)> leftoverInDoubt{};
};

// The copy gets its name once it is complete; the system writes it to the disk in its own time, as the original stays.
// EINVAL: the folder lies in the item.
Result<void, TransferProblem> copyItem(ItemTransfer const& transfer);

// To another volume the item is copied, and removed once the copy is on the disk: only what was copied, and only in the
// state it was copied in (else ESTALE, and the original stays).
Result<void, TransferProblem> moveItem(ItemTransfer const& transfer);

// Whether the folder is that item, or lies in it; true if that cannot be found out.
bool mayLieIn(FileDescriptor const& folder, ItemIdentity const& item);

} // namespace mac
