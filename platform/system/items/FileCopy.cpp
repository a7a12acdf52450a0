#include "platform/system/items/FileCopy.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/ItemAccess.h"
#include "platform/system/items/ItemAttributes.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::string_view UserNamespace = "user.";
// The system forgets what a program may do when its owner changes, so these come last.
constexpr std::string_view SecurityNamespace = "security.";
constexpr std::uint32_t ReadAndWriteByAll = 0666;

bool isUserAttribute(std::string_view name) { return name.starts_with(UserNamespace); }

// The system's names of a file's or folder's attributes; empty if its volume has none.
Result<std::vector<std::string>> attributeNames(FileDescriptor const& item) {
    // What the system hands out at most.
    constexpr std::size_t largestList = 65536;
    static thread_local std::vector<char> list(largestList);
    std::vector<std::string> names;
    ssize_t const size = ::flistxattr(item.number(), list.data(), list.size());
    if (size < 0) {
        SystemError error = lastSystemError("listxattr");
        if (error.is(ENOTSUP)) return names;
        return error;
    }
    std::string_view rest(list.data(), static_cast<std::size_t>(size));
    while (!rest.empty()) {
        names.emplace_back(rest.substr(0, rest.find('\0')));
        rest.remove_prefix(std::min(names.back().size() + 1, rest.size()));
    }
    return names;
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

FileDescriptor openName(FileDescriptor const& folder, std::string const& name, int flags) {
    return FileDescriptor(::openat(folder.number(), name.c_str(), O_PATH | O_CLOEXEC | flags));
}

Result<void> writeBeside(CopyTarget const& to, std::string const& name, std::span<std::byte const> value) {
    Result<AttributeName> const shown = AttributeName::make(std::string_view(name).substr(UserNamespace.size()));
    if (!shown.hasValue()) return shown.problem();
    OpenItem const item{.folder = openName(to.folder, ".", O_DIRECTORY),
                        .item = openName(to.folder, to.name, O_NOFOLLOW),
                        .name = to.name};
    if (!item.folder.isOpen() || !item.item.isOpen()) return lastSystemError("open", to.name);
    return writeAttribute(item, shown.value(), value);
}

enum class AttributeKinds { BeforeAccess, AfterAccess };

bool isOfKind(std::string_view name, AttributeKinds kinds) {
    if (name == AccessListAttribute) return false;
    return name.starts_with(SecurityNamespace) == (kinds == AttributeKinds::AfterAccess);
}

// Where the first attribute goes that the file system cannot hold.
Result<AttributesBeside> placeBeside(CopyTarget const& to) {
    Result<ItemPlace> const sidecar = placeOf(to.folder, AppleDoubleSidecar::nameFor(to.name));
    if (sidecar.hasValue()) return AttributesBeside::InCopiedSidecar;
    if (sidecar.problem().is(ENOENT) || sidecar.problem().is(ENAMETOOLONG)) return AttributesBeside::InNewSidecar;
    return sidecar.problem();
}

Result<AttributesBeside> copyAttributes(std::vector<std::string> const& names, AttributeKinds kinds,
                                        FileDescriptor const& from, CopyTarget const& to) {
    AttributesBeside beside = AttributesBeside::None;
    for (std::string const& name : names) {
        if (!isOfKind(name, kinds)) continue;
        Result<std::vector<std::byte>> const value = attributeOf(from, name);
        if (!value.hasValue() && isUserAttribute(name)) return value.problem();
        if (!value.hasValue()) continue;
        std::span<std::byte const> const bytes = value.value();
        if (::fsetxattr(to.item.number(), name.c_str(), bytes.data(), bytes.size(), 0) == 0) continue;
        // An attribute of the system of one volume means nothing on another one.
        if (!isUserAttribute(name)) continue;
        if (beside == AttributesBeside::None) {
            Result<AttributesBeside> const where = placeBeside(to);
            if (!where.hasValue()) return where;
            beside = where.value();
        }
        if (Result<void> const written = writeBeside(to, name, bytes); !written.isDone()) return written.problem();
    }
    return beside;
}

// Gives the new sidecar of a copy its owner, group, permissions and access list.
Result<void> alignSidecar(CopyTarget const& to) {
    Result<ItemAccess> access = accessOf(to.item);
    if (!access.hasValue()) return access.problem();
    FileDescriptor const sidecar = openName(to.folder, AppleDoubleSidecar::nameFor(to.name), O_NOFOLLOW);
    if (!sidecar.isOpen()) {
        SystemError error = lastSystemError("open", to.name);
        // The attribute found a place on the item after all.
        return error.is(ENOENT) ? Result<void>() : error;
    }
    access.value().permissions &= ReadAndWriteByAll;
    return giveAccess(sidecar, access.value(), InheritedList::IsRemoved);
}

Result<ItemAccess> accessToCopy(std::vector<std::string> const& names, FileDescriptor const& from,
                                ItemStatus const& status) {
    if (std::ranges::find(names, AccessListAttribute) != names.end()) return accessOf(from);
    return ItemAccess{.owner = status.place.owner, .group = status.group, .permissions = status.permissions()};
}

std::array<timespec, 2> timesOf(ItemStatus const& status) { return {status.accessTime, status.modificationTime}; }

// Makes the symbolic link or the special file, for the owner alone.
Result<void> makeSpecial(FileDescriptor const& from, ItemStatus const& status, FileDescriptor const& folder,
                         std::string const& name) {
    if (!status.isSymbolicLink()) {
        mode_t const kind = status.place.mode & S_IFMT;
        if (::mknodat(folder.number(), name.c_str(), kind | S_IRUSR | S_IWUSR, status.deviceNumber) != 0)
            return lastSystemError("mknod", name);
        return {};
    }
    Result<std::string> const target = linkText(from);
    if (!target.hasValue()) return target.problem();
    if (::symlinkat(target.value().c_str(), folder.number(), name.c_str()) != 0)
        return lastSystemError("symlink", name);
    return {};
}

// Whether the open item can be the one that has just been made like the original.
bool isNewSpecial(ItemStatus const& made, ItemStatus const& original) {
    return (made.place.mode & S_IFMT) == (original.place.mode & S_IFMT) && made.deviceNumber == original.deviceNumber &&
           made.links == 1;
}

} // namespace

