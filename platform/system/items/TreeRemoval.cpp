#include "platform/system/items/TreeRemoval.h"
#include "platform/system/BytePath.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/OpenItems.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/items/FolderDescent.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr int EmptyingFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

SystemError stale(std::string const& name) { return {.code = ESTALE, .operation = "unlink", .item = name}; }

Result<void> unlinkName(FileDescriptor const& folder, std::string const& name, int flags) {
    if (::unlinkat(folder.number(), name.c_str(), flags) == 0) return {};
    SystemError error = lastSystemError("unlink", name);
    // Another process has removed it meanwhile.
    return error.is(ENOENT) ? Result<void>() : error;
}

struct OpenFolder {
    FileDescriptor folder{};
    ItemPlace place{};
};

// Opens a folder for listing, and lets its owner in where the rules say so.
Result<OpenFolder> openToEmpty(FileDescriptor const& folder, std::string const& name, RemovalRules const& rules) {
    OpenFolder opened{.folder = FileDescriptor(::openat(folder.number(), name.c_str(), EmptyingFlags))};
    if (!opened.folder.isOpen()) {
        SystemError error = lastSystemError("open", name);
        if (!rules.makesAccessible || !error.is(EACCES)) return error;
        letOwnerIn(folder, name);
        opened.folder = FileDescriptor(::openat(folder.number(), name.c_str(), EmptyingFlags));
        if (!opened.folder.isOpen()) return lastSystemError("open", name);
    }
    Result<ItemPlace> const place = placeOf(opened.folder);
    if (!place.hasValue()) return place.problem();
    opened.place = place.value();
    bool const isClosed = (opened.place.mode & S_IRWXU) != S_IRWXU && opened.place.owner == ::geteuid();
    if (rules.makesAccessible && isClosed) ::fchmod(opened.folder.number(), (opened.place.mode & 07777U) | S_IRWXU);
    return opened;
}

// Removes all that is in a folder. Items that are no folders go by their names, without being looked at: whatever has a
// name in the folder is to go. Only two folders are open, however deep it goes.
class ContentsRemoval {
public:
    ContentsRemoval(FileDescriptor folder, std::string name, ItemPlace const& place, RemovalRules const& rules)
        : m_rules(rules), m_name(std::move(name)), m_start(place), m_folder(std::move(folder)) {}

    Result<void> run();

private:
    struct Level {
        ItemPlace place;
        // The folder's name in the one above.
        std::string name;
        std::vector<std::string> folders;
    };

    void list(ItemPlace const& place, std::string name);
    void enter(std::string const& name);
    bool leave();
    void remove(std::string const& name, int flags);
    Result<void> mayRemove(std::string const& name) const;
    // The name is that of an item in the current folder; empty for the folder itself.
    void fail(std::string const& name, SystemError const& error);
    // The path of an item in the current folder from the folder that holds the one to be emptied.
    std::string pathOf(std::string const& name) const;

    RemovalRules const& m_rules;
    // The name of the folder that is to be emptied.
    std::string m_name;
    ItemPlace const m_start;
    FileDescriptor m_folder;
    std::vector<Level> m_levels{};
    std::optional<SystemError> m_firstError{};
    bool m_isCancelled{false};
};

Result<void> ContentsRemoval::run() {
    list(m_start, m_name);
    while (!m_levels.empty() && !m_isCancelled) {
        std::vector<std::string>& folders = m_levels.back().folders;
        if (folders.empty()) {
            if (!leave()) break;
            continue;
        }
        std::string const next = std::move(folders.back());
        folders.pop_back();
        enter(next);
    }
    if (m_firstError) return *m_firstError;
    return {};
}

// Removes what is no folder, and keeps the names of the folders.
void ContentsRemoval::list(ItemPlace const& place, std::string name) {
    m_levels.push_back({.place = place, .name = std::move(name), .folders = {}});
    if (m_rules.shouldContinue && !m_rules.shouldContinue())
        return fail("", {.code = ECANCELED, .operation = "unlink"});
    Result<std::vector<FolderEntry>> entries = entriesOf(m_folder);
    if (!entries.hasValue()) return fail("", entries.problem());
    // In the order in which they lie on the disk.
    std::ranges::sort(entries.value(), {}, &FolderEntry::inode);
    for (FolderEntry& entry : entries.value()) {
        if (m_isCancelled) return;
        if (entry.kind == FolderEntry::Kind::Folder)
            m_levels.back().folders.push_back(std::move(entry.name));
        else
            remove(entry.name, 0);
    }
}

