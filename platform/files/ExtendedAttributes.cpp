#include "platform/files/ExtendedAttributes.h"
#include "platform/files/AppleDoubleFile.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace mac {

namespace {

constexpr std::string_view Namespace = "user.";
// What the system takes for a name, and for all names of an item.
constexpr std::size_t LongestSystemName = 255;
constexpr std::size_t LargestSystemList = 65536;
constexpr int NoOptions = 0;

// Only one at a time changes AppleDouble files.
std::mutex& fileLock() {
    static std::mutex lock;
    return lock;
}

int failure(int errorNumber) {
    errno = errorNumber;
    return -1;
}

// Of the file system's attribute; empty, with errno set, for a name that none can have.
std::string systemName(char const* name) {
    std::size_t const length = name ? std::strlen(name) : 0;
    if (length > 0 && Namespace.size() + length <= LongestSystemName) return std::string(Namespace) + name;
    if (!name)
        errno = EFAULT;
    else
        errno = length == 0 ? EINVAL : ENAMETOOLONG;
    return {};
}

std::optional<OpenItem> openItem(char const* path, int options) {
    if (path) return openItemAtPath(path, (options & XATTR_NOFOLLOW) == 0);
    errno = EFAULT;
    return std::nullopt;
}

bool carriesAttributes(OpenItem const& item) {
    struct stat status {};
    return ::fstat(item.item.number(), &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
}

// The file system has it nowhere, but it may be beside the item.
bool mayBeBeside(int errorNumber) { return errorNumber == ENODATA || errorNumber == EOPNOTSUPP; }

// The file system cannot hold it.
bool isRefusal(int errorNumber) {
    return errorNumber == ENOSPC || errorNumber == E2BIG || errorNumber == EOPNOTSUPP || errorNumber == ERANGE;
}

std::vector<std::string> namesOnItem(OpenItem const& item) {
    std::vector<char> list(LargestSystemList);
    ssize_t const length = ::listxattr(item.systemPath().c_str(), list.data(), list.size());
    std::vector<std::string> names;
    char const* const end = list.data() + std::max<ssize_t>(length, 0);
    for (char const* place = list.data(); place < end;) {
        std::string_view const name(place, static_cast<std::size_t>(std::find(place, end, '\0') - place));
        if (name.size() > Namespace.size() && name.starts_with(Namespace))
            names.emplace_back(name.substr(Namespace.size()));
        place += name.size() + 1;
    }
    return names;
}

std::vector<std::string> allNames(OpenItem const& item) {
    std::vector<std::string> names = namesOnItem(item);
    for (std::string& name : AppleDoubleFile(item).contents.names()) {
        if (std::ranges::find(names, name) == names.end()) names.push_back(std::move(name));
    }
    return names;
}

// A buffer that is null takes nothing, and that is enough.
std::ptrdiff_t deliver(std::span<std::byte const> bytes, void* buffer, std::size_t size) {
    if (buffer && size < bytes.size()) return failure(ERANGE);
    if (buffer && !bytes.empty()) std::memcpy(buffer, bytes.data(), bytes.size());
    return static_cast<std::ptrdiff_t>(bytes.size());
}

std::ptrdiff_t valueOnItem(OpenItem const& item, std::string const& name, void* value, std::size_t size) {
    if (value && size > 0) return ::getxattr(item.systemPath().c_str(), name.c_str(), value, size);
    // The system takes a size of 0 for the question how long it is.
    ssize_t const length = ::getxattr(item.systemPath().c_str(), name.c_str(), nullptr, 0);
    return value && length > 0 ? failure(ERANGE) : length;
}

// Whether the options let the attribute be written, where it is or is not yet.
bool mayWrite(OpenItem const& item, AppleDoubleFile const& beside, char const* name, std::string const& onSystem,
              int options) {
    if ((options & (XATTR_CREATE | XATTR_REPLACE)) == 0) return true;
    bool const isThere = ::getxattr(item.systemPath().c_str(), onSystem.c_str(), nullptr, 0) >= 0 ||
                         beside.contents.valueOf(name).has_value();
    errno = isThere ? EEXIST : ENODATA;
    return isThere == ((options & XATTR_REPLACE) != 0);
}

int writeBeside(OpenItem const& item, AppleDoubleFile& beside, char const* name, std::string const& onSystem,
                std::span<std::byte const> value) {
    // Somebody else's file stays, and the reason is the file system's.
    if (!beside.isUsable()) return -1;
    if (!beside.contents.setValue(name, value)) return failure(ERANGE);
    if (!beside.save()) return -1;
    // Until here the old value counted.
    bool const isRemoved = ::removexattr(item.systemPath().c_str(), onSystem.c_str()) == 0 || mayBeBeside(errno);
    return isRemoved ? 0 : -1;
}

} // namespace

std::ptrdiff_t listxattr(char const* path, char* names, std::size_t size, int options) {
    if ((options & ~XATTR_NOFOLLOW) != NoOptions) return failure(EINVAL);
    std::optional<OpenItem> const item = openItem(path, options);
    if (!item) return -1;
    std::string list;
    if (carriesAttributes(*item)) {
        for (std::string const& name : allNames(*item))
            list.append(name).push_back('\0');
    }
    return deliver(std::as_bytes(std::span(list)), names, size);
}

std::ptrdiff_t getxattr(char const* path, char const* name, void* value, std::size_t size, std::uint32_t position,
                        int options) {
    if ((options & ~XATTR_NOFOLLOW) != NoOptions || position != 0) return failure(EINVAL);
    std::string const onSystem = systemName(name);
    if (onSystem.empty()) return -1;
    std::optional<OpenItem> const item = openItem(path, options);
    if (!item) return -1;
    if (!carriesAttributes(*item)) return failure(ENODATA);
    std::ptrdiff_t const length = valueOnItem(*item, onSystem, value, size);
    if (length >= 0 || !mayBeBeside(errno)) return length;
    AppleDoubleFile const beside(*item);
    std::optional<std::span<std::byte const>> const found = beside.contents.valueOf(name);
    return found ? deliver(*found, value, size) : failure(ENODATA);
}

int setxattr(char const* path, char const* name, void const* value, std::size_t size, std::uint32_t position,
             int options) {
    constexpr int known = XATTR_NOFOLLOW | XATTR_CREATE | XATTR_REPLACE;
    bool const isContradiction = (options & XATTR_CREATE) != 0 && (options & XATTR_REPLACE) != 0;
    if ((options & ~known) != NoOptions || isContradiction || position != 0) return failure(EINVAL);
    std::string const onSystem = systemName(name);
    if (onSystem.empty()) return -1;
    if (!value && size > 0) return failure(EFAULT);
    if (std::strcmp(name, XATTR_FINDERINFO_NAME) == 0 && size != AppleDouble::FinderInformationSize)
        return failure(ERANGE);
    std::optional<OpenItem> const item = openItem(path, options);
    if (!item) return -1;
    if (!carriesAttributes(*item)) return failure(EPERM);

    std::scoped_lock const lock(fileLock());
    AppleDoubleFile beside(*item);
    if (!mayWrite(*item, beside, name, onSystem, options)) return -1;
    std::span<std::byte const> const bytes(static_cast<std::byte const*>(value), size);
    if (::setxattr(item->systemPath().c_str(), onSystem.c_str(), value, size, 0) != 0)
        return isRefusal(errno) ? writeBeside(*item, beside, name, onSystem, bytes) : -1;
    // A value that stays beside does not count any more.
    if (beside.contents.removeValue(name)) beside.save();
    return 0;
}

int removexattr(char const* path, char const* name, int options) {
    if ((options & ~XATTR_NOFOLLOW) != NoOptions) return failure(EINVAL);
    std::string const onSystem = systemName(name);
    if (onSystem.empty()) return -1;
    std::optional<OpenItem> const item = openItem(path, options);
    if (!item) return -1;
    if (!carriesAttributes(*item)) return failure(EPERM);

    // First what is beside, so that no older value appears when the other goes.
    std::scoped_lock const lock(fileLock());
    AppleDoubleFile beside(*item);
    bool const wasBeside = beside.contents.removeValue(name);
    if (wasBeside && !beside.save()) return -1;
    bool const wasOnItem = ::removexattr(item->systemPath().c_str(), onSystem.c_str()) == 0;
    if (wasOnItem || (wasBeside && mayBeBeside(errno))) return 0;
    return mayBeBeside(errno) ? failure(ENODATA) : -1;
}

} // namespace mac
