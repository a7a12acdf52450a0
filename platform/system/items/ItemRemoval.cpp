#include "platform/system/items/ItemRemoval.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/TemporaryName.h"
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
    Removal(OpenItem const& item, ItemIdentity const& identity, RemovalQuestions const& questions,
            AskedNames names = AskedNames::All)
        : m_item(item), m_identity(identity), m_questions(questions), m_names(names) {}

    Result<void> run() {
        Result<void> const looked = look();
        bool const shouldContinue = looked.isDone() || (!m_asked.empty() && !m_isEnded);
        return shouldContinue ? remove(looked.isDone()) : looked;
    }

    // Looks for what must stay.
    Result<void> look() {
        Result<ItemPlace> const place = placeOf(m_item.item);
        if (!place.hasValue()) return place.problem();
        // Needs no permission to list the folder that holds it.
        if (!place.value().isFolder) return confirmMayGo(m_item.folder, m_item.name, place.value());
        return descend(m_item.folder, m_item.name, m_identity, {.shouldContinueAfter = continuation()},
                       [this](FileDescriptor const& folder, std::string const& name, ItemPlace const& found) {
                           return confirmMayGo(folder, name, found);
                       });
    }

private:
    Result<void> confirmMayGo(FileDescriptor const& folder, std::string const& name, ItemPlace const& place) const {
        if (isLockedIn(folder, name, place)) return lockedItem(name);
        if (m_names == AskedNames::None) return {};
        Result<void> mayGo = confirmNameRemovable(folder, name, place);
        bool const isBelow = !(place.identity == m_identity);
        if (mayGo.isDone() || !isBelow) return mayGo;
        Result<ItemPlace> const above = placeOf(folder);
        if (!above.hasValue()) return mayGo;
        bool const isOpened = m_names == AskedNames::AllInOpenedFolders && mayGo.problem().is(EACCES) &&
                              above.value().owner == ::geteuid();
        // What a locked folder holds is kept by it, and the folder is told.
        return isOpened || above.value().isImmutable ? Result<void>() : mayGo;
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
    AskedNames m_names;
    std::set<std::string> m_asked{};
    bool m_isEnded{false};
};

// Removes the sidecar of a folder that is gone; tries again after an error of the moment.
Result<void> removeSidecar(OpenItem const& item, OpenSidecar const& sidecar) {
    Result<IdentifiedItem> const identified = identify(sidecar.file);
    if (!identified.hasValue()) return identified.problem();
    ItemIdentity const& identity = identified.value().identity;
    Result<void> removed = removeTree(item.folder, sidecar.name, identity);
    if (!removed.isDone()) removed = removeTree(item.folder, sidecar.name, identity);
    // What has its name by then is not the folder's.
    bool const isGone = removed.isDone() || removed.problem().is(ENOENT) || removed.problem().is(ESTALE);
    return isGone ? Result<void>() : removed;
}

// The sidecar of an item that is removed: it lies aside while the item goes, and comes back if the item stays.
class LeavingSidecar {
public:
    // The name goes with this process while the sidecar has it. Both others must outlive the object.
    LeavingSidecar(OpenItem const& item, OpenSidecar const& sidecar, std::string aside)
        : m_item(item), m_sidecar(sidecar), m_aside(std::move(aside)) {}

    Result<void> leave() {
        FileDescriptor const& folder = m_item.folder;
        if (Result<void> const away = moveAside(folder, m_sidecar.name, m_aside); !away.isDone())
            return away.problem().is(ENOENT) ? Result<void>() : away;
        Result<void> const isSidecar = confirmItemInFolder(folder, m_aside, m_sidecar.file);
        m_isAside = isSidecar.isDone();
        if (m_isAside || giveNameBack().isDone()) return isSidecar;
        SystemError problem = isSidecar.problem();
        problem.item = m_aside;
        return problem;
    }

    // A sidecar that cannot come back gets a name that it keeps if this process is killed; the error tells it.
    Result<void> comeBack() {
        if (!m_isAside) return {};
        m_isAside = false;
        m_isBack = giveNameBack().isDone() || giveNameBack().isDone() ||
                   confirmItemInFolder(m_item.folder, m_sidecar.name, m_sidecar.file).isDone();
        if (m_isBack) return {};
        SystemError problem{.code = EEXIST, .operation = "rename", .item = m_aside};
        Result<std::string> const kept = asideName(MarkOfNoItem);
        if (kept.hasValue() && moveAside(m_item.folder, m_aside, kept.value()).isDone()) problem.item = kept.value();
        return problem;
    }

