#include "platform/system/LongPath.h"
#include "platform/system/BytePath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/ItemDates.h"
#include "platform/system/items/ItemIdentity.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

// The system takes paths with their NUL in PATH_MAX bytes.
constexpr std::size_t kLongestPiece = PATH_MAX - 1;
constexpr std::size_t kReadSize = std::size_t{128} << 10;

// A path short enough for the system, from an open folder or, if that is closed, from the current one.
struct ShortPath {
    FileDescriptor folder{};
    std::string path{};

    int folderNumber() const { return folder.isOpen() ? folder.number() : AT_FDCWD; }
};

SystemError tooLong(std::string_view path) {
    return {.code = ENAMETOOLONG, .operation = "open", .item = std::string(path)};
}

Result<ShortPath> shortened(std::string_view path) {
    std::string_view const whole = path;
    ShortPath result;
    while (path.size() > kLongestPiece) {
        std::size_t const slash = path.rfind('/', kLongestPiece - 1);
        if (slash == std::string_view::npos) return tooLong(whole);
        std::string const piece(path.substr(0, slash + 1));
        result.folder =
            FileDescriptor(::openat(result.folderNumber(), piece.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!result.folder.isOpen()) return lastSystemError("open", whole);
        // Slashes at the front would make the rest absolute.
        path.remove_prefix(std::min(path.find_first_not_of('/', slash), path.size()));
        if (path.empty()) path = ".";
    }
    result.path = path;
    return result;
}

std::int64_t nanoseconds(timespec const& time) { return nanosecondsOfDate(time.tv_sec, time.tv_nsec); }

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

SystemError notReadable(FileStatus::Kind kind, std::string_view path) {
    int code = EFBIG;
    if (kind == FileStatus::Kind::Folder) code = EISDIR;
    if (kind == FileStatus::Kind::Other) code = EINVAL;
    return {.code = code, .operation = "read", .item = std::string(path)};
}

Result<FileContents> readOpen(FileDescriptor const& file, std::size_t mostBytes, std::string_view path) {
    struct stat status {};
    if (::fstat(file.number(), &status) != 0) return lastSystemError("stat", path);
    FileContents contents{{}, statusOf(status)};
    if (contents.status.kind != FileStatus::Kind::File) return notReadable(contents.status.kind, path);

    // Reads to the end of the file, whatever size its status tells: some tell none, and some files grow meanwhile.
    std::array<std::byte, kReadSize> buffer;
    for (;;) {
        ssize_t const count = ::read(file.number(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return lastSystemError("read", path);
        if (count == 0) return contents;
        if (contents.bytes.size() + static_cast<std::size_t>(count) > mostBytes)
            return notReadable(contents.status.kind, path);
        contents.bytes.insert(contents.bytes.end(), buffer.begin(), buffer.begin() + count);
        bool const isShort = static_cast<std::size_t>(count) < buffer.size();
        if (isShort && contents.bytes.size() == contents.status.size) return contents;
    }
}

// The components of a path, the first one last, so that those of a link are put in front.
void pushComponents(std::vector<std::string>& components, BytePath path) {
    for (; !path.leaf().empty(); path = path.parent()) {
        if (path.leaf() != ".") components.emplace_back(path.leaf());
    }
}

// Empty for an item that is no symbolic link, or missing.
std::string linkTarget(std::string const& path) {
    BytePath const item(path);
    Result<FileDescriptor> const folder = openPath(item.parent(), O_PATH | O_DIRECTORY);
    return folder.hasValue() ? linkTextIn(folder.value(), std::string(item.leaf())).valueOr("") : std::string();
}

} // namespace

FileDescriptor::~FileDescriptor() {
    if (isOpen()) ::close(m_number);
}

Result<FileStatus> fileStatusAtPath(std::string_view path) {
    Result<ShortPath> const place = shortened(path);
    if (!place.hasValue()) return place.problem();
    struct stat status {};
    if (::fstatat(place.value().folderNumber(), place.value().path.c_str(), &status, 0) != 0)
        return lastSystemError("stat", path);
    return statusOf(status);
}

Result<FileStatus> fileStatusInFolder(FileDescriptor const& folder, std::string const& name) {
    struct stat status {};
    if (::fstatat(folder.number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return lastSystemError("stat", name);
    return statusOf(status);
}

Result<FileStatus> fileStatusOf(FileDescriptor const& file) {
    struct stat status {};
    if (::fstat(file.number(), &status) != 0) return lastSystemError("stat");
    return statusOf(status);
}

std::string resolvedPath(std::string const& path) {
    std::vector<std::string> components;
    pushComponents(components, path);
    std::string resolved = "/";
    unsigned links = 0;
    while (!components.empty()) {
        std::string const component = std::move(components.back());
        components.pop_back();
        if (component == "..") {
            resolved.resize(BytePath(resolved).parent().size());
            continue;
        }
        std::size_t const folderLength = resolved.size();
        appendComponent(resolved, component);
        std::string const target = linkTarget(resolved);
        if (target.empty()) continue;
        if (++links > MostLinksInPath) return path;
        resolved.resize(target.starts_with('/') ? 1 : folderLength);
        pushComponents(components, target);
    }
    return resolved;
}

bool pathExists(std::string const& path) { return fileStatusAtPath(path).hasValue(); }

Result<FileDescriptor> openPath(std::string_view path, int flags) {
    Result<ShortPath> const place = shortened(path);
    if (!place.hasValue()) return place.problem();
    FileDescriptor file(::openat(place.value().folderNumber(), place.value().path.c_str(), flags | O_CLOEXEC));
    if (!file.isOpen()) return lastSystemError("open", path);
    return file;
}

Result<FileContents> readFileAtPath(std::string_view path, std::size_t mostBytes) {
    Result<FileStatus> const expected = fileStatusAtPath(path);
    if (!expected.hasValue()) return expected.problem();
    if (expected.value().kind != FileStatus::Kind::File || expected.value().size > mostBytes)
        return notReadable(expected.value().kind, path);

    // Another file may have taken the place meanwhile.
    Result<FileDescriptor> const file = openPath(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!file.hasValue()) return file.problem();
    return readOpen(file.value(), mostBytes, path);
}

Result<FileContents> readOpenFile(FileDescriptor const& file, std::size_t mostBytes) {
    return readOpen(file, mostBytes, {});
}

namespace {

// Empty where the system itself finds no path: in a current folder that is gone, and past the longest path it takes.
std::string resolvedBySystem(std::string const& path) {
    std::unique_ptr<char, decltype(&std::free)> const resolved(::realpath(path.c_str(), nullptr), &std::free);
    return resolved ? resolved.get() : "";
}

// A relative path stays so in a current folder that is gone.
std::string madeAbsolute(BytePath path) {
    if (path.isAbsolute()) return std::string(path.bytes());
    return BytePath(resolvedBySystem(".")).joined(path.bytes());
}

bool leadsTo(std::string const& path, ItemIdentity const& item) {
    if (!BytePath(path).isAbsolute()) return false;
    Result<IdentifiedItem> const found = identifyAtPath(path, LinkAtEnd::IsNotFollowed);
    return found.hasValue() && found.value().identity == item;
}

// The path of the folder that the system opens, seen to lead to that very folder; empty if there is none.
std::string resolvedFolder(std::string const& path) {
    if (std::string resolved = resolvedBySystem(path); !resolved.empty()) return resolved;
    Result<FileDescriptor> const folder = openPath(path, O_PATH | O_DIRECTORY);
    if (!folder.hasValue()) return "";
    Result<IdentifiedItem> const opened = identify(folder.value());
    if (!opened.hasValue()) return "";
    std::string known = systemsPath(folder.value()).valueOr("");
    if (leadsTo(known, opened.value().identity)) return known;
    // Longer than the system tells.
    std::string followed = resolvedPath(madeAbsolute(path));
    return leadsTo(followed, opened.value().identity) ? followed : "";
}

bool namesNoItem(std::string_view leaf) { return leaf.empty() || leaf == "." || leaf == ".."; }

} // namespace

std::string physicalPath(std::string_view path) {
    if (path.empty()) return "";
    BytePath const given(path);
    if (namesNoItem(given.leaf())) {
        std::string const whole = resolvedFolder(std::string(given.bytes()));
        if (!whole.empty()) return whole;
    }
    std::string const parent(given.parent());
    std::string const folder = resolvedFolder(parent.empty() ? "." : parent);
    return folder.empty() ? madeAbsolute(given) : BytePath(folder).joined(given.leaf());
}

} // namespace mac
