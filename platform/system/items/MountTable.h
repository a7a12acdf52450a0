#pragma once

#include "platform/system/Result.h"
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// One line of the system's list of mounts.
struct Mount {
    std::uint64_t id = 0;
    std::uint64_t parent = 0; // the mount that holds the mount point
    std::string device;       // "major:minor", the same for all mounts of a file system
    std::string subtree;      // the folder of the file system that is mounted: "/" unless a part is bound elsewhere
    std::string mountPoint;
    std::string type;           // "ext4"
    std::string source;         // "/dev/sda1", or whatever the file system has instead
    bool isReadOnly = false;    // this mount or its whole file system
    bool hangsOnListed = false; // its parent is in the table, too
};

// What was mounted where at one moment.
class MountTable {
public:
    static constexpr char const* source = "/proc/self/mountinfo";

    // The mounts that this process sees.
    static Result<MountTable> current();
    // Text as in `source`; a line of another form is left out.
    static MountTable parse(std::string_view text);

    std::vector<Mount> const& mounts() const { return m_mounts; }
    Mount const* withId(std::uint64_t id) const; // nullptr: none
    // The mount that is reached by an absolute path without links, where a later mount can hide earlier ones. nullptr
    // when the table does not hold it.
    Mount const* reachedBy(std::string_view path) const;

private:
    std::vector<Mount> m_mounts;
};

// Whether the files lie on this machine: on a disk or an image of one, or in a file system that stands on such.
bool isLocal(Mount const& mount);

} // namespace mac
