#include "platform/system/ExclusiveRename.h"
#include "platform/system/BytePath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/items/ItemIdentity.h"
#include "platform/system/items/ItemStatus.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

SystemError nameIsTaken(std::string const& name) { return {.code = EEXIST, .operation = "rename", .item = name}; }

std::optional<struct stat> foundAt(FileDescriptor const& folder, std::string const& name) {
    struct stat status {};
    int const failed = ::fstatat(folder.number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW);
    return failed ? std::nullopt : std::optional(status);
}

// The file system cannot rename exclusively.
bool isUnknownToFileSystem(SystemError const& error) { return error.is(EINVAL) || error.is(ENOSYS); }

// The file system has no such links, or not for this user and file.
bool cannotLink(SystemError const& error) {
    return isUnknownToFileSystem(error) || error.is(EPERM) || error.is(EMLINK) || error.is(EOPNOTSUPP);
}

// Removes a name that no other process uses; an interrupted call is made again. A server that is asked twice answers
// the second time that the name is gone.
bool removeOwnName(FileDescriptor const& folder, std::string const& name) {
    int answer = -1;
    do {
        answer = ::unlinkat(folder.number(), name.c_str(), 0);
    } while (answer != 0 && errno == EINTR);
    return answer == 0 || errno == ENOENT;
}

// Asks for the item's state anew: a file system that keeps states by name for a while, as FUSE does, would go on
// telling the one before the other name went, and the item seem changed later.
void refreshState(FileDescriptor const& folder, std::string const& name) {
    constexpr int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_FORCE_SYNC;
    struct statx status {};
    static_cast<void>(::statx(folder.number(), name.c_str(), flags, STATX_BASIC_STATS, &status));
}

// Gives the open item another name. Where the system shows no open files under /proc, the item is not found.
Result<void> giveName(FileDescriptor const& item, FileDescriptor const& folder, std::string const& name) {
    if (::linkat(AT_FDCWD, descriptorPath(item).c_str(), folder.number(), name.c_str(), AT_SYMLINK_FOLLOW) != 0)
        return lastSystemError("link", name);
    return {};
}

// A failure behind the first link: both folders lie on one volume then, so the item is not to be copied.
Result<void> onOneVolume(Result<void> result) {
    if (result.isDone() || !result.problem().is(EXDEV)) return result;
    SystemError error = result.problem();
    error.code = EIO;
    return error;
}

// Whether the file system can give the open item a second name that shows it to be the same item. Found out under a
// name that no other process knows.
Result<void> confirmSecondNames(FileDescriptor const& item, FileDescriptor const& folder) {
    Result<std::string> const name = temporaryName();
    if (!name.hasValue()) return name.problem();
    if (Result<void> const named = giveName(item, folder, name.value()); !named.isDone()) return named;
    Result<void> const isSame = confirmItemInFolder(folder, name.value(), item);
    removeOwnName(folder, name.value());
    if (isSame.isDone() || !isSame.problem().is(ESTALE)) return onOneVolume(isSame);
    return SystemError{.code = EOPNOTSUPP, .operation = "link", .item = name.value()};
}

bool isSecondNameOf(FileDescriptor const& second, FileDescriptor const& item) {
    if (!second.isOpen()) return false;
    Result<IdentifiedItem> const one = identify(second);
    Result<IdentifiedItem> const other = identify(item);
    return one.hasValue() && other.hasValue() && one.value().identity == other.value().identity;
}

// Whether the name was seen to lead to the open item, to none or to another one.
enum class Leads { ToItem, ToNone, ToAnother, Unseen };
Leads whereLeads(FileDescriptor const& folder, std::string const& name, FileDescriptor const& item) {
    Result<IdentifiedItem> const expected = identify(item);
    if (!expected.hasValue()) return Leads::Unseen;
    Result<IdentifiedItem> const found = identify(folder, name);
    if (found.hasValue()) return found.value().identity == expected.value().identity ? Leads::ToItem : Leads::ToAnother;
    return found.problem().is(ENOENT) ? Leads::ToNone : Leads::Unseen;
}

Result<void> renameExclusively(FileDescriptor const& fromFolder, std::string const& from,
                               FileDescriptor const& toFolder, std::string const& to) {
    if (::renameat2(fromFolder.number(), from.c_str(), toFolder.number(), to.c_str(), RENAME_NOREPLACE) != 0)
        return lastSystemError("rename", from);
    return {};
}

} // namespace

Result<void> renameWithoutReplacing(FileDescriptor const& fromFolder, std::string const& from,
                                    FileDescriptor const& toFolder, std::string const& to) {
    Result<void> renamed = renameExclusively(fromFolder, from, toFolder, to);
    if (renamed.isDone() || !isUnknownToFileSystem(renamed.problem())) return renamed;
    return StepwiseRename().rename(fromFolder, from, toFolder, to);
}

Result<void> moveAside(FileDescriptor const& folder, std::string const& name, std::string const& aside) {
    if (::renameat(folder.number(), name.c_str(), folder.number(), aside.c_str()) != 0)
        return lastSystemError("rename", name);
    return {};
}

