#include "platform/system/items/ItemAttributes.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/ItemLock.h"
#include <cerrno>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unordered_set>

namespace mac {

namespace {

SystemError problem(int code, char const* operation, AttributeName const& name) {
    return {.code = code, .operation = operation, .item = name.shown};
}

bool carriesAttributes(OpenItem const& item) {
    struct stat status {};
    return ::fstat(item.item.number(), &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
}

// The file system does not hold the attribute, but the sidecar may.
bool mayBeBeside(SystemError const& error) { return error.is(ENODATA) || error.is(EOPNOTSUPP); }

// The file system cannot hold the value.
bool isRefusal(SystemError const& error) {
    return error.is(ENOSPC) || error.is(E2BIG) || error.is(EOPNOTSUPP) || error.is(ERANGE);
}

// Another name of the file would not have the sidecar of this one.
bool hasOtherNames(OpenItem const& item) {
    struct stat status {};
    return ::fstat(item.item.number(), &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink > 1;
}

// One change of an attribute, with the item's sidecar as it was read under the lock.
class AttributeChange {
public:
    AttributeChange(OpenItem const& item, AttributeName const& name) : m_item(item), m_name(name), m_sidecar(item) {}

    Result<void> write(std::span<std::byte const> value, AttributeCondition condition);
    Result<void> remove();

private:
    bool isBeside() const { return m_sidecar.contents.valueOf(m_name.shown).has_value(); }
    bool exists() const { return isBeside() || sizeOnItem(m_item, m_name).hasValue(); }
    Result<void> check(AttributeCondition condition) const;
    Result<void> writeNothing(AttributeCondition condition);
    Result<void> writeBeside(std::span<std::byte const> value);

    OpenItem const& m_item;
    AttributeName const& m_name;
    AppleDoubleSidecar m_sidecar;
};

Result<void> AttributeChange::check(AttributeCondition condition) const {
    if (condition == AttributeCondition::MustBeNew && exists()) return problem(EEXIST, "setxattr", m_name);
    if (condition == AttributeCondition::MustExist && !exists()) return problem(ENODATA, "setxattr", m_name);
    return {};
}

Result<void> AttributeChange::writeBeside(std::span<std::byte const> value) {
    if (hasOtherNames(m_item)) return problem(EMLINK, "setxattr", m_name);
    if (!m_sidecar.contents.setValue(m_name.shown, value)) return problem(ERANGE, "setxattr", m_name);
    if (Result<void> const saved = m_sidecar.save(); !saved.isDone()) return saved;
    // Until here the old value counted.
    Result<void> const removed = removeOnItem(m_item, m_name);
    return removed.isDone() || mayBeBeside(removed.problem()) ? Result<void>() : removed;
}

// The sidecar's value goes first, so that no older value appears when the file system's goes.
Result<void> AttributeChange::remove() {
    if (Result<void> const reading = m_sidecar.reading(); !reading.isDone()) return reading;
    bool const wasBeside = m_sidecar.contents.removeValue(m_name.shown);
    if (wasBeside) {
        if (Result<void> const saved = m_sidecar.save(); !saved.isDone()) return saved;
    }
    bool const wasNothing = holdsNothing(m_item, m_name);
    Result<void> const removed = removeOnItem(m_item, m_name);
    if (!removed.isDone() && !mayBeBeside(removed.problem())) return removed;
    bool const wasOnItem = removed.isDone() && !wasNothing;
    if (wasOnItem || wasBeside) return {};
    return problem(ENODATA, "removexattr", m_name);
}

Result<void> AttributeChange::writeNothing(AttributeCondition condition) {
    if (Result<void> const checked = check(condition); !checked.isDone()) return checked;
    return exists() ? remove() : Result<void>();
}

Result<void> AttributeChange::write(std::span<std::byte const> value, AttributeCondition condition) {
    bool const mustBeNew = condition == AttributeCondition::MustBeNew;
    bool const mustExist = condition == AttributeCondition::MustExist;
    if (mustBeNew || mustExist) {
        if (Result<void> const reading = m_sidecar.reading(); !reading.isDone()) return reading;
    }
    if (mustBeNew && isBeside()) return problem(EEXIST, "setxattr", m_name);
    // To the system a value that counts as absent would exist.
    if (holdsNothing(m_item, m_name)) {
        if (Result<void> const removed = removeOnItem(m_item, m_name); !removed.isDone()) return removed;
    }
    if (m_name.isNothing(value)) return writeNothing(condition);
    int flags = mustBeNew ? XATTR_CREATE : 0;
    if (mustExist && !isBeside()) flags = XATTR_REPLACE;
    Result<void> const written = writeOnItem(m_item, m_name, value, flags);
    if (written.isDone()) {
        // A value that stays in the sidecar does not count any more, so it does not matter whether it can be removed.
        if (m_sidecar.contents.removeValue(m_name.shown)) static_cast<void>(m_sidecar.save());
        return {};
    }
    // A file of another form stays, and the reason is the file system's.
    if (!isRefusal(written.problem()) || !m_sidecar.isWritable()) return written;
    if (Result<void> const checked = check(condition); !checked.isDone()) return checked;
    return writeBeside(value);
}

// A process that does not take the lock may change the sidecar meanwhile; its values count, and the change starts anew.
template <class Change>
Result<void> changeUnderLock(OpenItem const& item, AttributeName const& name, char const* operation,
                             Change const& change) {
    constexpr unsigned mostTries = 8;
    if (!carriesAttributes(item)) return problem(EPERM, operation, name);
    Result<AppleDoubleLock> const lock = AppleDoubleLock::take(item);
    if (!lock.hasValue()) return lock.problem();
    for (unsigned tries = 1;; ++tries) {
        AttributeChange attribute(item, name);
        Result<void> changed = change(attribute);
        if (changed.isDone() || !changed.problem().is(EAGAIN) || tries == mostTries) return changed;
    }
}

} // namespace

Result<std::vector<std::byte>> readAttribute(OpenItem const& item, AttributeName const& name) {
    if (!carriesAttributes(item)) return problem(ENODATA, "getxattr", name);
    Result<std::vector<std::byte>> value = valueOnItem(item, name);
    if (value.hasValue() || !mayBeBeside(value.problem())) return value;
    return valueInSidecar(item, name.shown);
}

Result<std::size_t> sizeOfAttribute(OpenItem const& item, AttributeName const& name) {
    if (!carriesAttributes(item)) return problem(ENODATA, "getxattr", name);
    Result<std::size_t> const size = sizeOnItem(item, name);
    if (size.hasValue() || !mayBeBeside(size.problem())) return size;
    Result<std::vector<std::byte>> const beside = valueInSidecar(item, name.shown);
    if (!beside.hasValue()) return beside.problem();
    return beside.value().size();
}

Result<std::vector<std::string>> namesOfAttributes(OpenItem const& item) {
    if (!carriesAttributes(item)) return std::vector<std::string>();
    Result<std::vector<std::string>> names = namesOnItem(item);
    if (!names.hasValue()) return names;
    AppleDoubleSidecar const sidecar(item);
    if (Result<void> const reading = sidecar.reading(); !reading.isDone()) return reading.problem();
    std::unordered_set<std::string> const known(names.value().begin(), names.value().end());
    for (std::string& name : sidecar.contents.names()) {
        if (!known.contains(name)) names.value().push_back(std::move(name));
    }
    std::erase(names.value(), LockedAttribute);
    return names;
}

Result<void> writeAttribute(OpenItem const& item, AttributeName const& name, std::span<std::byte const> value,
                            AttributeCondition condition) {
    if (!name.accepts(value.size())) return problem(ERANGE, "setxattr", name);
    return changeUnderLock(item, name, "setxattr",
                           [&](AttributeChange& attribute) { return attribute.write(value, condition); });
}

Result<void> changeAttributesAsOwner(OpenItem const& item, std::function<Result<void>()> const& change) {
    Result<void> const changed = change();
    struct stat status {};
    bool const isRefused = !changed.isDone() && (changed.problem().is(EACCES) || changed.problem().is(EPERM));
    if (!isRefused || ::fstat(item.item.number(), &status) != 0 || (status.st_mode & S_IWUSR) != 0) return changed;
    constexpr unsigned permissionBits = 07777;
    unsigned const mode = status.st_mode & permissionBits;
    if (::chmod(item.systemPath().c_str(), mode | S_IWUSR) != 0) return changed;
    Result<void> retried = change();
    if (::chmod(item.systemPath().c_str(), mode) != 0) return lastSystemError("chmod", item.name);
    return retried;
}

Result<void> removeAttribute(OpenItem const& item, AttributeName const& name) {
    return changeUnderLock(item, name, "removexattr", [](AttributeChange& attribute) { return attribute.remove(); });
}

} // namespace mac
