#include "platform/system/items/FileCopy.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/ItemAttributes.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace mac {

namespace {

using ShouldContinue = std::function<bool()>;

// Bytes between two questions whether to continue.
constexpr std::size_t PieceSize = std::size_t{8} << 20U;
// Bytes that are copied through this process at a time.
constexpr std::size_t BufferSize = std::size_t{256} << 10U;

SystemError cancelled() { return {.code = ECANCELED, .operation = "copy"}; }

Result<void> writeAllAt(FileDescriptor const& file, std::span<char const> bytes, off_t place) {
    while (!bytes.empty()) {
        ssize_t const count = ::pwrite(file.number(), bytes.data(), bytes.size(), place);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return lastSystemError("write");
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        place += count;
    }
    return {};
}

// Copies bytes through this process and answers how many; 0 at the end of the file.
Result<std::size_t> copyPiece(FileDescriptor const& from, FileDescriptor const& to, off_t place, std::size_t size) {
    std::vector<char> buffer(std::min(size, BufferSize));
    ssize_t count = -1;
    do {
        count = ::pread(from.number(), buffer.data(), buffer.size(), place);
    } while (count < 0 && errno == EINTR);
    if (count < 0) return lastSystemError("read");
    buffer.resize(static_cast<std::size_t>(count));
    Result<void> const written = writeAllAt(to, buffer, place);
    if (!written.isDone()) return written.problem();
    return buffer.size();
}

// Copies bytes within the kernel and answers how many; 0 if the kernel cannot, or at the end of the file.
std::size_t copyPieceBySystem(FileDescriptor const& from, FileDescriptor const& to, off_t place, std::size_t size) {
    ssize_t count = -1;
    do {
        off_t source = place;
        off_t target = place;
        count = ::copy_file_range(from.number(), &source, to.number(), &target, size, 0);
    } while (count < 0 && errno == EINTR);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

// Copies up to `end` and answers how far it came: less if the file ends before it.
Result<off_t> copyRange(FileDescriptor const& from, FileDescriptor const& to, off_t begin, off_t end,
                        ShouldContinue const& shouldContinue) {
    bool isBySystem = true;
    while (begin < end) {
        if (!shouldContinue()) return cancelled();
        std::size_t const size = std::min(static_cast<std::size_t>(end - begin), PieceSize);
        std::size_t const copied = isBySystem ? copyPieceBySystem(from, to, begin, size) : 0;
        isBySystem = copied > 0;
        begin += static_cast<off_t>(copied);
        if (isBySystem) continue;
        Result<std::size_t> const count = copyPiece(from, to, begin, size);
        if (!count.hasValue()) return count.problem();
        if (count.value() == 0) break;
        begin += static_cast<off_t>(count.value());
    }
    return begin;
}

// Copies what lies behind the size that the volume tells, and answers where the file really ends.
Result<off_t> copyRest(FileDescriptor const& from, FileDescriptor const& to, off_t begin,
                       ShouldContinue const& shouldContinue) {
    while (true) {
        Result<std::size_t> const count = copyPiece(from, to, begin, PieceSize);
        if (!count.hasValue()) return count.problem();
        if (count.value() == 0) return begin;
        begin += static_cast<off_t>(count.value());
        if (!shouldContinue()) return cancelled();
    }
}

constexpr std::string_view UserNamespace = "user.";

bool isUserAttribute(std::string_view name) { return name.starts_with(UserNamespace); }

Result<void> setAttribute(FileDescriptor const& to, std::string const& name, std::span<std::byte const> value) {
    if (::fsetxattr(to.number(), name.c_str(), value.data(), value.size(), 0) == 0) return {};
    // An attribute of the system of one volume means nothing on another one.
    if (!isUserAttribute(name)) return {};
    Result<AttributeName> const shown = AttributeName::make(std::string_view(name).substr(UserNamespace.size()));
    if (!shown.hasValue()) return shown.problem();
    Result<OpenItem> const item = openItemInItsFolder(to);
    if (!item.hasValue()) return item.problem();
    return writeAttribute(item.value(), shown.value(), value);
}

Result<std::vector<std::byte>> attributeOf(FileDescriptor const& from, std::string const& name) {
    ssize_t const length = ::fgetxattr(from.number(), name.c_str(), nullptr, 0);
    if (length < 0) return lastSystemError("getxattr", name);
    std::vector<std::byte> value(static_cast<std::size_t>(length));
    ssize_t const read = ::fgetxattr(from.number(), name.c_str(), value.data(), value.size());
    if (read < 0) return lastSystemError("getxattr", name);
    if (read != length) return SystemError{.code = EAGAIN, .operation = "getxattr", .item = name};
    return value;
}

Result<void> copyAttributes(FileDescriptor const& from, FileDescriptor const& to) {
    ssize_t const size = ::flistxattr(from.number(), nullptr, 0);
    if (size < 0) {
        SystemError error = lastSystemError("listxattr");
        if (error.is(ENOTSUP)) return {};
        return error;
    }
    std::vector<char> names(static_cast<std::size_t>(size));
    ssize_t const listed = size == 0 ? 0 : ::flistxattr(from.number(), names.data(), names.size());
    if (listed < 0) return lastSystemError("listxattr");
    std::string_view rest(names.data(), static_cast<std::size_t>(listed));
    while (!rest.empty()) {
        std::string const name(rest.substr(0, rest.find('\0')));
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
        Result<std::vector<std::byte>> const value = attributeOf(from, name);
        if (!value.hasValue() && isUserAttribute(name)) return value.problem();
        if (!value.hasValue()) continue;
        if (Result<void> const set = setAttribute(to, name, value.value()); !set.isDone()) return set;
    }
    return {};
}

// Permissions for a copy that could not get the original's owner and group, which get no permissions that were meant
// for those.
mode_t withoutForeignPermissions(mode_t mode) {
    constexpr unsigned groupShift = 3;
    mode &= ~(S_ISUID | S_ISGID);
    return mode & (~S_IRWXG | (mode & S_IRWXO) << groupShift);
}

// Makes the symbolic link or the special file, for the owner alone.
Result<void> makeSpecial(FileDescriptor const& fromFolder, std::string const& from, struct stat const& status,
                         FileDescriptor const& toFolder, std::string const& to) {
    if (!S_ISLNK(status.st_mode)) {
        constexpr mode_t ownerAlone = S_IRUSR | S_IWUSR;
        mode_t const kind = status.st_mode & S_IFMT;
        if (::mknodat(toFolder.number(), to.c_str(), kind | (status.st_mode & ownerAlone), status.st_rdev) != 0)
            return lastSystemError("mknod", to);
        return {};
    }
    Result<std::string> const target = linkTextIn(fromFolder, from);
    if (!target.hasValue()) return target.problem();
    if (::symlinkat(target.value().c_str(), toFolder.number(), to.c_str()) != 0) return lastSystemError("symlink", to);
    return {};
}

} // namespace

Result<void> copyContents(FileDescriptor const& from, FileDescriptor const& to,
                          std::function<bool()> const& shouldContinue) {
    struct stat status {};
    if (::fstat(from.number(), &status) != 0) return lastSystemError("stat");
    off_t place = 0;
    // The volume may tell too large a size.
    off_t knownEnd = status.st_size;
    while (place < knownEnd) {
        off_t const begin = ::lseek(from.number(), place, SEEK_DATA);
        bool const isEnd = begin < 0 && errno == ENXIO;
        if (isEnd) break;
        // A volume that does not know its holes fails otherwise.
        off_t const data = begin < 0 ? place : begin;
        off_t const hole = begin < 0 ? -1 : ::lseek(from.number(), data, SEEK_HOLE);
        off_t const end = hole < 0 ? knownEnd : hole;
        Result<off_t> const reached = copyRange(from, to, data, end, shouldContinue);
        if (!reached.hasValue()) return reached.problem();
        place = reached.value();
        if (place < end) knownEnd = place;
    }
    struct stat now {};
    if (::fstat(from.number(), &now) != 0) return lastSystemError("stat");
    // A file that was truncated while it was copied: the copy is neither the old one nor the new one.
    if (now.st_size < status.st_size) return SystemError{.code = ESTALE, .operation = "copy"};
    Result<off_t> const end = copyRest(from, to, knownEnd, shouldContinue);
    if (!end.hasValue()) return end.problem();
    if (::ftruncate(to.number(), end.value()) != 0) return lastSystemError("truncate");
    return {};
}

Result<void> copyMetadata(FileDescriptor const& from, FileDescriptor const& to) {
    struct stat status {};
    if (::fstat(from.number(), &status) != 0) return lastSystemError("stat");
    struct stat made {};
    if (::fstat(to.number(), &made) != 0) return lastSystemError("stat");
    bool const isOwned = ::fchown(to.number(), status.st_uid, status.st_gid) == 0 ||
                         (made.st_uid == status.st_uid && made.st_gid == status.st_gid);
    mode_t const mode = status.st_mode & 07777U;
    if (Result<void> const copied = copyAttributes(from, to); !copied.isDone()) return copied;
    if (::fchmod(to.number(), isOwned ? mode : withoutForeignPermissions(mode)) != 0) return lastSystemError("chmod");
    std::array<timespec, 2> const times{status.st_atim, status.st_mtim};
    if (::futimens(to.number(), times.data()) != 0) return lastSystemError("utimens");
    return {};
}

Result<void> copySpecial(FileDescriptor const& fromFolder, std::string const& from, FileDescriptor const& toFolder,
                         std::string const& to) {
    struct stat status {};
    if (::fstatat(fromFolder.number(), from.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return lastSystemError("stat", from);
    if (Result<void> const made = makeSpecial(fromFolder, from, status, toFolder, to); !made.isDone()) return made;
    bool const isOwned =
        ::fchownat(toFolder.number(), to.c_str(), status.st_uid, status.st_gid, AT_SYMLINK_NOFOLLOW) == 0;
    bool const getsMode = isOwned && !S_ISLNK(status.st_mode);
    if (getsMode && ::fchmodat(toFolder.number(), to.c_str(), status.st_mode & 07777U, 0) != 0)
        return lastSystemError("chmod", to);
    std::array<timespec, 2> const times{status.st_atim, status.st_mtim};
    if (::utimensat(toFolder.number(), to.c_str(), times.data(), AT_SYMLINK_NOFOLLOW) != 0)
        return lastSystemError("utimens", to);
    return {};
}

} // namespace mac
