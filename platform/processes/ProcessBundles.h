#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include "platform/system/processes/ProcessList.h"
#include "platform/system/processes/ProgramFile.h"
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace mac {

// What a process runs.
struct ProcessBundle {
    // The path of its program: of a script in a bundle or one that is there, the script's.
    std::string program{};
    // The bundle that the program lies in, or lay in last; empty for none.
    std::string path{};
    // What the bundle's information file says or, where that is gone or another bundle's, said: "CFBundleIdentifier",
    // "CFBundleName", "FileType" and "FileCreator", as far as it has them. Nil where nothing is known.
    NSDictionary information{};
};

// Tells which bundles processes run from, also once a bundle was renamed, moved, deleted or replaced. The system tells
// where an open program is; a script that its interpreter has closed is looked for beside its last place. What was read
// of a bundle while it was the process's own is remembered, and answered when it can be read no longer. Main thread.
class ProcessBundles {
public:
    ProcessBundle bundleOf(RunningProcess const& process);
    // Forgets all processes but those, which are in their order.
    void keepOnly(std::vector<ProcessIdentity> const& processes);

private:
    // What was seen last, while it was the process's own.
    struct Seen {
        // A process may become another program: then all of this is another's.
        ItemIdentity executable{};
        std::string script{};
        ProgramFile program{};
        ItemIdentity bundle{};
        NSDictionary information{};
    };

    static std::optional<ProgramFile> scriptFile(RunningProcess const& process, std::string const& script,
                                                 Seen const* seen);
    Seen const* seenOf(ProcessIdentity const& process, ItemIdentity const& executable, std::string const& script);

    std::map<ProcessIdentity, Seen> m_seen;
};

} // namespace mac
