#pragma once

#include "platform/files/trash/Trash.h"
#include "platform/system/items/ItemTransfer.h"
#include <optional>

namespace mac {

// Copies and moves of items that may replace the item which has the new name. References to items that a move removed
// let them go. Any thread.

enum class NameClash {
    // EEXIST if the name is taken.
    IsRefused,
    // The item that has the name goes to the trash once the new one is ready for its place. Linux: it is not deleted,
    // so that a replacement can be taken back. If the new item cannot take the place after all, the old one is put
    // back; if another process has taken the name meanwhile, it stays in the trash. EINVAL if the old item holds the
    // new one.
    IsReplaced,
};

struct ReplacingProblem {
    TransferProblem transfer{};
    // Set if the item that has the name could not be trashed: the trash's own reason.
    std::optional<TrashProblem> trash{};
};

// See ItemTransfer.h; `placing` is ignored. The steps of trashing are told to `steps`.
Result<void, ReplacingProblem> copyItem(ItemTransfer transfer, NameClash clash, TrashSteps const& steps = {});
Result<void, ReplacingProblem> moveItem(ItemTransfer transfer, NameClash clash, TrashSteps const& steps = {});

} // namespace mac
