#include "platform/files/ExtendedAttributes.h"
#include "platform/system/items/AppleDoubleFile.h"
#include "platform/system/items/AttributesOnItem.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unordered_set>

namespace mac {

namespace {

constexpr int NoOptions = 0;

int failure(int errorNumber) {
    errno = errorNumber;
    return -1;
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

// Nothing, with errno set, when they cannot be read.
std::optional<std::vector<std::string>> allNames(OpenItem const& item) {
    std::optional<std::vector<std::string>> names = namesOnItem(item);
    if (!names) return std::nullopt;
    AppleDoubleFile const beside(item);
    if (beside.readingError() != 0) {
        errno = beside.readingError();
        return std::nullopt;
    }
    std::unordered_set<std::string> const known(names->begin(), names->end());
    for (std::string& name : beside.contents.names()) {
        if (!known.contains(name)) names->push_back(std::move(name));
    }
    return names;
}

// A buffer that is null takes nothing, and that is enough.
std::ptrdiff_t deliver(std::span<std::byte const> bytes, void* buffer, std::size_t size) {
    if (buffer && size < bytes.size()) return failure(ERANGE);
    if (buffer && !bytes.empty()) std::memcpy(buffer, bytes.data(), bytes.size());
    return static_cast<std::ptrdiff_t>(bytes.size());
}

// Another name of the file would not have what is beside this one.
bool hasOtherNames(OpenItem const& item) {
    struct stat status {};
    return ::fstat(item.item.number(), &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink > 1;
}

// Why the options do not let the attribute be written that is there, or is not; 0 when they do.
int contradiction(bool isThere, int options) {
    if (isThere) return (options & XATTR_CREATE) != 0 ? EEXIST : 0;
    return (options & XATTR_REPLACE) != 0 ? ENODATA : 0;
}

int writeBeside(OpenItem const& item, AppleDoubleFile& beside, AttributeName const& name,
                std::span<std::byte const> value) {
    if (hasOtherNames(item)) return failure(EMLINK);
    if (!beside.contents.setValue(name.shown, value)) return failure(ERANGE);
    if (!beside.save()) return -1;
    // Until here the old value counted.
    return removeOnItem(item, name) == 0 || mayBeBeside(errno) ? 0 : -1;
}

// First what is beside, so that no older value appears when the other goes.
int removeEverywhere(OpenItem const& item, AppleDoubleFile& beside, AttributeName const& name) {
    if (beside.readingError() != 0) return failure(beside.readingError());
    bool const wasBeside = beside.contents.removeValue(name.shown);
    if (wasBeside && !beside.save()) return -1;
    bool const wasNothing = holdsNothing(item, name);
    bool const wasOnItem = removeOnItem(item, name) == 0;
    if ((wasOnItem && !wasNothing) || (wasBeside && (wasOnItem || mayBeBeside(errno)))) return 0;
    return wasOnItem || mayBeBeside(errno) ? failure(ENODATA) : -1;
}

int write(OpenItem const& item, AppleDoubleFile& beside, AttributeName const& name, std::span<std::byte const> value,
          int options) {
    bool const mustBeNew = (options & XATTR_CREATE) != 0;
    bool const mustBeThere = (options & XATTR_REPLACE) != 0;
    if ((mustBeNew || mustBeThere) && beside.readingError() != 0) return failure(beside.readingError());
    bool const isBeside = beside.contents.valueOf(name.shown).has_value();
    if (mustBeNew && isBeside) return failure(EEXIST);
    // What counts as nothing must not look like something to the system.
    if (holdsNothing(item, name) && removeOnItem(item, name) != 0) return -1;
    if (isNothing(name, value)) {
        bool const isThere = isBeside || valueOnItem(item, name, nullptr, 0) >= 0;
        if (int const reason = contradiction(isThere, options)) return failure(reason);
        return !isThere || removeEverywhere(item, beside, name) == 0 ? 0 : -1;
    }
    int systemOptions = mustBeNew ? ::XATTR_CREATE : 0;
    if (mustBeThere && !isBeside) systemOptions = ::XATTR_REPLACE;
    if (writeOnItem(item, name, value, systemOptions) == 0) {
        // A value that stays beside does not count any more.
        if (beside.contents.removeValue(name.shown)) beside.save();
        return 0;
    }
    // Somebody else's file stays, and the reason is the file system's.
    if (!isRefusal(errno) || !beside.isUsable()) return -1;
    bool const isThere = isBeside || valueOnItem(item, name, nullptr, 0) >= 0;
    if (int const reason = contradiction(isThere, options)) return failure(reason);
    return writeBeside(item, beside, name, value);
}

// Somebody who knows nothing of the lock may have changed the file beside the item meanwhile; what he wrote counts.
template <class Change>
int changeUnderLock(OpenItem const& item, Change const& change) {
    constexpr unsigned mostTries = 8;
    AppleDoubleLock const lock(item);
    if (!lock.isHeld()) return -1;
    for (unsigned tries = 1;; ++tries) {
        AppleDoubleFile beside(item);
        int const result = change(beside);
        if (result == 0 || errno != EAGAIN || tries == mostTries) return result;
    }
}

} // namespace

std::ptrdiff_t listxattr(char const* path, char* names, std::size_t size, int options) {
    if ((options & ~XATTR_NOFOLLOW) != NoOptions) return failure(EINVAL);
    std::optional<OpenItem> const item = openItem(path, options);
    if (!item) return -1;
    std::string list;
    if (carriesAttributes(*item)) {
        std::optional<std::vector<std::string>> const all = allNames(*item);
        if (!all) return -1;
        for (std::string const& name : *all)
            list.append(name).push_back('\0');
    }
    return deliver(std::as_bytes(std::span(list)), names, size);
}

std::ptrdiff_t getxattr(char const* path, char const* name, void* value, std::size_t size, std::uint32_t position,
                        int options) {
    if ((options & ~XATTR_NOFOLLOW) != NoOptions || position != 0) return failure(EINVAL);
    std::optional<AttributeName> const wanted = attributeName(name);
    if (!wanted) return -1;
    std::optional<OpenItem> const item = openItem(path, options);
    if (!item) return -1;
    if (!carriesAttributes(*item)) return failure(ENODATA);
    std::ptrdiff_t const length = valueOnItem(*item, *wanted, value, size);
    if (length >= 0 || !mayBeBeside(errno)) return length;
    std::optional<std::vector<std::byte>> const found = valueBeside(*item, wanted->shown);
    return found ? deliver(*found, value, size) : -1;
}

int setxattr(char const* path, char const* name, void const* value, std::size_t size, std::uint32_t position,
             int options) {
    constexpr int known = XATTR_NOFOLLOW | XATTR_CREATE | XATTR_REPLACE;
    bool const isContradiction = (options & XATTR_CREATE) != 0 && (options & XATTR_REPLACE) != 0;
    if ((options & ~known) != NoOptions || isContradiction || position != 0) return failure(EINVAL);
    std::optional<AttributeName> const wanted = attributeName(name);
    if (!wanted) return -1;
    if (!value && size > 0) return failure(EFAULT);
    if (wanted->isFinderInformation() && size != AppleDouble::FinderInformationSize) return failure(ERANGE);
    std::optional<OpenItem> const item = openItem(path, options);
    if (!item) return -1;
    if (!carriesAttributes(*item)) return failure(EPERM);
    std::span<std::byte const> const bytes(static_cast<std::byte const*>(value), size);
    return changeUnderLock(*item,
                           [&](AppleDoubleFile& beside) { return write(*item, beside, *wanted, bytes, options); });
}

int removexattr(char const* path, char const* name, int options) {
    if ((options & ~XATTR_NOFOLLOW) != NoOptions) return failure(EINVAL);
    std::optional<AttributeName> const wanted = attributeName(name);
    if (!wanted) return -1;
    std::optional<OpenItem> const item = openItem(path, options);
    if (!item) return -1;
    if (!carriesAttributes(*item)) return failure(EPERM);
    return changeUnderLock(*item, [&](AppleDoubleFile& beside) { return removeEverywhere(*item, beside, *wanted); });
}

} // namespace mac