void ContentsRemoval::enter(std::string const& name) {
    Result<OpenFolder> opened = openToEmpty(m_folder, name, m_rules);
    if (!opened.hasValue()) {
        if (opened.problem().is(ENOENT)) return;
        // A folder that may not be listed can be empty.
        if (Result<void> const may = mayRemove(name); !may.isDone()) return fail(name, may.problem());
        bool const isGone = ::unlinkat(m_folder.number(), name.c_str(), AT_REMOVEDIR) == 0;
        return isGone ? void() : fail(name, opened.problem());
    }
    ItemPlace const& place = opened.value().place;
    if (place.mount != m_start.mount) return fail(name, {.code = EBUSY, .operation = "open", .item = name});
    m_folder = std::move(opened.value().folder);
    list(place, name);
}

// Goes back into the very folder that the removal came from, and no other.
bool ContentsRemoval::leave() {
    Level const level = std::move(m_levels.back());
    m_levels.pop_back();
    if (m_levels.empty()) return true;
    FileDescriptor above(::openat(m_folder.number(), "..", EmptyingFlags));
    Result<ItemPlace> const place =
        above.isOpen() ? placeOf(above) : Result<ItemPlace>(lastSystemError("open", level.name));
    if (!place.hasValue() || !(place.value().identity == m_levels.back().place.identity)) {
        fail(level.name, place.hasValue() ? stale(level.name) : place.problem());
        return false;
    }
    m_folder = std::move(above);
    remove(level.name, AT_REMOVEDIR);
    return true;
}

Result<void> ContentsRemoval::mayRemove(std::string const& name) const {
    return m_rules.beforeRemoval ? m_rules.beforeRemoval(m_folder, name, pathOf(name)) : Result<void>();
}

void ContentsRemoval::remove(std::string const& name, int flags) {
    Result<void> const may = mayRemove(name);
    if (!may.isDone()) return fail(name, may.problem());
    Result<void> const removed = unlinkName(m_folder, name, flags);
    if (removed.isDone()) return;
    // The system did not tell that it is a folder.
    if (flags == 0 && removed.problem().is(EISDIR)) return m_levels.back().folders.push_back(name);
    fail(name, removed.problem());
}

void ContentsRemoval::fail(std::string const& name, SystemError const& error) {
    if (!m_firstError) m_firstError = error;
    bool const shouldContinue = !m_rules.shouldContinueAfter || m_rules.shouldContinueAfter(pathOf(name), error);
    m_isCancelled = m_isCancelled || !shouldContinue || error.is(ECANCELED);
}

std::string ContentsRemoval::pathOf(std::string const& name) const {
    std::string path;
    for (Level const& level : m_levels)
        appendComponent(path, level.name);
    if (!name.empty()) appendComponent(path, name);
    return path;
}

bool areSameContents(ItemStatus const& one, ItemStatus const& other) {
    return one.size == other.size && one.modificationTime.tv_sec == other.modificationTime.tv_sec &&
           one.modificationTime.tv_nsec == other.modificationTime.tv_nsec;
}

bool isSameState(ItemStatus const& one, ItemStatus const& other) {
    return one.place.identity == other.place.identity && markOf(one) == markOf(other);
}

void tell(RemovalSteps const& steps, RemovalStep step) {
    if (steps) steps(step);
}

// Removes an item and its companion, or neither.
Result<void> unlinkTogether(FileDescriptor const& folder, std::string const& name, int flags, RemovalSteps const& steps,
                            RemovalCompanion const& companion) {
    Result<void> const mayGo = companion.leave ? companion.leave() : Result<void>();
    if (!mayGo.isDone()) return mayGo;
    tell(steps, RemovalStep::AllAside);
    Result<void> const removed = unlinkName(folder, name, flags);
    if (removed.isDone() || !companion.comeBack) return removed;
    SystemError problem = removed.problem();
    Result<void> const isBack = companion.comeBack();
    if (!isBack.isDone()) problem.item = isBack.problem().item;
    return problem;
}

} // namespace

