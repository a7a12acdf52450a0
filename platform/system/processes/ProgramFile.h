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
    // In the file system's bytes: where the file is now, or was last when no name leads to it any more.
    std::string path{};
    ItemIdentity identity{};
    // The path leads to that very file.
    bool isThere{false};
};

// The path behind one of the links that the system keeps for a process (/proc/PID/exe, .../cwd, .../fd/N), without the
// mark " (deleted)" that it appends when the name is gone. A name that ends so itself is kept: it leads to the item.
// The path that the link leads to; nullopt for a link that cannot be read, and for a path that is longer than the
// system reports.
std::optional<std::string> pathBehind(char const* link);

// The executable, as the process holds it.
std::optional<ProgramFile> executableFileOf(RunningProcess const& process);

// The first file in a bundle that the process holds open and that is meant. Nothing where there is none, or this user
// may not see what the process has open.
std::optional<ProgramFile> openFileInBundle(RunningProcess const& process,
                                            std::function<bool(ProgramFile const&)> const& isMeant);

// The script that an interpreter outside of any bundle was called with. A relative path is completed with the process's
// current folder; whether anything is there is not asked. Nothing for other programs.
std::optional<std::string> calledScript(RunningProcess const& process);

// The path of the regular file behind a path, links resolved.
std::optional<std::string> resolvedFile(std::string const& path);

} // namespace mac
