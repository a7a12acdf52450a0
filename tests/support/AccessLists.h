#pragma once

#include <cstdint>
#include <string>
#include <sys/xattr.h>
#include <vector>

namespace mac::test {

// POSIX access lists in the form in which the system hands them out.

inline constexpr char AccessListName[] = "system.posix_acl_access";
inline constexpr char DefaultListName[] = "system.posix_acl_default";

struct AccessEntry {
    enum Kind : std::uint8_t { Owner = 1, User = 2, OwningGroup = 4, Group = 8, Mask = 16, Others = 32 };

    Kind kind{Owner};
    std::uint8_t permissions{0};
    // Of a user or a group.
    std::uint32_t id{0xFFFF'FFFF};
};

inline std::string accessList(std::vector<AccessEntry> const& entries) {
    std::string list("\2\0\0\0", 4);
    for (AccessEntry const& entry : entries) {
        for (char const byte : {static_cast<char>(entry.kind), '\0', static_cast<char>(entry.permissions), '\0'})
            list += byte;
        for (unsigned shift = 0; shift < 32; shift += 8)
            list += static_cast<char>(entry.id >> shift);
    }
    return list;
}

// A list that gives the user of a number the permissions, and the owning group others.
inline std::string listForUser(std::uint8_t permissions, std::uint8_t ofGroup, std::uint8_t ofOthers = 0) {
    constexpr std::uint8_t all = 7;
    constexpr std::uint32_t user = 7000;
    return accessList({{AccessEntry::Owner, all},
                       {AccessEntry::User, permissions, user},
                       {AccessEntry::OwningGroup, ofGroup},
                       {AccessEntry::Mask, static_cast<std::uint8_t>(permissions | ofGroup)},
                       {AccessEntry::Others, ofOthers}});
}

inline bool setList(std::string const& path, char const* name, std::string const& list) {
    return ::setxattr(path.c_str(), name, list.data(), list.size(), 0) == 0;
}

// Empty if there is none.
inline std::string listOf(std::string const& path, char const* name) {
    std::string list(1024, '\0');
    ssize_t const length = ::getxattr(path.c_str(), name, list.data(), list.size());
    list.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
    return list;
}

} // namespace mac::test
