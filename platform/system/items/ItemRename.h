#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/Result.h"
#include <functional>
#include <optional>
#include <string>

namespace mac {

// An open folder and the name of an item in it. REQUIRES: both outlive the object.
struct NameInFolder {
    FileDescriptor const& folder;
    std::string const& name;
};

// Why an item did not get its new name.
struct RenameProblem {
    // Another item took the place at the last moment, was moved instead and could not be moved back: it has the new
    // name. Otherwise every item is where it was.
    bool movedWrongItem{false};
    // ESTALE if another item has the item's name; EEXIST if the new name is taken; ItemIsLocked.
    SystemError error{};
};

enum class RenameStep {
    // The name leads to the open item; the rename is next.
    Checked,
    // The item has its new name; whether it is still the same item is checked next.
    Renamed,
};
// Called after each step; empty in the product. For tests of what happens between steps.
using RenameSteps = std::function<void(RenameStep)>;

// Moves the open item from its name to a name that no item has, on the same mount, and checks before and after that it
// is this item that moves. Any thread.
Result<void, RenameProblem> renameItem(FileDescriptor const& item, NameInFolder from, NameInFolder to,
                                       RenameSteps const& steps = {});

// The AppleDouble sidecar "._NAME" of an item, open with O_PATH.
struct OpenSidecar {
    FileDescriptor file{};
    std::string name{};
};
// nullopt if there is none, if the file was read and is of another form, and for an item that is a sidecar itself.
// Fails if there is, or may be, a file of the name that cannot be read: it may hold what belongs to the item.
Result<std::optional<OpenSidecar>> sidecarBeside(FileDescriptor const& folder, std::string const& itemName);

} // namespace mac
