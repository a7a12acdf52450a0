#include "platform/system/LongPath.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace mac {

namespace {

// The system takes paths with their NUL in PATH_MAX bytes.
constexpr std::size_t kLongestPiece = PATH_MAX - 1;
constexpr std::size_t kReadSize = std::size_t{128} << 10;

// A folder, none for the current one, and the path from there, which is short enough for the system.
struct ShortPath {
    FileDescriptor folder{};
    std::string path{};
    bool isValid{false};

    int folderNumber() const { return folder.isOpen() ? folder.number() : AT_FDCWD; }
};

ShortPath shortened(std::string_view path) {
    ShortPath result;
    while (path.size() > kLongestPiece) {
        std::size_t const slash = path.rfind('/', kLongestPiece - 1);
        if (slash == std::string_view::npos) {
            errno = ENAMETOOLONG;
            return result;
        }
        std::string const piece(path.substr(0, slash + 1));
        result.folder =
            FileDescriptor(::openat(result.folderNumber(), piece.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!result.folder.isOpen()) return result;
        // More slashes would make the rest absolute.
        path.remove_prefix(std::min(path.find_first_not_of('/', slash), path.size()));
        if (path.empty()) path = ".";
    }
    result.path = path;
    result.isValid = true;
    return result;
}

std::int64_t nanoseconds(timespec const& time) { return std::int64_t{time.tv_sec} * 1000000000 + time.tv_nsec; }

FileStatus statusOf(struct stat const& status) {
    FileStatus result;
    if (S_ISREG(status.st_mode)) result.kind = FileStatus::Kind::File;
    if (S_ISDIR(status.st_mode)) result.kind = FileStatus::Kind::Folder;
    result.device = status.st_dev;
    result.inode = status.st_ino;
    result.size = static_cast<std::uint64_t>(status.st_size);
    result.modified = nanoseconds(status.st_mtim);
    result.changed = nanoseconds(status.st_ctim);
    return result;
}

Failure systemFailure() { return {std::generic_category().message(errno)}; }

Failure complaintAbout(FileStatus const& status) {
    if (status.kind == FileStatus::Kind::Folder) return {"It is a folder"};
    if (status.kind == FileStatus::Kind::Other) return {"It is no regular file"};
    return {"It is too large"};
}

} // namespace

FileDescriptor::~FileDescriptor() {
    if (isOpen()) ::close(m_number);
}

std::optional<FileStatus> fileStatusAtPath(std::string_view path) {
    ShortPath const place = shortened(path);
    struct stat status {};
    if (!place.isValid || ::fstatat(place.folderNumber(), place.path.c_str(), &status, 0) != 0) return std::nullopt;
    return statusOf(status);
}

std::optional<FileStatus> fileStatusInFolder(FileDescriptor const& folder, std::string const& name) {
    struct stat status {};
    if (::fstatat(folder.number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
    return statusOf(status);
}

std::optional<FileStatus> fileStatusOf(FileDescriptor const& file) {
    struct stat status {};
    return ::fstat(file.number(), &status) == 0 ? std::optional(statusOf(status)) : std::nullopt;
}

FileDescriptor openPath(std::string_view path, int flags) {
    ShortPath const place = shortened(path);
    if (!place.isValid) return {};
    return FileDescriptor(::openat(place.folderNumber(), place.path.c_str(), flags | O_CLOEXEC));
}

Result<FileContents, Failure> readFileAtPath(std::string_view path, std::size_t mostBytes) {
    std::optional<FileStatus> const expected = fileStatusAtPath(path);
    if (!expected) return systemFailure();
    if (expected->kind != FileStatus::Kind::File || expected->size > mostBytes) return complaintAbout(*expected);

    // Another file may have taken the place meanwhile.
    FileDescriptor const file = openPath(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    return file.isOpen() ? readOpenFile(file, mostBytes) : systemFailure();
}

Result<FileContents, Failure> readOpenFile(FileDescriptor const& file, std::size_t mostBytes) {
    struct stat status {};
    if (::fstat(file.number(), &status) != 0) return systemFailure();
    FileContents contents{{}, statusOf(status)};
    if (contents.status.kind != FileStatus::Kind::File) return complaintAbout(contents.status);

    // Until its end, whatever size it claims to have.
    std::array<std::byte, kReadSize> buffer;
    for (;;) {
        ssize_t const count = ::read(file.number(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return systemFailure();
        if (count == 0) return contents;
        if (contents.bytes.size() + static_cast<std::size_t>(count) > mostBytes) return Failure{"It is too large"};
        contents.bytes.insert(contents.bytes.end(), buffer.begin(), buffer.begin() + count);
    }
}

} // namespace mac
