#pragma once

#include "platform/files/trash/ReplacingTransfer.h"
#include "tests/platform/files/trash/TrashHome.h"
#include "tests/platform/system/items/ItemTransfers.h"

namespace mac::test {

// Copies and moves by path that may replace an item.

using Replacing = Result<void, ReplacingProblem> (*)(ItemTransfer, NameClash, TrashSteps const&);

// What is called during a transfer.
struct TransferSteps {
    std::function<bool()> shouldContinue{};
    RenameSteps rename{};
    TrashSteps trash{};
};

// The system's code of the failure; 0 for none.
inline int errorOf(Transfer transfer, std::string const& path, std::string const& folder, std::string const& name,
                   NameClash clash, TransferSteps const& steps = {}) {
    Result<OpenItem> const item = openItemAtPath(path, LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) return item.problem().code;
    FileDescriptor const target = folderAt(folder);
    Replacing const replacing = transfer == copy ? Replacing(copyItem) : Replacing(moveItem);
    Result<void, ReplacingProblem> const done = replacing({.item = item.value(),
                                                           .folder = target,
                                                           .name = name,
                                                           .shouldContinue = steps.shouldContinue,
                                                           .steps = steps.rename},
                                                          clash, steps.trash);
    return done.isDone() ? 0 : done.problem().transfer.error.code;
}

} // namespace mac::test
