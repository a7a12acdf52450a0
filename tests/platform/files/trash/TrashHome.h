#pragma once

#include "platform/files/trash/Trash.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Environment.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <string>
#include <sys/stat.h>
#include <vector>

namespace mac::test {

// A folder with a home trash in it for as long as the object lives, and with all there is of a local computer.
struct TrashHome {
    TemporaryFolder folder{};
    EnvironmentVariable data{"XDG_DATA_HOME", folder.path("data")};
    EnvironmentVariable computer{"FRAMEKEEPER_LOCAL_COMPUTER", folder.path()};

    std::string const& path() const { return folder.path(); }
    std::string path(std::string_view relative) const { return folder.path(relative); }
    std::string files(std::string_view name = "") const { return folder.path("data/Trash/files/") + std::string(name); }
    std::string information(std::string_view name = "") const {
        return folder.path("data/Trash/info/") + std::string(name);
    }
};

// Empty if the path's volume has no trash.
inline std::string trashFolderOf(std::string const& path, MissingTrash missing) {
    return trashFolderForPath(path, missing).valueOr("");
}

} // namespace mac::test