Result<void> nameNewFile(FileDescriptor const& folder, std::string const& from, std::string const& to) {
    Result<void> renamed = renameExclusively(folder, from, folder, to);
    if (renamed.isDone() || !isUnknownToFileSystem(renamed.problem())) return renamed;
    if (::linkat(folder.number(), from.c_str(), folder.number(), to.c_str(), 0) != 0) {
        SystemError error = lastSystemError("link", from);
        return cannotLink(error) ? StepwiseRename().rename(folder, from, folder, to) : error;
    }
    removeOwnName(folder, from);
    refreshState(folder, to);
    return {};
}

Result<void> StepwiseRename::rename(FileDescriptor const& fromFolder, std::string const& from,
                                    FileDescriptor const& toFolder, std::string const& to) const {
    Place const first{fromFolder, from};
    Place const second{toFolder, to};
    struct stat item {};
    if (::fstatat(fromFolder.number(), from.c_str(), &item, AT_SYMLINK_NOFOLLOW) != 0)
        return lastSystemError("stat", from);
    if (S_ISDIR(item.st_mode)) return renameToFreeName(first, second);
    Result<void> renamed = renameBySecondName(first, second);
    if (renamed.isDone() || !cannotLink(renamed.problem())) return renamed;
    renamed = renameByLink(first, second);
    return !renamed.isDone() && cannotLink(renamed.problem()) ? renameToFreeName(first, second) : renamed;
}

void StepwiseRename::tellFirstStep() const {
    if (m_afterFirstStep) m_afterFirstStep();
}

