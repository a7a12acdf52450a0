#include "platform/system/NewFile.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/OpenItems.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace mac {

namespace {

constexpr mode_t SetIdentityBits = S_ISUID | S_ISGID;
constexpr mode_t GroupBits = S_IRWXG;
constexpr std::string_view AccessList = "system.posix_acl_access";
// The security module labels the new file itself, and what the old bytes were allowed to do the new ones are not.
constexpr std::string_view SecurityNames = "security.";

bool isUnsupported(int errorNumber) { return errorNumber == EOPNOTSUPP || errorNumber == ENOSYS; }
bool isForbidden(int errorNumber) { return errorNumber == EPERM || errorNumber == EACCES; }

// Asks for the size, then for the bytes, and again when they have grown meanwhile.
template <class Question>
std::optional<std::vector<char>> answerOf(Question const& question) {
    for (;;) {
        ssize_t const size = question(nullptr, 0);
        if (size < 0) return std::nullopt;
        std::vector<char> bytes(static_cast<std::size_t>(size));
        if (bytes.empty()) return bytes;
        ssize_t const count = question(bytes.data(), bytes.size());
        if (count < 0 && errno == ERANGE) continue;
        if (count < 0) return std::nullopt;
        bytes.resize(static_cast<std::size_t>(count));
        return bytes;
    }
}

bool copyAttribute(std::string const& oldPath, FileDescriptor const& file, std::string const& name) {
    std::optional<std::vector<char>> const value =
        answerOf([&](char* bytes, std::size_t size) { return ::getxattr(oldPath.c_str(), name.c_str(), bytes, size); });
    if (!value) return errno == ENODATA || isForbidden(errno) || isUnsupported(errno);
    return ::fsetxattr(file.number(), name.c_str(), value->data(), value->size(), 0) == 0 || isForbidden(errno) ||
           isUnsupported(errno);
}

} // namespace

std::optional<std::string> unguessableName() {
    std::array<unsigned char, 16> random;
    if (::getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) return std::nullopt;
    constexpr std::string_view digits = "0123456789abcdef";
    std::string name = ".";
    for (unsigned char const byte : random) {
        name.push_back(digits[byte >> 4]);
        name.push_back(digits[byte & 0xF]);
    }
    return name;
}

NewFile::NewFile(FileDescriptor const& folder, unsigned mode) : m_folder(folder) {
    std::optional<std::string> const name = unguessableName();
    if (!name) return;
    m_name = *name;
    m_file = FileDescriptor(
        ::openat(folder.number(), m_name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
}

NewFile::~NewFile() {
    int const reason = errno;
    if (m_file.isOpen() && !m_isDone) ::unlinkat(m_folder.number(), m_name.c_str(), 0);
    errno = reason;
}

bool NewFile::write(std::span<std::byte const> bytes) const { return writeAll(m_file, bytes); }

bool NewFile::copyAttributesOf(FileDescriptor const& old) const {
    std::string const path = descriptorPath(old);
    std::optional<std::vector<char>> const list =
        answerOf([&](char* names, std::size_t size) { return ::listxattr(path.c_str(), names, size); });
    if (!list) return isUnsupported(errno);
    std::string_view names(list->data(), list->size());
    while (!names.empty()) {
        std::string const name(names.substr(0, names.find('\0')));
        names.remove_prefix(std::min(name.size() + 1, names.size()));
        if (name.starts_with(SecurityNames) || name == AccessList) continue;
        if (!copyAttribute(path, m_file, name)) return false;
    }
    return true;
}

bool NewFile::takeAfter(FileDescriptor const& item, unsigned permissionMask) const {
    struct stat old {};
    if (::fstat(item.number(), &old) != 0) return false;
    mode_t mode = old.st_mode & permissionMask;
    bool const hasOwner = ::fchown(m_file.number(), old.st_uid, old.st_gid) == 0;
    constexpr uid_t sameOwner = -1;
    bool const hasGroup = hasOwner || ::fchown(m_file.number(), sameOwner, old.st_gid) == 0;
    if (!hasOwner) mode &= ~SetIdentityBits;
    if (!hasGroup) mode &= ~GroupBits | (mode & S_IRWXO) << 3;
    // None but the item's own: the folder may have given the file one. Its entries are for the owning group, too.
    std::string const accessList(AccessList);
    ::fremovexattr(m_file.number(), accessList.c_str());
    if (hasGroup && !copyAttribute(descriptorPath(item), m_file, accessList)) return false;
    return ::fchmod(m_file.number(), mode) == 0;
}

bool NewFile::finish(std::string const& name, Place place) {
    if (::fsync(m_file.number()) != 0) return false;
    // Some file systems, on the network above all, say only now what they could not write.
    int const copy = ::fcntl(m_file.number(), F_DUPFD_CLOEXEC, 0);
    if (copy < 0 || ::close(copy) != 0) return false;
    int const folder = m_folder.number();
    m_isDone = place == Place::IsTaken ? ::renameat(folder, m_name.c_str(), folder, name.c_str()) == 0
                                       : nameNewFile(folder, m_name, name);
    return m_isDone && flushFolder(m_folder);
}

} // namespace mac
