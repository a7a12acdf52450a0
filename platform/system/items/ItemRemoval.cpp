#include "platform/system/items/ItemRemoval.h"
#include "platform/system/items/FolderDescent.h"
#include "platform/system/items/ItemLock.h"
#include "platform/system/items/ItemRename.h"
#include "platform/system/items/TreeRemoval.h"
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <set>
#include <unistd.h>

namespace mac {

namespace {

// Removes an item after it was looked through for what must stay.
class Removal {
public:
    Removal(OpenItem const& item, ItemIdentity const& identity, RemovalQuestions const& questions)
        : m_item(item), m_identity(identity), m_questions(questions) {}

    Result<void> run() {
        Result<void> const looked = look();
        bool const mayGoOn = looked.isDone() || (!m_asked.empty() && !m_isEnded);
        return mayGoOn ? remove(looked.isDone()) : looked;
    }

    // Looks for what must stay.
    Result<void> look() {
        Result<ItemPlace> const place = placeOf(m_item.item);
        if (!place.hasValue()) return place.problem();
        // Needs no permission to list the folder that holds it.
        if (!place.value().isFolder) return confirmUnlocked(m_item.folder, m_item.name, place.value());
        return descend(m_item.folder, m_item.name, m_identity, {.shouldContinueAfter = continuation()},
                       &confirmUnlocked);
    }

private:
    static Result<void> confirmUnlocked(FileDescriptor const& folder, std::string const& name, ItemPlace const& place) {
        return isLockedIn(folder, name, place) ? Result<void>(lockedItem(name)) : Result<void>();
    }

    // The system itself keeps what is locked by the flag; what is locked by an attribute has to be looked for only if
    // something has to stay.
    Result<void> remove(bool mayAllGo) {
        RemovalRules const rules{
            .beforeRemoval =
                [&](FileDescriptor const& folder, std::string const& name, std::string const& path) {
                    if (!mayAllGo && isLockedIn(folder, name)) return Result<void>(lockedItem(name));
                    if (m_questions.willRemove) m_questions.willRemove(path);
                    return Result<void>();
                },
            .shouldContinueAfter = continuation()};
        return removeTree(m_item.folder, m_item.name, m_identity, rules);
    }

    std::function<bool(std::string const& path, SystemError const& error)> continuation() {
        return [this](std::string const& path, SystemError const& error) { return shouldContinueAfter(path, error); };
    }

    // What had to stay when it was looked for is not asked about once more.
    bool shouldContinueAfter(std::string const& path, SystemError const& error) {
        if (!m_asked.insert(path).second) return true;
        m_isEnded = !m_questions.shouldContinueAfter || !m_questions.shouldContinueAfter(path, error);
        return !m_isEnded;
    }

    OpenItem const& m_item;
    ItemIdentity const& m_identity;
    RemovalQuestions const& m_questions;
    std::set<std::string> m_asked{};
    bool m_isEnded{false};
};

// A sidecar that cannot be removed stays as a stray one: the item itself is gone.
void removeSidecar(OpenItem const& item, OpenSidecar const& sidecar) {
    Result<IdentifiedItem> const identified = identify(sidecar.file);
    if (identified.hasValue()) static_cast<void>(removeTree(item.folder, sidecar.name, identified.value().identity));
}

} // namespace

Result<void> removeUnlessLocked(FileDescriptor const& folder, std::string const& name, bool isFolder) {
    if (isLockedIn(folder, name)) return lockedItem(name);
    if (::unlinkat(folder.number(), name.c_str(), isFolder ? AT_REMOVEDIR : 0) == 0) return {};
    return lastSystemError("unlink", name);
}

Result<void> removeEmptyItem(OpenItem const& item) {
    if (item.name.empty()) return SystemError{.code = EBUSY, .operation = "unlink", .item = "/"};
    Result<ItemStatus> const status = statusOf(item.item);
    if (!status.hasValue()) return status.problem();
    if (isLockedIn(item.folder, item.name, status.value().place)) return lockedItem(item.name);
    if (status.value().place.isFolder) {
        // A folder that may not be listed can be empty: the system itself removes none that holds anything.
        Result<std::vector<std::string>> const names = namesInOpenFolder(item.item);
        if (names.hasValue() && !names.value().empty())
            return SystemError{.code = ENOTEMPTY, .operation = "unlink", .item = item.name};
    }
    Result<std::optional<OpenSidecar>> const sidecar = sidecarBeside(item.folder, item.name);
    if (!sidecar.hasValue()) return sidecar.problem();
    Result<void> removed = removeExactly(item.folder, item.name, status.value());
    if (removed.isDone() && sidecar.value()) removeSidecar(item, *sidecar.value());
    return removed;
}

Result<void> confirmRemovable(OpenItem const& item) {
    if (item.name.empty()) return SystemError{.code = EBUSY, .operation = "unlink", .item = "/"};
    Result<IdentifiedItem> const identified = identify(item.item);
    if (!identified.hasValue()) return identified.problem();
    return Removal(item, identified.value().identity, {}).look();
}

Result<void> removeItem(OpenItem const& item, RemovalQuestions const& questions) {
    if (item.name.empty()) return SystemError{.code = EBUSY, .operation = "unlink", .item = "/"};
    Result<IdentifiedItem> const identified = identify(item.item);
    if (!identified.hasValue()) return identified.problem();
    Result<std::optional<OpenSidecar>> const sidecar = sidecarBeside(item.folder, item.name);
    if (!sidecar.hasValue()) return sidecar.problem();
    Result<void> removed = Removal(item, identified.value().identity, questions).run();
    if (removed.isDone() && sidecar.value()) removeSidecar(item, *sidecar.value());
    return removed;
}

} // namespace mac