Result<void> StepwiseRename::renameBySecondName(Place const& from, Place const& to) const {
    FileDescriptor item(::openat(from.folder.number(), from.name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!item.isOpen()) return lastSystemError("open", from.name);
    // Spares the trial where the name is taken; the system refuses it below at any rate.
    if (foundAt(to.folder, to.name)) return nameIsTaken(to.name);
    if (Result<void> const can = confirmSecondNames(item, to.folder); !can.isDone()) return can;
    if (Result<void> const named = giveName(item, to.folder, to.name); !named.isDone()) return onOneVolume(named);
    // Some file systems lose an open item when the name goes by which it was opened; others keep such a name, as long
    // as it is open, under one of their own.
    FileDescriptor second(::openat(to.folder.number(), to.name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (isSecondNameOf(second, item)) item = std::move(second);
    tellFirstStep();
    Result<void> removed = removeFirstName(from, to, item);
    if (!removed.isDone() && !removed.problem().is(EEXIST)) takeBackSecondName(from, to, item, removed.problem());
    if (removed.isDone()) refreshState(to.folder, to.name);
    return onOneVolume(removed);
}

// The open item has both names. Done if it has the second one only; EEXIST if another item has the second one, or if
// the second one is to stay because the item may have lost the first; ENOENT if it has got yet another name instead of
// the first.
Result<void> StepwiseRename::removeFirstName(Place const& from, Place const& to, FileDescriptor const& item) {
    Result<void> removed = removeName(from, item, &to, IfItStays::GetsItsNameBack);
    if (removed.isDone() || !(removed.problem().is(ESTALE) || removed.problem().is(ENOENT))) return removed;
    // Another item has the first name by now, which is none of ours, or none has. A server's own ESTALE tells neither.
    Leads const first = whereLeads(from.folder, from.name, item);
    bool const isFirstGone = first == Leads::ToNone || first == Leads::ToAnother;
    Result<ItemStatus> const status = statusOf(item);
    SystemError const unseen{.code = EIO, .operation = "rename", .item = from.name};
    if (!isFirstGone || !status.hasValue()) return unseen;
    bool const hasOtherName = first == Leads::ToNone && status.value().links > 1;
    // Behind an ESTALE the other name may be the one aside.
    if (hasOtherName) return removed.problem().is(ENOENT) ? removed : unseen;
    return whereLeads(to.folder, to.name, item) == Leads::ToItem ? Result<void>() : unseen;
}

// Removes the second name where the first could not be removed, unless it may be the item's only one.
void StepwiseRename::takeBackSecondName(Place const& from, Place const& to, FileDescriptor const& item,
                                        SystemError const& problem) {
    bool const hasOtherName = problem.is(ENOENT);
    if (hasOtherName) static_cast<void>(removeName(to, item, nullptr, IfItStays::GetsItsNameBack));
    if (hasOtherName || whereLeads(from.folder, from.name, item) != Leads::ToItem) return;
    static_cast<void>(removeName(to, item, &from, IfItStays::StaysAside));
}

// EEXIST if the name does not lead to the open item.
Result<void> StepwiseRename::confirmStillNamed(Place const& place, FileDescriptor const& item) {
    Result<void> isThere = confirmItemInFolder(place.folder, place.name, item);
    bool const isAnother = !isThere.isDone() && (isThere.problem().is(ESTALE) || isThere.problem().is(ENOENT));
    return isAnother ? nameIsTaken(place.name) : isThere;
}

// Removes a name of the open item: ESTALE if it leads to another one, EEXIST if the remaining name does. A name that
// cannot be removed is given back, or stays aside, where it goes with the leftovers of this process.
Result<void> StepwiseRename::removeName(Place const& place, FileDescriptor const& item, Place const* remaining,
                                        IfItStays ifItStays) {
    if (Result<void> const isThere = confirmItemInFolder(place.folder, place.name, item); !isThere.isDone())
        return isThere;
    Result<ItemStatus> const status = statusOf(item);
    if (!status.hasValue()) return status.problem();
    // Never the last one.
    if (remaining == nullptr && status.value().links < 2) return nameIsTaken(place.name);
    Result<std::string> const aside = asideName(markOf(status.value()));
    if (!aside.hasValue()) return aside.problem();
    Place const there{place.folder, aside.value()};
    if (Result<void> const away = moveAside(place.folder, place.name, aside.value()); !away.isDone()) {
        // A server that is asked twice answers the second time that the name is gone.
        Result<void> const isAside = confirmItemInFolder(there.folder, there.name, item);
        if (!isAside.isDone()) return away.problem().is(ENOENT) ? isAside : away;
    }
    Result<void> mayGo = confirmItemInFolder(there.folder, there.name, item);
    if (mayGo.isDone() && remaining != nullptr) mayGo = confirmStillNamed(*remaining, item);
    if (mayGo.isDone()) {
        if (removeOwnName(there.folder, there.name)) return {};
        mayGo = lastSystemError("unlink", place.name);
        if (ifItStays == IfItStays::StaysAside) return mayGo;
    }
    Result<void> const isBack = giveBackName(there, place);
    return isBack.isDone() ? mayGo : isBack;
}

// Gives an item that was moved aside its name again. If that cannot be done, the item stays aside and the error, EEXIST
// then, tells where: no other name of it may be removed.
Result<void> StepwiseRename::giveBackName(Place const& aside, Place const& place) {
    if (::linkat(aside.folder.number(), aside.name.c_str(), place.folder.number(), place.name.c_str(), 0) == 0) {
        removeOwnName(aside.folder, aside.name);
        return {};
    }
    if (lastSystemError("link", aside.name).is(EEXIST)) return nameIsTaken(aside.name);
    Result<void> const isBack = StepwiseRename().renameToFreeName(aside, place);
    return isBack.isDone() ? isBack : nameIsTaken(aside.name);
}

Result<void> StepwiseRename::renameByLink(Place const& from, Place const& to) const {
    Result<std::string> const text = textOfLink(from, to);
    if (!text.hasValue()) return text.problem();
    if (::symlinkat(text.value().c_str(), to.folder.number(), to.name.c_str()) != 0)
        return lastSystemError("symlink", to.name);
    FileDescriptor const link(::openat(to.folder.number(), to.name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    SystemError problem = link.isOpen() ? SystemError() : lastSystemError("open", to.name);
    tellFirstStep();
    if (link.isOpen()) {
        Result<void> const isThere = confirmItemInFolder(to.folder, to.name, link);
        bool const isRenamed = isThere.isDone() && ::renameat(from.folder.number(), from.name.c_str(),
                                                              to.folder.number(), to.name.c_str()) == 0;
        if (isRenamed) return {};
        problem = isThere.isDone() ? lastSystemError("rename", from.name) : isThere.problem();
    }
    // Another process has replaced the link, or still finds it.
    if (problem.is(ESTALE)) return nameIsTaken(to.name);
    if (linkTextIn(to.folder, to.name).valueOr("") == text.value()) ::unlinkat(to.folder.number(), to.name.c_str(), 0);
    return problem;
}

// Leads from the new name to the item.
Result<std::string> StepwiseRename::textOfLink(Place const& from, Place const& to) {
    Result<IdentifiedItem> const folder = identify(from.folder);
    if (!folder.hasValue()) return folder.problem();
    Result<IdentifiedItem> const newFolder = identify(to.folder);
    if (!newFolder.hasValue()) return newFolder.problem();
    if (folder.value().identity == newFolder.value().identity) return from.name;
    Result<std::string> const path = systemsPath(from.folder);
    // Too long for a link; the name alone tells as much.
    return path.hasValue() ? BytePath(path.value()).joined(from.name) : from.name;
}

// The system itself replaces no folder that is not empty, and no file by a folder.
Result<void> StepwiseRename::renameToFreeName(Place const& from, Place const& to) const {
    if (foundAt(to.folder, to.name)) return nameIsTaken(to.name);
    tellFirstStep();
    if (foundAt(to.folder, to.name)) return nameIsTaken(to.name);
    if (::renameat(from.folder.number(), from.name.c_str(), to.folder.number(), to.name.c_str()) == 0) return {};
    SystemError error = lastSystemError("rename", from.name);
    return error.is(ENOTEMPTY) ? nameIsTaken(to.name) : error;
}

} // namespace mac
