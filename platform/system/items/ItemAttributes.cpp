#include "platform/system/items/ItemAttributes.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/ItemLock.h"
#include <cerrno>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unordered_set>

namespace mac {

namespace {

// How often a change is tried if other processes change the sidecar meanwhile.
constexpr unsigned MostTriesOfAChange = 8;

SystemError problem(int code, char const* operation, AttributeName const& name) {
    return {.code = code, .operation = operation, .item = name.shown};
}

Result<struct stat> statusOf(OpenItem const& item) {
    struct stat status {};
    if (::fstat(item.item.number(), &status) != 0) return lastSystemError("stat", item.name);
    return status;
}

Result<bool> carriesAttributes(OpenItem const& item) {
    Result<struct stat> const status = statusOf(item);
    if (!status.hasValue()) return status.problem();
    return S_ISREG(status.value().st_mode) || S_ISDIR(status.value().st_mode);
}

// Whether the file is closed to this user, which is lasting, while other failures may pass.
bool isClosed(SystemError const& error) { return error.is(EACCES) || error.is(EPERM); }

// The file system does not hold the attribute, but the sidecar may.
bool mayBeBeside(SystemError const& error) { return error.is(ENODATA) || error.is(EOPNOTSUPP); }

// The file system cannot hold the value.
bool isRefusedAttribute(SystemError const& error) {
    return error.is(ENOSPC) || error.is(E2BIG) || error.is(EOPNOTSUPP) || error.is(ERANGE);
}

// Another name of the file would not have the sidecar of this one.
Result<bool> hasOtherNames(OpenItem const& item) {
    Result<struct stat> const status = statusOf(item);
    if (!status.hasValue()) return status.problem();
    return S_ISREG(status.value().st_mode) && status.value().st_nlink > 1;
}

// One change of an attribute, with the item's sidecar as it was read under the lock.
class AttributeChange {
public:
    AttributeChange(OpenItem const& item, AttributeName const& name) : m_item(item), m_name(name), m_sidecar(item) {}

    Result<void> write(std::span<std::byte const> value, AttributeCondition condition);
    Result<void> remove();

private:
    bool isBeside() const { return m_sidecar.contents.valueOf(m_name.shown).has_value(); }
    Result<bool> isOnItem() const;
    Result<bool> exists() const { return isBeside() ? Result<bool>(true) : isOnItem(); }
    Result<void> check(AttributeCondition condition) const;
    Result<void> writeNothing(AttributeCondition condition);
    Result<void> writeBeside(std::span<std::byte const> value);
    void restoreSidecar(AppleDouble const& before) const;

