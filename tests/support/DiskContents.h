#pragma once

#include <algorithm>
#include <dirent.h>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

// Reads items back from the disk.

namespace mac::test {

inline bool isThere(std::string const& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

inline std::string textOf(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The names in a folder, sorted; empty if the path is no folder.
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
