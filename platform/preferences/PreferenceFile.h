#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include "platform/system/LongPath.h"
#include <functional>
#include <optional>
#include <string>

namespace mac {

// The property-list file of one domain of preferences, a dictionary. Main thread.
class PreferenceFile {
public:
    // The path is the file system's bytes.
    explicit PreferenceFile(std::string path) : m_path(std::move(path)) {}

    // The dictionary; an empty one if there is no file. Fails with EBADMSG if it holds no dictionary, with EFBIG above
    // 16 MiB.
    Result<NSDictionary> read() const;

    // Holds back other processes that change the preferences of this folder, reads the file, and writes the dictionary
    // that the function makes of it, unless that has the same values of the same types: whole, beside the old one and
    // renamed over it. A file that cannot be read stays as it is. EBUSY if another process holds the lock for too long;
    // EINVAL for what is no property list; EFBIG for a dictionary that could not be read again; ECANCELED if the
    // function answers nil. Called again if another program changed the file meanwhile.
    Result<void> change(std::function<NSDictionary(NSDictionary const& values)> const& changed) const;

private:
    struct Contents {
        NSDictionary values{};
        // nullopt if there is no file.
        std::optional<FileStatus> state{};
    };

    Result<Contents> contents() const;
    Result<void> write(NSDictionary const& values, std::optional<FileStatus> const& state) const;

    std::string m_path;
};

} // namespace mac