    OpenItem const& m_item;
    AttributeName const& m_name;
    AppleDoubleSidecar m_sidecar;
};

Result<bool> AttributeChange::isOnItem() const {
    Result<std::size_t> const size = sizeOnItem(m_item, m_name);
    if (size.hasValue()) return true;
    if (mayBeBeside(size.problem())) return false;
    return size.problem();
}

Result<void> AttributeChange::check(AttributeCondition condition) const {
    if (condition == AttributeCondition::Any) return {};
    Result<bool> const isThere = exists();
    if (!isThere.hasValue()) return isThere.problem();
    bool const mustBeNew = condition == AttributeCondition::MustBeNew;
    if (isThere.value() != mustBeNew) return {};
    return problem(mustBeNew ? EEXIST : ENODATA, "setxattr", m_name);
}

// Until the sidecar is written the old value counted; it still does if it cannot be removed from the item.
Result<void> AttributeChange::writeBeside(std::span<std::byte const> value) {
    Result<bool> const hasOthers = hasOtherNames(m_item);
    if (!hasOthers.hasValue()) return hasOthers.problem();
    if (hasOthers.value()) return problem(EMLINK, "setxattr", m_name);
    AppleDouble const before = m_sidecar.contents;
    if (!m_sidecar.contents.setValue(m_name.shown, value)) return problem(ERANGE, "setxattr", m_name);
    if (Result<void> saved = m_sidecar.save(); !saved.isDone()) {
        restoreSidecar(before);
        return saved;
    }
    Result<bool> const isShadowed = isOnItem();
    if (isShadowed.hasValue() && !isShadowed.value()) return {};
    Result<void> removed = removeOnItem(m_item, m_name);
    if (removed.isDone() || mayBeBeside(removed.problem())) return {};
    restoreSidecar(before);
    return removed;
}

// Gives the sidecar back what it held and the date it had, as long as it holds what this change has written; the save
// may have written it although it failed. On FUSE and network file systems a file's state may change though nobody
// writes it, such as when the server lets go of a second name some time after its removal: then tries again.
void AttributeChange::restoreSidecar(AppleDouble const& before) const {
    for (unsigned tries = 0; tries < MostTriesOfAChange; ++tries) {
        AppleDoubleSidecar sidecar(m_item);
        bool const isOurs = sidecar.state() == AppleDoubleSidecar::State::Read &&
                            sidecar.contents.written() == m_sidecar.contents.written();
        if (!isOurs) return;
        sidecar.contents = before;
        Result<void> const saved = sidecar.save(m_sidecar.modified());
        if (saved.isDone() || !saved.problem().is(EAGAIN)) return;
    }
}

// The sidecar's value goes first, so that no older value appears when the file system's goes. An item that cannot be
// written loses what its sidecar holds.
Result<void> AttributeChange::remove() {
    Result<bool> const isHere = isOnItem();
    Result<void> const reading = m_sidecar.reading();
    // The value that counts is removed also where the sidecar is closed to this user.
    bool const isReadable = reading.isDone() || (isClosed(reading.problem()) && isHere.hasValue() && isHere.value());
    if (!isReadable) return reading;
    bool const wasBeside = m_sidecar.contents.removeValue(m_name.shown);
    if (wasBeside) {
        if (Result<void> const saved = m_sidecar.save(); !saved.isDone()) return saved;
    }
    Result<void> const removed = removeOnItem(m_item, m_name);
    bool const isMissing = isHere.hasValue() && !isHere.value();
    if (removed.isDone() && !isMissing) return {};
    if (!removed.isDone() && !isMissing && !mayBeBeside(removed.problem())) return removed;
    return wasBeside ? Result<void>() : problem(ENODATA, "removexattr", m_name);
}

Result<void> AttributeChange::writeNothing(AttributeCondition condition) {
    if (Result<void> const reading = m_sidecar.reading(); !reading.isDone()) return reading;
    if (Result<void> const checked = check(condition); !checked.isDone()) return checked;
    Result<bool> const isThere = exists();
    if (!isThere.hasValue()) return isThere.problem();
    return isThere.value() ? remove() : Result<void>();
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
    if (!isRefusedAttribute(written.problem()) || !m_sidecar.isWritable()) return written;
    if (Result<void> const checked = check(condition); !checked.isDone()) return checked;
    return writeBeside(value);
}

// A process that does not take the lock may change the sidecar meanwhile; its values count, and the change starts anew.
template <class Change>
Result<void> changeUnderLock(OpenItem const& item, AttributeName const& name, char const* operation,
                             Change const& change) {
    Result<bool> const carries = carriesAttributes(item);
    if (!carries.hasValue()) return carries.problem();
    if (!carries.value()) return problem(EPERM, operation, name);
    Result<AppleDoubleLock> const lock = AppleDoubleLock::take(item);
    if (!lock.hasValue()) return lock.problem();
    for (unsigned tries = 1;; ++tries) {
        AttributeChange attribute(item, name);
        Result<void> changed = change(attribute);
        if (changed.isDone() || !changed.problem().is(EAGAIN) || tries == MostTriesOfAChange) return changed;
    }
}

} // namespace

Result<std::vector<std::byte>> readAttribute(OpenItem const& item, AttributeName const& name) {
    Result<bool> const carries = carriesAttributes(item);
    if (!carries.hasValue()) return carries.problem();
    if (!carries.value()) return problem(ENODATA, "getxattr", name);
    Result<std::vector<std::byte>> value = valueOnItem(item, name);
    if (value.hasValue() || !mayBeBeside(value.problem())) return value;
    return valueInSidecar(item, name.shown);
}

Result<std::size_t> sizeOfAttribute(OpenItem const& item, AttributeName const& name) {
    Result<bool> const carries = carriesAttributes(item);
    if (!carries.hasValue()) return carries.problem();
    if (!carries.value()) return problem(ENODATA, "getxattr", name);
    Result<std::size_t> const size = sizeOnItem(item, name);
    if (size.hasValue() || !mayBeBeside(size.problem())) return size;
    Result<std::vector<std::byte>> const beside = valueInSidecar(item, name.shown);
    if (!beside.hasValue()) return beside.problem();
    return beside.value().size();
}

Result<std::vector<std::string>> namesOfAttributes(OpenItem const& item) {
    Result<bool> const carries = carriesAttributes(item);
    if (!carries.hasValue()) return carries.problem();
    if (!carries.value()) return std::vector<std::string>();
    Result<std::vector<std::string>> names = namesOnItem(item);
    if (!names.hasValue()) return names;
    Result<std::vector<std::string>> beside = namesInSidecar(item);
    bool const isIgnored = !beside.hasValue() && isClosed(beside.problem()) && !names.value().empty();
    if (!beside.hasValue() && !isIgnored) return beside;
    if (beside.hasValue() && !beside.value().empty()) {
        std::unordered_set<std::string> const known(names.value().begin(), names.value().end());
        for (std::string& name : beside.value()) {
            if (!known.contains(name)) names.value().push_back(std::move(name));
        }
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
