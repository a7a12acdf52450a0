#include "platform/files/FileCopy.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/system/OpenItems.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace mac {

namespace {

// So much at a time, between looks whether to go on.
constexpr std::size_t PieceSize = std::size_t{8} << 20U;

bool writeAll(int file, char const* bytes, std::size_t size, off_t place) {
    while (size > 0) {
        ssize_t const count = ::pwrite(file, bytes, size, place);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes += count;
        size -= static_cast<std::size_t>(count);
        place += count;
    }
    return true;
}

// Where the system cannot copy by itself.
ssize_t copyPiece(int from, int to, off_t place, std::size_t size) {
    constexpr std::size_t bufferSize = std::size_t{256} << 10U;
    std::vector<char> buffer(std::min(size, bufferSize));
    ssize_t const count = ::pread(from, buffer.data(), buffer.size(), place);
    if (count <= 0) return count;
    return writeAll(to, buffer.data(), static_cast<std::size_t>(count), place) ? count : -1;
}

// Answers how far it came, which is less than to the end where the file ends before it.
std::optional<off_t> copyRange(int from, int to, off_t begin, off_t end, std::function<bool()> const& goesOn) {
    bool isBySystem = true;
    while (begin < end) {
        if (!goesOn()) {
            errno = ECANCELED;
            return std::nullopt;
        }
        std::size_t const size = std::min(static_cast<std::size_t>(end - begin), PieceSize);
        off_t source = begin;
        off_t target = begin;
        ssize_t count =
            isBySystem ? ::copy_file_range(from, &source, to, &target, size, 0) : copyPiece(from, to, begin, size);
        if (count < 0 && errno == EINTR) continue;
        bool const isRefused = count <= 0 && isBySystem;
        if (isRefused) {
            isBySystem = false;
            continue;
        }
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        begin += count;
    }
    return begin;
}

// What is behind the size that the volume tells. Answers where the file really ends.
std::optional<off_t> copyRest(int from, int to, off_t begin, std::function<bool()> const& goesOn) {
    while (true) {
        ssize_t const count = copyPiece(from, to, begin, PieceSize);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) return begin;
        begin += count;
        if (goesOn()) continue;
        errno = ECANCELED;
        return std::nullopt;
    }
}

bool isForPeople(std::string_view attribute) { return attribute.starts_with("user."); }

bool setAttribute(FileDescriptor const& to, std::string const& path, std::string const& name,
                  std::vector<char> const& value) {
    if (::fsetxattr(to.number(), name.c_str(), value.data(), value.size(), 0) == 0) return true;
    // What belongs to the system of one volume means nothing on another one.
    if (!isForPeople(name)) return true;
    return mac::setxattr(path.c_str(), name.c_str() + sizeof "user." - 1, value.data(), value.size(), 0, 0) == 0;
}

bool copyAttributes(FileDescriptor const& from, FileDescriptor const& to, std::string const& path) {
    ssize_t const size = ::flistxattr(from.number(), nullptr, 0);
    if (size <= 0) return size == 0 || errno == ENOTSUP;
    std::vector<char> names(static_cast<std::size_t>(size));
    ssize_t const listed = ::flistxattr(from.number(), names.data(), names.size());
    if (listed < 0) return false;
    std::string_view rest(names.data(), static_cast<std::size_t>(listed));
    while (!rest.empty()) {
        std::string const name(rest.substr(0, rest.find('\0')));
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
        ssize_t const length = ::fgetxattr(from.number(), name.c_str(), nullptr, 0);
        std::vector<char> value(length > 0 ? static_cast<std::size_t>(length) : 0);
        ssize_t const read = length < 0 ? -1 : ::fgetxattr(from.number(), name.c_str(), value.data(), value.size());
        bool const isRead = read == length && length >= 0;
        if (!isRead && isForPeople(name)) return false;
        if (isRead && !setAttribute(to, path, name, value)) return false;
    }
    return true;
}

} // namespace

bool copyContents(FileDescriptor const& from, FileDescriptor const& to, std::function<bool()> const& goesOn) {
    struct stat status {};
    if (::fstat(from.number(), &status) != 0) return false;
    off_t place = 0;
    // The volume may tell too large a size.
    off_t knownEnd = status.st_size;
    while (place < knownEnd) {
        off_t const begin = ::lseek(from.number(), place, SEEK_DATA);
        bool const isEnd = begin < 0 && errno == ENXIO;
        if (isEnd) break;
        // A volume that does not know its holes.
        off_t const data = begin < 0 ? place : begin;
        off_t const hole = begin < 0 ? -1 : ::lseek(from.number(), data, SEEK_HOLE);
        off_t const end = hole < 0 ? knownEnd : hole;
        std::optional<off_t> const reached = copyRange(from.number(), to.number(), data, end, goesOn);
        if (!reached) return false;
        place = *reached;
        if (place < end) knownEnd = place;
    }
    struct stat now {};
    if (::fstat(from.number(), &now) != 0) return false;
    // Cut while it was copied: what came of it is neither.
    if (now.st_size < status.st_size) {
        errno = ESTALE;
        return false;
    }
    std::optional<off_t> const end = copyRest(from.number(), to.number(), knownEnd, goesOn);
    return end && ::ftruncate(to.number(), *end) == 0;
}

bool copyMetadata(FileDescriptor const& from, FileDescriptor const& to, std::string const& path) {
    struct stat status {};
    if (::fstat(from.number(), &status) != 0) return false;
    mode_t mode = status.st_mode & 07777U;
    struct stat made {};
    if (::fstat(to.number(), &made) != 0) return false;
    bool const isOwned = ::fchown(to.number(), status.st_uid, status.st_gid) == 0 ||
                         (made.st_uid == status.st_uid && made.st_gid == status.st_gid);
    // Another owner and group get no rights that were meant for the first ones.
    if (!isOwned) {
        constexpr unsigned groupShift = 3;
        mode &= ~(S_ISUID | S_ISGID);
        mode &= ~S_IRWXG | (mode & S_IRWXO) << groupShift;
    }
    if (!copyAttributes(from, to, path)) return false;
    if (::fchmod(to.number(), mode) != 0) return false;
    std::array<timespec, 2> const times{status.st_atim, status.st_mtim};
    return ::futimens(to.number(), times.data()) == 0;
}

bool copySpecial(FileDescriptor const& fromFolder, std::string const& from, FileDescriptor const& toFolder,
                 std::string const& to) {
    struct stat status {};
    if (::fstatat(fromFolder.number(), from.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
    if (S_ISLNK(status.st_mode)) {
        std::optional<std::string> const target = linkTextIn(fromFolder, from);
        if (!target || ::symlinkat(target->c_str(), toFolder.number(), to.c_str()) != 0) return false;
    } else {
        constexpr mode_t ownerAlone = S_IRUSR | S_IWUSR;
        mode_t const kind = status.st_mode & S_IFMT;
        if (::mknodat(toFolder.number(), to.c_str(), kind | (status.st_mode & ownerAlone), status.st_rdev) != 0)
            return false;
    }
    bool const isOwned =
        ::fchownat(toFolder.number(), to.c_str(), status.st_uid, status.st_gid, AT_SYMLINK_NOFOLLOW) == 0;
    bool const getsMode = isOwned && !S_ISLNK(status.st_mode);
    if (getsMode && ::fchmodat(toFolder.number(), to.c_str(), status.st_mode & 07777U, 0) != 0) return false;
    std::array<timespec, 2> const times{status.st_atim, status.st_mtim};
    return ::utimensat(toFolder.number(), to.c_str(), times.data(), AT_SYMLINK_NOFOLLOW) == 0;
}

} // namespace mac
