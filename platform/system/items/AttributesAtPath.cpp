#include "platform/system/items/AttributesAtPath.h"
#include "platform/system/BytePath.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/ItemLock.h"
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace mac {

namespace {

// Holds the names of most items.
constexpr std::size_t UsualListSize = 1024;

bool needsItsValue(AttributeName const& name) { return name.isFinderInformation() || name.isResourceFork(); }

bool isFileOrFolder(char const* path) {
    struct stat status {};
    return ::lstat(path, &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
}

// Whether the last component of the path is the item's own name.
bool endsInName(std::string_view path) {
    std::string_view const leaf = path.substr(path.rfind('/') + 1);
    return !leaf.empty() && leaf != "." && leaf != "..";
}

bool hasNoSidecar(std::string_view path) {
    std::size_t const start = path.rfind('/') + 1;
    std::string sidecar(path.substr(0, start));
    sidecar.append(AppleDoubleSidecar::namePrefix).append(path.substr(start));
    struct stat status {};
    return ::lstat(sidecar.c_str(), &status) != 0 && errno == ENOENT;
}

} // namespace

std::optional<std::size_t> valueAtPath(char const* path, AttributeName const& name, std::span<std::byte> bytes,
                                       LinkAtEnd linkAtEnd) {
    if (needsItsValue(name) || name.onSystem.empty()) return std::nullopt;
    auto const read = linkAtEnd == LinkAtEnd::IsFollowed ? &::getxattr : &::lgetxattr;
    ssize_t const length = read(path, name.onSystem.c_str(), bytes.data(), bytes.size());
    return length < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(length));
}

std::optional<std::vector<std::string>> namesAtPath(char const* path) {
    if (!endsInName(path)) return std::nullopt;
    std::array<char, UsualListSize> list;
    ssize_t const length = ::llistxattr(path, list.data(), list.size());
    if (length < 0) return std::nullopt;
    std::vector<std::string> names = userNamesIn({list.data(), static_cast<std::size_t>(length)});
    for (std::string const& name : names) {
        if (name == LockedAttribute || needsItsValue(AttributeName(name))) return std::nullopt;
    }
    // A symbolic link has no attributes of this kind.
    bool const isNoLink = !names.empty() || isFileOrFolder(path);
    if (!isNoLink || !hasNoSidecar(path)) return std::nullopt;
    return names;
}

} // namespace mac
