#pragma once

#include "platform/system/items/ItemTransfer.h"
#include <functional>

namespace mac {

// A copy that deletes the item which has its name. Any thread.

enum class OverwritingStep {
    // The copy is complete and has the name that it is exchanged under; it takes its place next.
    Copied,
    // Where names cannot be exchanged: the item that had the name lies under a third one; the copy gets the name next.
    MovedAway,
    // Likewise: the copy has the name; the item under the third name gets the temporary one next.
    CopyPlaced,
    // The names are exchanged; whether the item that has the temporary one now is the old item is checked next.
    NamesExchanged,
    // The copy has the name, and the old item the temporary one; the old item is deleted next.
    Exchanged,
};
// Called after each step; empty in the product. For tests of what happens between steps.
using OverwritingSteps = std::function<void(OverwritingStep)>;

// See ItemTransfer.h; `placing` is ignored. If no item has the name this is copyItem. Otherwise the copy and the old
// item are exchanged in one step once the copy is complete, and the old item is removed. Where the file system cannot
// exchange names, the old item gets a temporary name first. ItemIsLocked or EBUSY if the old item must stay
// (ItemRemoval.h), EINVAL if it holds the original or the original holds it, EEXIST if it is the original, ESTALE if
// another item takes its place meanwhile; an old item of which nothing could be removed gets its name back.
// OriginalStays: the copy has the name, but what is left of the old item lies beside it. MovedWrongItem: an item that
// had the name, be it the old one or one that took its place, could not get it back. Both times that item has the
// temporary name which the error's `item` tells, and `strandedName` if it is still there. What was to be removed goes
// with the leftovers of this process; all else keeps that name, also if this process is killed.
Result<void, TransferProblem> copyItemOver(ItemTransfer const& transfer, OverwritingSteps const& steps = {});

} // namespace mac
