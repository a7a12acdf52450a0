#pragma once

#include "platform/files/Trash.h"
#include "tests/support/Environment.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <dirent.h>
#include <fstream>
#include <iterator>
#include <memory>
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

inline bool isThere(std::string const& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

inline std::string textOf(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Sorted; empty also for what is no folder.
inline std::vector<std::string> namesIn(std::string const& path) {
    std::vector<std::string> names;
    std::unique_ptr<DIR, int (*)(DIR*)> const folder(::opendir(path.c_str()), &::closedir);
    while (dirent const* const entry = folder ? ::readdir(folder.get()) : nullptr)
        names.emplace_back(entry->d_name);
    std::erase(names, ".");
    std::erase(names, "..");
    std::ranges::sort(names);
    return names;
}

} // namespace mac::test
