#pragma once

#include <cstdint>
#include <string>
#include <vector>

// What keeps items from being changed: the immutable flag and POSIX access lists.

namespace mac::test {

class TemporaryFolder;

// Whether files in the folder can be made immutable: only root may, and not every file system has that flag.
bool canLockFilesIn(TemporaryFolder const& folder);

// Sets or clears the file's immutable flag; false if the system refused.
bool setLocked(std::string const& file, bool isLocked);

inline constexpr char AccessListName[] = "system.posix_acl_access";
inline constexpr char DefaultListName[] = "system.posix_acl_default";

struct AccessEntry {
    enum Kind : std::uint8_t { Owner = 1, User = 2, OwningGroup = 4, Group = 8, Mask = 16, Others = 32 };

    Kind kind{Owner};
    std::uint8_t permissions{0};
    // The number of a user or a group.
    std::uint32_t id{0xFFFF'FFFF};
};

// An access list in the form of the attribute's value.
std::string accessList(std::vector<AccessEntry> const& entries);

// An access list that gives permissions to the user 7000, to the owning group and to others, and all to the owner.
std::string listForUser(std::uint8_t permissions, std::uint8_t ofGroup, std::uint8_t ofOthers = 0);

// Sets the item's access list of that name; false if the system refused.
bool setList(std::string const& path, char const* name, std::string const& list);

// The item's access list of that name; empty if there is none.
std::string listOf(std::string const& path, char const* name);

} // namespace mac::test
