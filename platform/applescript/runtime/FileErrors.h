#pragma once

#include "platform/applescript/runtime/ScriptError.h"
#include "platform/files/trash/ReplacingTransfer.h"

namespace mac::applescript {

// The script errors of commands about files. Every system error and every problem of the trash becomes a script error
// here. Any thread.

enum class FileCommand {
    // "read", "write" and the other standard additions.
    ReadOrWrite,
    // The Finder's access to one item and its properties.
    UseItem,
    // The Finder's "move" and "duplicate".
    Transfer,
};

// The error's number; nullopt if the system error means something else in every place where it occurs.
std::optional<std::int32_t> fileErrorNumber(SystemError const& error, FileCommand command);

// A Finder error about the object.
ScriptError fileError(SystemError const& error, Value const& object, FileCommand command = FileCommand::UseItem);
// The name that was given for the object cannot be the name of a file.
ScriptError badFileName(Value const& object);
// The item was copied to another volume instead of moved there, and cannot be removed.
ScriptError originalStays(SystemError const& error, Value const& object);
ScriptError trashError(TrashProblem const& problem, Value const& object);
// The item could not be moved or copied; if the item in its place could not be trashed, the trash's reason.
ScriptError transferError(ReplacingProblem const& problem, Value const& object, FileCommand command);

} // namespace mac::applescript
