#include "platform/system/items/OpenItem.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

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
    std::optional<std::string> const place = systemsPath(item.item);
    SplitPath parts = splitPath(place.value_or(""));
    if (parts.name.empty()) return item;
    FileDescriptor folder = openPath(parts.folder, FolderFlags);
    FileDescriptor found(::openat(folder.number(), parts.name.c_str(), FolderFlags | O_NOFOLLOW | O_CLOEXEC));
    if (!isSameItem(found, item.item)) return item;
    return OpenItem{std::move(folder), std::move(found), std::move(parts.name)};
}

bool isNameless(std::string_view name) { return name.empty() || name == "." || name == ".."; }

} // namespace

std::string OpenItem::systemPath() const { return descriptorPath(item); }

std::optional<OpenItem> openItemAtPath(std::string_view givenPath, bool followsLinks) {
    std::string path(givenPath);
    for (unsigned links = 0; links <= MostLinks; ++links) {
        std::string_view const whole = withoutEmptyEnd(path);
        bool const isFolder = whole.size() < path.size();
        SplitPath parts = splitPath(whole);
        if (isNameless(parts.name)) return openNameless(std::string(whole));

        std::string const parent = parts.folder.empty() ? "./" : std::move(parts.folder);
        OpenItem item{.folder = openPath(parent, FolderFlags), .name = std::move(parts.name)};
        if (!item.folder.isOpen()) return std::nullopt;
        int const flags = O_PATH | O_NOFOLLOW | O_CLOEXEC;
        item.item = FileDescriptor(::openat(item.folder.number(), item.name.c_str(), flags));
        struct stat status {};
        if (!item.item.isOpen() || ::fstat(item.item.number(), &status) != 0) return std::nullopt;
        bool const isLink = S_ISLNK(status.st_mode);
        if (!isLink && isFolder && !S_ISDIR(status.st_mode)) {
            errno = ENOTDIR;
            return std::nullopt;
        }
        if (!isLink || (!followsLinks && !isFolder)) return item;
        std::optional<std::string> const target = linkText(item.item);
        if (!target) return std::nullopt;
        path = (target->starts_with('/') ? "" : parent) + *target + (isFolder ? "/" : "");
    }
    errno = ELOOP;
    return std::nullopt;
}

} // namespace mac