    // Takes the sidecar away again if another item has the name of its own by now.
    void followItem() const {
        // An item that cannot be looked at tells no other from itself.
        Result<IdentifiedItem> const item = identify(m_item.item);
        if (!m_isBack || !item.hasValue()) return;
        Result<void> const isThere = confirmItemInFolder(m_item.folder, m_item.name, item.value().identity);
        bool const isElsewhere = !isThere.isDone() && (isThere.problem().is(ENOENT) || isThere.problem().is(ESTALE));
        if (!isElsewhere || !confirmItemInFolder(m_item.folder, m_sidecar.name, m_sidecar.file).isDone()) return;
        // The sidecar may still have the name aside, too, and renaming one link of a file to another does nothing.
        Result<std::string> const kept = asideName(MarkOfNoItem);
        if (kept.hasValue()) static_cast<void>(moveAside(m_item.folder, m_sidecar.name, kept.value()));
    }

    // If it cannot be removed, it goes with the leftovers of this process.
    void remove() const {
        if (!m_isAside) return;
        while (::unlinkat(m_item.folder.number(), m_aside.c_str(), 0) != 0 && errno == EINTR) {}
    }

private:
    // The name aside stays where no name can be removed, and goes with the leftovers of this process.
    Result<void> giveNameBack() const { return nameNewFile(m_item.folder, m_aside, m_sidecar.name); }

    OpenItem const& m_item;
    OpenSidecar const& m_sidecar;
    std::string m_aside;
    bool m_isAside{false};
    bool m_isBack{false};
};

// Removes one item in the state that it has now.
Result<void> removeNowWithSidecar(OpenItem const& item, OpenSidecar const& sidecar, RemovalSteps const& steps) {
    Result<ItemStatus> const status = statusOf(item.item);
    if (!status.hasValue()) return status.problem();
    Result<ItemStatus> const beside = statusOf(sidecar.file);
    if (!beside.hasValue()) return beside.problem();
    Result<std::string> aside = asideName(markOf(beside.value()));
    if (!aside.hasValue()) return aside.problem();
    LeavingSidecar leaving(item, sidecar, aside.takeValue());
    Result<void> const removed =
        removeExactly(item.folder, item.name, status.value(), steps,
                      {.leave = [&] { return leaving.leave(); }, .comeBack = [&] { return leaving.comeBack(); }});
    if (removed.isDone())
        leaving.remove();
    else
        leaving.followItem();
    return removed;
}

// Removes one item that holds no others, and its sidecar, or neither: both lie aside before the first one goes. An item
// that another process is writing changes between two looks, and is tried several times.
Result<void> removeWithSidecar(OpenItem const& item, OpenSidecar const& sidecar, RemovalSteps const& steps = {}) {
    constexpr unsigned mostTries = 8;
    for (unsigned tries = 1;; ++tries) {
        Result<void> const removed = removeNowWithSidecar(item, sidecar, steps);
        // If the item lies under another name now, the error tells that name.
        bool const hasChanged =
            !removed.isDone() && removed.problem().is(ESTALE) && removed.problem().item == item.name;
        bool const isWritten = hasChanged && confirmItemInFolder(item.folder, item.name, item.item).isDone();
        if (!isWritten || tries == mostTries) return removed;
    }
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
    if (sidecar.value()) return removeWithSidecar(item, *sidecar.value());
    return removeExactly(item.folder, item.name, status.value());
}

Result<void> confirmRemovable(OpenItem const& item, AskedNames names) {
    if (item.name.empty()) return SystemError{.code = EBUSY, .operation = "unlink", .item = "/"};
    Result<IdentifiedItem> const identified = identify(item.item);
    if (!identified.hasValue()) return identified.problem();
    return Removal(item, identified.value().identity, {}, names).look();
}

Result<void> removeItem(OpenItem const& item, RemovalQuestions const& questions) {
    if (item.name.empty()) return SystemError{.code = EBUSY, .operation = "unlink", .item = "/"};
    Result<IdentifiedItem> const identified = identify(item.item);
    if (!identified.hasValue()) return identified.problem();
    Result<std::optional<OpenSidecar>> const sidecar = sidecarBeside(item.folder, item.name);
    if (!sidecar.hasValue()) return sidecar.problem();
    Removal removal(item, identified.value().identity, questions);
    if (!sidecar.value()) return removal.run();
    if (identified.value().isFolder) {
        Result<void> const removed = removal.run();
        return removed.isDone() ? removeSidecar(item, *sidecar.value()) : removed;
    }
    if (Result<void> const looked = removal.look(); !looked.isDone()) return looked;
    if (questions.willRemove) questions.willRemove(item.name);
    return removeWithSidecar(item, *sidecar.value(), questions.steps);
}

} // namespace mac
