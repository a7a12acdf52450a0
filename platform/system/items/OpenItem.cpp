#include "platform/system/items/OpenItem.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/ItemIdentity.h"
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace mac {

namespace {

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

bool leadToOneItem(FileDescriptor const& a, FileDescriptor const& b) {
    struct stat first {};
    struct stat second {};
    return ::fstat(a.number(), &first) == 0 && ::fstat(b.number(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

// Opens "/", "." or "..": the path does not tell the name, but the system may.
Result<OpenItem> openNameless(std::string_view given) {
    Result<FileDescriptor> opened = openPath(given, FolderFlags);
    if (!opened.hasValue()) return opened.problem();
    OpenItem item{.item = opened.takeValue()};
    std::string const path = systemsPath(item.item).valueOr("");
    std::string name(BytePath(path).leaf());
    if (name.empty()) return item;
    Result<FileDescriptor> folder = openPath(BytePath(path).parent(), FolderFlags);
    if (!folder.hasValue()) return item;
    FileDescriptor found(::openat(folder.value().number(), name.c_str(), FolderFlags | O_NOFOLLOW | O_CLOEXEC));
    if (!leadToOneItem(found, item.item)) return item;
    return OpenItem{folder.takeValue(), std::move(found), std::move(name)};
}

bool isNameless(std::string_view name) { return name.empty() || name == "." || name == ".."; }

struct OpenedName {
    OpenItem item{};
    mode_t mode{0};
};

// Opens the item of the name in the folder at a path; a symbolic link itself.
Result<OpenedName> openName(std::string const& folderPath, std::string const& name) {
    Result<FileDescriptor> folder = openPath(folderPath, FolderFlags);
    if (!folder.hasValue()) return folder.problem();
    OpenedName opened{.item = {.folder = folder.takeValue(), .name = name}};
    int const flags = O_PATH | O_NOFOLLOW | O_CLOEXEC;
    opened.item.item = FileDescriptor(::openat(opened.item.folder.number(), name.c_str(), flags));
    if (!opened.item.item.isOpen()) return lastSystemError("open", name);
    struct stat status {};
    if (::fstat(opened.item.item.number(), &status) != 0) return lastSystemError("stat", name);
    opened.mode = status.st_mode;
    return opened;
}

} // namespace

std::string OpenItem::systemPath() const { return descriptorPath(item); }

Result<OpenItem> openItemAtPath(std::string_view givenPath, LinkAtEnd linkAtEnd) {
    std::string path(givenPath);
    for (unsigned links = 0; links <= MostLinksInPath; ++links) {
        std::string_view const whole = withoutEmptyEnd(path);
        bool const isFolder = whole.size() < path.size();
        std::string const name(BytePath(whole).leaf());
        if (isNameless(name)) return openNameless(whole);

        std::string const parent(BytePath(whole).parent().empty() ? "." : BytePath(whole).parent());
        Result<OpenedName> opened = openName(parent, name);
        if (!opened.hasValue()) return opened.problem();
        bool const isLink = S_ISLNK(opened.value().mode);
        if (!isLink && isFolder && !S_ISDIR(opened.value().mode))
            return SystemError{.code = ENOTDIR, .operation = "open", .item = path};
        if (!isLink || (linkAtEnd == LinkAtEnd::IsNotFollowed && !isFolder)) return std::move(opened.value().item);
        Result<std::string> const target = linkText(opened.value().item.item);
        if (!target.hasValue()) return target.problem();
        std::string const& text = target.value();
        path = BytePath(text).isAbsolute() ? text : BytePath(parent).joined(text);
        if (isFolder) path += '/';
    }
    return SystemError{.code = ELOOP, .operation = "open", .item = std::string(givenPath)};
}

Result<OpenItem> openItemInItsFolder(FileDescriptor const& item) {
    Result<std::string> const path = systemsPath(item);
    if (!path.hasValue()) return path.problem();
    Result<OpenItem> found = openItemAtPath(path.value(), LinkAtEnd::IsNotFollowed);
    if (!found.hasValue()) return found;
    Result<IdentifiedItem> const expected = identify(item);
    if (!expected.hasValue()) return expected.problem();
    Result<IdentifiedItem> const there = identify(found.value().item);
    if (!there.hasValue()) return there.problem();
    if (there.value().identity == expected.value().identity) return found;
    return SystemError{.code = ESTALE, .operation = "open", .item = path.value()};
}

} // namespace mac
