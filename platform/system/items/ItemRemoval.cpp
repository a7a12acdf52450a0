#include "platform/system/items/ItemRemoval.h"
#include "platform/system/items/FolderDescent.h"
#include "platform/system/items/ItemLock.h"
#include "platform/system/items/ItemRename.h"
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <set>
#include <unistd.h>

namespace mac {

namespace {

Result<void> unlinkItem(FileDescriptor const& folder, std::string const& name, bool isFolder) {
    if (::unlinkat(folder.number(), name.c_str(), isFolder ? AT_REMOVEDIR : 0) == 0) return {};
    return lastSystemError("unlink", name);
}

// Removes an item; a folder in two descents, of which the first looks for what must stay.
class Removal {
public:
    Removal(OpenItem const& item, IdentifiedItem const& identified, RemovalQuestions const& questions)
        : m_item(item), m_identified(identified), m_questions(questions) {}

    Result<void> run() { return m_identified.isFolder ? removeFolder() : removeOther(); }

    // Looks for what must stay.
    Result<void> look() {
        return visitAll({}, [](FileDescriptor const& folder, std::string const& name, ItemPlace const& place) {
            return isLockedIn(folder, name, place) ? Result<void>(lockedItem(name)) : Result<void>();
        });
    }

private:
    // Needs no permission to list the folder that holds it.
    Result<void> removeOther() const {
        if (isLockedIn(m_item.folder, m_item.name)) return lockedItem(m_item.name);
        if (m_questions.willRemove) m_questions.willRemove(m_item.name);
        Result<void> const there = confirmItemInFolder(m_item.folder, m_item.name, m_identified.identity);
        return there.isDone() ? removeUnlessLocked(m_item.folder, m_item.name, false) : there;
    }

    Result<void> removeFolder() {
        Result<void> const looked = look();
        if (m_isEnded) return looked;
        // Nothing in it is locked by an attribute if all of it may go.
        bool const asksForLocks = !looked.isDone();
        return visitAll(m_questions.willRemove,
                        [asksForLocks](FileDescriptor const& folder, std::string const& name, ItemPlace const& place) {
                            Result<void> removed = asksForLocks ? removeUnlessLocked(folder, name, place.isFolder)
                                                                : unlinkItem(folder, name, place.isFolder);
                            // Another process has removed it meanwhile.
                            return !removed.isDone() && removed.problem().is(ENOENT) ? Result<void>() : removed;
                        });
    }

    Result<void> visitAll(std::function<void(std::string const& path)> const& before, DescentVisit const& visit) {
        DescentRules const rules{.beforeVisit = before,
                                 .shouldContinueAfter = [this](std::string const& path, SystemError const& error) {
                                     return shouldContinueAfter(path, error);
                                 }};
        return descend(m_item.folder, m_item.name, m_identified.identity, rules, visit);
    }

    // What had to stay when it was looked for is not asked about once more.
    bool shouldContinueAfter(std::string const& path, SystemError const& error) {
        if (!m_asked.insert(path).second) return true;
        m_isEnded = !m_questions.shouldContinueAfter || !m_questions.shouldContinueAfter(path, error);
        return !m_isEnded;
    }

    OpenItem const& m_item;
    IdentifiedItem const& m_identified;
    RemovalQuestions const& m_questions;
    std::set<std::string> m_asked{};
    bool m_isEnded{false};
};

// A sidecar that cannot be removed stays as a stray one: the item itself is gone.
void removeSidecar(OpenItem const& item, OpenSidecar const& sidecar) {
    if (!confirmItemInFolder(item.folder, sidecar.name, sidecar.file).isDone()) return;
    ::unlinkat(item.folder.number(), sidecar.name.c_str(), 0);
}

} // namespace

Result<void> removeUnlessLocked(FileDescriptor const& folder, std::string const& name, bool isFolder) {
    return isLockedIn(folder, name) ? lockedItem(name) : unlinkItem(folder, name, isFolder);
}

Result<void> confirmRemovable(OpenItem const& item) {
    if (item.name.empty()) return SystemError{.code = EBUSY, .operation = "unlink", .item = "/"};
    Result<IdentifiedItem> const identified = identify(item.item);
    if (!identified.hasValue()) return identified.problem();
    return Removal(item, identified.value(), {}).look();
}

Result<void> removeItem(OpenItem const& item, RemovalQuestions const& questions) {
    if (item.name.empty()) return SystemError{.code = EBUSY, .operation = "unlink", .item = "/"};
    Result<IdentifiedItem> const identified = identify(item.item);
    if (!identified.hasValue()) return identified.problem();
    Result<std::optional<OpenSidecar>> const sidecar = sidecarBeside(item.folder, item.name);
    if (!sidecar.hasValue()) return sidecar.problem();
    Result<void> removed = Removal(item, identified.value(), questions).run();
    if (removed.isDone() && sidecar.value()) removeSidecar(item, *sidecar.value());
    return removed;
}

} // namespace mac