Result<AttributesBeside> copyMetadata(FileDescriptor const& from, ItemStatus const& status, CopyTarget const& to) {
    Result<std::vector<std::string>> const names = attributeNames(from);
    if (!names.hasValue()) return names.problem();
    Result<AttributesBeside> const beside = copyAttributes(names.value(), AttributeKinds::BeforeAccess, from, to);
    if (!beside.hasValue()) return beside;
    Result<ItemAccess> const access = accessToCopy(names.value(), from, status);
    if (!access.hasValue()) return access.problem();
    if (Result<void> const given = giveAccess(to.item, access.value(), InheritedList::IsRemoved); !given.isDone())
        return given.problem();
    if (beside.value() == AttributesBeside::InNewSidecar) {
        if (Result<void> const aligned = alignSidecar(to); !aligned.isDone()) return aligned.problem();
    }
    Result<AttributesBeside> const last = copyAttributes(names.value(), AttributeKinds::AfterAccess, from, to);
    if (!last.hasValue()) return last;
    if (::futimens(to.item.number(), timesOf(status).data()) != 0) return lastSystemError("utimens", to.name);
    return beside;
}

Result<void> copySpecial(FileDescriptor const& from, ItemStatus const& status, FileDescriptor const& folder,
                         std::string const& name, CopySteps const& steps) {
    if (Result<void> const made = makeSpecial(from, status, folder, name); !made.isDone()) return made;
    if (steps) steps(CopyStep::SpecialMade);
    FileDescriptor const item = openName(folder, name, O_NOFOLLOW);
    if (!item.isOpen()) return lastSystemError("open", name);
    Result<ItemStatus> const made = statusOf(item);
    if (!made.hasValue()) return made.problem();
    if (!isNewSpecial(made.value(), status)) return SystemError{.code = ESTALE, .operation = "open", .item = name};
    if (steps) steps(CopyStep::SpecialOpened);
    if (status.isSymbolicLink()) {
        // Its permissions mean nothing, and its owner little: only root may give it away.
        static_cast<void>(::fchownat(item.number(), "", status.place.owner, status.group, AT_EMPTY_PATH));
    } else {
        Result<ItemAccess> const access = accessOf(from);
        if (!access.hasValue()) return access.problem();
        if (Result<void> const given = giveAccess(item, access.value(), InheritedList::IsRemoved); !given.isDone())
            return given;
    }
    if (::utimensat(item.number(), "", timesOf(status).data(), AT_EMPTY_PATH) != 0)
        return lastSystemError("utimens", name);
    return {};
}

} // namespace mac
