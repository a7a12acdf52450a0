#include "tests/support/Protection.h"
#include "tests/support/TemporaryFolder.h"
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac::test {

bool canLockFilesIn(TemporaryFolder const& folder) {
    std::string const trial = folder.makeFile("trial of locks", "");
    bool const canLock = setLocked(trial, true) && setLocked(trial, false);
    ::unlink(trial.c_str());
    return canLock;
}

bool setLocked(std::string const& file, bool isLocked) {
    int const opened = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    int flags = 0;
    bool isDone = opened >= 0 && ::ioctl(opened, FS_IOC_GETFLAGS, &flags) == 0;
    flags = isLocked ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    isDone = isDone && ::ioctl(opened, FS_IOC_SETFLAGS, &flags) == 0;
    ::close(opened);
    return isDone;
}

std::string accessList(std::vector<AccessEntry> const& entries) {
    std::string list("\2\0\0\0", 4);
    for (AccessEntry const& entry : entries) {
        for (char const byte : {static_cast<char>(entry.kind), '\0', static_cast<char>(entry.permissions), '\0'})
            list += byte;
        for (unsigned shift = 0; shift < 32; shift += 8)
            list += static_cast<char>(entry.id >> shift);
    }
    return list;
}

std::string listForUser(std::uint8_t permissions, std::uint8_t ofGroup, std::uint8_t ofOthers) {
    constexpr std::uint8_t all = 7;
    constexpr std::uint32_t user = 7000;
    return accessList({{AccessEntry::Owner, all},
                       {AccessEntry::User, permissions, user},
                       {AccessEntry::OwningGroup, ofGroup},
                       {AccessEntry::Mask, static_cast<std::uint8_t>(permissions | ofGroup)},
                       {AccessEntry::Others, ofOthers}});
}

bool setList(std::string const& path, char const* name, std::string const& list) {
    return ::setxattr(path.c_str(), name, list.data(), list.size(), 0) == 0;
}

std::string listOf(std::string const& path, char const* name) {
    std::string list(1024, '\0');
    ssize_t const length = ::getxattr(path.c_str(), name, list.data(), list.size());
    list.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
    return list;
}

} // namespace mac::test
