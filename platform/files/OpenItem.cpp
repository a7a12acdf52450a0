#include "platform/files/OpenItem.h"
#include "platform/foundation/LongPath.h"
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

// As many as the kernel follows in one path.
constexpr unsigned MostLinks = 40;
constexpr int FolderFlags = O_PATH | O_DIRECTORY;

// "a/b/./" means the folder a/b.
std::string_view withoutEmptyEnd(std::string_view path) {
    for (;;) {
        bool const hasSlash = path.size() > 1 && path.ends_with('/');
        bool const hasDot = path.size() > 2 && path.ends_with("/.");
        if (!hasSlash && !hasDot) return path;
        path.remove_suffix(1);
    }
}

std::optional<std::string> linkTarget(int folder, std::string const& name) {
    std::array<char, PATH_MAX> target;
    ssize_t const length = ::readlinkat(folder, name.c_str(), target.data(), target.size());
    if (length < 0) return std::nullopt;
    return std::string(target.data(), static_cast<std::size_t>(length));
}

std::string pathOfDescriptor(FileDescriptor const& descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor.number());
}

bool isSameItem(FileDescriptor const& a, FileDescriptor const& b) {
    struct stat first {};
    struct stat second {};
    return ::fstat(a.number(), &first) == 0 && ::fstat(b.number(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

// "/", "." and "..": the path does not tell the name, but the system may.
std::optional<OpenItem> openNameless(std::string const& path) {
    OpenItem item{.item = openPath(path, FolderFlags)};
    if (!item.item.isOpen()) return std::nullopt;
    std::optional<std::string> const place = linkTarget(AT_FDCWD, pathOfDescriptor(item.item));
    std::size_t const slash = place ? place->rfind('/') : std::string::npos;
    if (slash == std::string::npos || slash + 1 == place->size()) return item;
    FileDescriptor folder = openPath(place->substr(0, slash + 1), FolderFlags);
    FileDescriptor found(::openat(folder.number(), place->c_str() + slash + 1, FolderFlags | O_NOFOLLOW | O_CLOEXEC));
    if (!isSameItem(found, item.item)) return item;
    return OpenItem{std::move(folder), std::move(found), place->substr(slash + 1)};
}

bool isNameless(std::string_view name) { return name.empty() || name == "." || name == ".."; }

} // namespace

std::string OpenItem::systemPath() const { return pathOfDescriptor(item); }

std::optional<OpenItem> openItemAtPath(std::string_view givenPath, bool followsLinks) {
    std::string path(givenPath);
    for (unsigned links = 0; links <= MostLinks; ++links) {
        std::string_view const whole = withoutEmptyEnd(path);
        bool const isFolder = whole.size() < path.size();
        std::size_t const slash = whole.rfind('/');
        std::string const name(whole.substr(slash == std::string::npos ? 0 : slash + 1));
        if (isNameless(name)) return openNameless(std::string(whole));

        std::string const parent(slash == std::string::npos ? "." : whole.substr(0, slash + 1));
        OpenItem item{.folder = openPath(parent, FolderFlags), .name = name};
        if (!item.folder.isOpen()) return std::nullopt;
        std::optional<std::string> const target =
            followsLinks || isFolder ? linkTarget(item.folder.number(), name) : std::nullopt;
        if (!target) {
            int const flags = O_PATH | O_NOFOLLOW | O_CLOEXEC | (isFolder ? O_DIRECTORY : 0);
            item.item = FileDescriptor(::openat(item.folder.number(), name.c_str(), flags));
            return item.item.isOpen() ? std::optional(std::move(item)) : std::nullopt;
        }
        path = (target->starts_with('/') ? "" : parent + "/") + *target + (isFolder ? "/" : "");
    }
    errno = ELOOP;
    return std::nullopt;
}

} // namespace mac
