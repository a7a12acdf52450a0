#include "platform/system/items/AttributesOnItem.h"
#include "platform/system/BytePath.h"
#include "platform/system/items/AppleDouble.h"
#include "platform/system/items/AppleDoubleForm.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/ItemLock.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace mac {

namespace {

constexpr std::string_view Namespace = "user.";
// The system's limits for a name, and for the names of an item together.
constexpr std::size_t LongestSystemName = 255;
constexpr std::size_t LargestSystemList = 65536;
// Holds what most attributes carry.
constexpr std::size_t UsualSize = 4096;

SystemError missing(AttributeName const& name) {
    return {.code = ENODATA, .operation = "getxattr", .item = name.shown};
}

std::string systemName(std::string_view name) {
    bool const fits = Namespace.size() + name.size() <= LongestSystemName;
    return fits ? std::string(Namespace).append(name) : std::string();
}

// Reads into the bytes and answers the length; without bytes, the length alone.
Result<std::size_t> readSystem(OpenItem const& item, AttributeName const& name, std::span<std::byte> bytes) {
    if (name.onSystem.empty()) return missing(name);
    ssize_t const length = ::getxattr(item.systemPath().c_str(), name.onSystem.c_str(), bytes.data(), bytes.size());
    if (length < 0) return lastSystemError("getxattr", name.shown);
    return static_cast<std::size_t>(length);
}

} // namespace

AttributeName::AttributeName(std::string_view name) : shown(name), onSystem(systemName(name)) {}

Result<AttributeName> AttributeName::make(std::string_view name) {
    bool const isText = !name.empty() && name.find('\0') == std::string_view::npos;
    if (!isText) return SystemError{.code = EINVAL, .operation = "getxattr", .item = std::string(name)};
    if (name.size() > appledouble::LongestName)
        return SystemError{.code = ENAMETOOLONG, .operation = "getxattr", .item = std::string(name)};
    return AttributeName(name);
}

bool AttributeName::isFinderInformation() const { return shown == XATTR_FINDERINFO_NAME; }

bool AttributeName::isResourceFork() const { return shown == XATTR_RESOURCEFORK_NAME; }

bool AttributeName::accepts(std::size_t size) const {
    return !isFinderInformation() || size == AppleDouble::FinderInformationSize;
}

bool AttributeName::isNothing(std::span<std::byte const> value) const {
    if (isResourceFork()) return value.empty();
    return isFinderInformation() && value.size() == AppleDouble::FinderInformationSize &&
           std::ranges::all_of(value, [](std::byte byte) { return byte == std::byte{0}; });
}

bool holdsNothing(OpenItem const& item, AttributeName const& name) {
    if (!name.isFinderInformation() && !name.isResourceFork()) return false;
    AppleDouble::FinderInformation bytes{};
    Result<std::size_t> const length = readSystem(item, name, bytes);
    return length.hasValue() && name.isNothing(std::span(bytes).first(length.value()));
}

Result<std::size_t> sizeOnItem(OpenItem const& item, AttributeName const& name) {
    if (holdsNothing(item, name)) return missing(name);
    return readSystem(item, name, {});
}

Result<std::vector<std::byte>> valueOnItem(OpenItem const& item, AttributeName const& name) {
    if (holdsNothing(item, name)) return missing(name);
    std::vector<std::byte> value(UsualSize);
    Result<std::size_t> length = readSystem(item, name, value);
    // Another process may write a longer value between the two calls.
    while (!length.hasValue() && length.problem().is(ERANGE)) {
        Result<std::size_t> const size = readSystem(item, name, {});
        if (!size.hasValue()) return size.problem();
        value.resize(std::max<std::size_t>(size.value(), 1));
        length = readSystem(item, name, value);
    }
    if (!length.hasValue()) return length.problem();
    value.resize(length.value());
    return value;
}

Result<void> removeOnItem(OpenItem const& item, AttributeName const& name) {
    if (name.onSystem.empty()) return missing(name);
    if (::removexattr(item.systemPath().c_str(), name.onSystem.c_str()) != 0)
        return lastSystemError("removexattr", name.shown);
    return {};
}

Result<void> writeOnItem(OpenItem const& item, AttributeName const& name, std::span<std::byte const> value, int flags) {
    if (name.onSystem.empty()) return SystemError{.code = E2BIG, .operation = "setxattr", .item = name.shown};
    if (::setxattr(item.systemPath().c_str(), name.onSystem.c_str(), value.data(), value.size(), flags) != 0)
        return lastSystemError("setxattr", name.shown);
    return {};
}

std::vector<std::string> userNamesIn(std::string_view list) {
    std::vector<std::string> names;
    while (!list.empty()) {
        std::string_view const name = list.substr(0, list.find('\0'));
        if (name.size() > Namespace.size() && name.starts_with(Namespace))
            names.emplace_back(name.substr(Namespace.size()));
        list.remove_prefix(std::min(name.size() + 1, list.size()));
    }
    return names;
}

Result<std::vector<std::string>> namesOnItem(OpenItem const& item) {
    std::string const path = item.systemPath();
    std::array<char, UsualSize> usual;
    std::vector<char> large;
    std::span<char> list(usual);
    ssize_t length = ::listxattr(path.c_str(), list.data(), list.size());
    if (length < 0 && errno == ERANGE) {
        large.resize(LargestSystemList);
        list = large;
        length = ::listxattr(path.c_str(), list.data(), list.size());
    }
    if (length < 0) {
        SystemError error = lastSystemError("listxattr", item.name);
        if (error.is(EOPNOTSUPP)) return std::vector<std::string>();
        return error;
    }
    std::vector<std::string> names = userNamesIn({list.data(), static_cast<std::size_t>(length)});
    std::erase_if(names, [&](std::string const& name) { return holdsNothing(item, AttributeName(name)); });
    return names;
}

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