Result<void> removeTree(FileDescriptor const& folder, std::string const& name, ItemIdentity const& expected,
                        RemovalRules const& rules) {
    Result<ItemStatus> const status = statusOf(folder, name);
    if (!status.hasValue()) return status.problem();
    ItemPlace const& place = status.value().place;
    if (!(place.identity == expected)) return stale(name);
    Result<ItemPlace> const above = placeOf(folder);
    if (!above.hasValue()) return above.problem();
    if (place.mount != above.value().mount) return SystemError{.code = EBUSY, .operation = "unlink", .item = name};
    auto const removeIt = [&](ItemStatus const& state) {
        Result<void> const may = rules.beforeRemoval ? rules.beforeRemoval(folder, name, name) : Result<void>();
        return may.isDone() ? removeExactly(folder, name, state) : may;
    };
    if (!place.isFolder) return removeIt(status.value());
    Result<OpenFolder> opened = openToEmpty(folder, name, rules);
    if (!opened.hasValue()) {
        // A folder that may not be listed can be empty.
        bool const isGone = opened.problem().is(EACCES) && removeIt(status.value()).isDone();
        return isGone ? Result<void>() : opened.problem();
    }
    if (!(opened.value().place.identity == expected)) return stale(name);
    Result<void> const isEmpty = ContentsRemoval(std::move(opened.value().folder), name, place, rules).run();
    if (!isEmpty.isDone()) return isEmpty;
    Result<ItemStatus> const emptied = statusOf(folder, name);
    if (!emptied.hasValue()) return emptied.problem();
    return emptied.value().place.identity == expected ? removeIt(emptied.value()) : stale(name);
}

Result<void> removeExactly(FileDescriptor const& folder, std::string const& name, ItemStatus const& expected,
                           RemovalSteps const& steps, RemovalCompanion const& companion) {
    std::uint64_t const mark = markOf(expected);
    Result<std::string> const aside = asideName(mark);
    if (!aside.hasValue()) return aside.problem();
    // Held open, since a layered file system gives an item that it moves to its upper layer another identity.
    FileDescriptor const item(::openat(folder.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!item.isOpen()) return lastSystemError("open", name);
    Result<ItemStatus> const held = statusOf(item);
    if (!held.hasValue()) return held.problem();
    if (!isSameState(held.value(), expected)) return stale(name);
    tell(steps, RemovalStep::Checked);
    if (Result<void> const away = moveAside(folder, name, aside.value()); !away.isDone()) {
        // Folders of a lower layer cannot be renamed; the system itself removes none that holds anything.
        bool const isLayered = away.problem().is(EXDEV) && expected.place.isFolder;
        return isLayered ? unlinkTogether(folder, name, AT_REMOVEDIR, steps, companion) : away;
    }
    tell(steps, RemovalStep::MovedAside);
    Result<ItemStatus> const found = statusOf(folder, aside.value());
    Result<ItemStatus> const moved = statusOf(item);
    bool const isExpected = found.hasValue() && moved.hasValue() && isSameState(found.value(), moved.value()) &&
                            areSameContents(moved.value(), expected);
    // An item that cannot be looked at goes back, too.
    SystemError problem = found.hasValue() ? stale(name) : found.problem();
    if (isExpected) {
        int const flags = found.value().place.isFolder ? AT_REMOVEDIR : 0;
        Result<void> const removed = unlinkTogether(folder, aside.value(), flags, steps, companion);
        if (removed.isDone()) return {};
        problem = removed.problem();
        if (problem.item == aside.value()) problem.item = name;
    }
    // Another item, a folder that has been filled, or what must not go alone. The name aside stays where no name can be
    // removed, and goes with the leftovers of this process.
    Result<void> const isBack = nameNewFile(folder, aside.value(), name);
    if (!isBack.isDone()) problem.item = aside.value();
    return problem;
}

} // namespace mac
