#pragma once

#include "platform/system/items/ItemIdentity.h"
#include "platform/system/processes/ProcessList.h"
#include <functional>
#include <optional>
#include <string>

// The files that processes run, whatever has become of their names. For implementations; any thread.

namespace mac {

// A file that a process runs or holds open.
struct ProgramFile {
    // In the file system's bytes: where the file is, or was last if it has no name any more.
    std::string path{};
    ItemIdentity identity{};
    // Whether the path leads to exactly this file.
    bool isThere{false};
};

// The path that one of the system's links for a process (/proc/PID/exe, .../cwd, .../fd/N) leads to, without the mark "
// (deleted)" that the system appends if the name is gone. A name that itself ends so is kept, since it leads to the
// item. The path that the link leads to; nullopt for a link that cannot be read, and for a path that is longer than the
// system reports.
std::optional<std::string> pathBehind(char const* link);

// The executable that the process runs.
std::optional<ProgramFile> executableFileOf(RunningProcess const& process);

// The first file in a bundle that the process holds open and that `accepts` answers true for. nullopt if there is none,
// or if this user may not see the open files of the process.
std::optional<ProgramFile> openFileInBundle(RunningProcess const& process,
                                            std::function<bool(ProgramFile const&)> const& accepts);

// The script that an interpreter outside of any bundle was called with. A relative path is completed with the process's
// current folder; the file need not exist. nullopt for other programs.
std::optional<std::string> calledScript(RunningProcess const& process);

// The path of a regular file with symbolic links resolved; nullopt if the path leads to no regular file.
std::optional<std::string> resolvedFile(std::string const& path);

} // namespace mac
