#include "platform/desktop/autostart/AutostartChanges.h"
#include "platform/desktop/entries/DesktopEntry.h"
#include "platform/system/BytePath.h"
#include "platform/system/FileWriting.h"
#include "platform/system/OpenItems.h"
#include "platform/system/XDGFolders.h"
#include "platform/system/items/ItemLock.h"
#include "platform/system/items/ItemStatus.h"
#include "platform/system/items/TreeRemoval.h"
#include <cerrno>
#include <fcntl.h>
#include <span>
#include <unistd.h>

namespace mac {

namespace {

// An entry is larger than a hundred bytes and smaller by far; what is larger was not read.
constexpr std::size_t LargestRemovedFile = std::size_t{1} << 20;
// What an entry names is run when its owner logs in, so nobody else writes a new one, whatever the umask.
constexpr unsigned EntryMode = 0644;
constexpr unsigned OwnersAlone = 0600;
constexpr unsigned MostNames = 10'000;

std::span<std::byte const> bytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

Result<FileDescriptor> openUsersFolder() {
    std::string const path = BytePath(configHome()).joined("autostart");
    Result<void> const made = makeFolderAtPath(path);
    if (!made.isDone()) return made.problem();
    return openPath(path, O_RDONLY | O_DIRECTORY);
}

// Creates the file; EEXIST if the name is taken.
Result<void> createFile(FileDescriptor const& folder, std::string const& name, std::span<std::byte const> bytes) {
    return replaceFileInFolder(folder, name, bytes, {.newFileMode = EntryMode, .hasToBe = true});
}

Result<void> createLink(FileDescriptor const& folder, std::string const& name, std::string const& text) {
    if (::symlinkat(text.c_str(), folder.number(), name.c_str()) != 0) return lastSystemError("symlink", name);
    return flushFolder(folder);
}

// Calls the function with "BEGINNING.desktop", "BEGINNING-2.desktop" and so on until one is not taken, and answers that
// name.
template <class Create>
Result<std::string> createUnderFreeName(std::string const& beginning, Create const& create) {
    for (unsigned number = 1; number <= MostNames; ++number) {
        std::string name = beginning + (number == 1 ? "" : "-" + std::to_string(number)) + ".desktop";
        Result<bool> const isTaken = isAutostartNameTaken(name);
        if (!isTaken.hasValue()) return isTaken.problem();
        if (isTaken.value()) continue;
        Result<void> const created = create(name);
        if (created.isDone()) return name;
        if (!created.problem().is(EEXIST)) return created.problem();
    }
    return SystemError{.code = EEXIST, .operation = "create", .item = beginning};
}

// Removes the file or link of a name if it is still as it was.
Result<void> removeItem(FileDescriptor const& folder, std::string const& name, FileStatus const& expected) {
    FileDescriptor const item(::openat(folder.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!item.isOpen()) return lastSystemError("open", name);
    Result<FileStatus> const status = fileStatusOf(item);
    if (!status.hasValue()) return status.problem();
    if (status.value() != expected) return SystemError{.code = ESTALE, .operation = "remove", .item = name};
    if (isLockedIn(folder, name)) return lockedItem(name);
    Result<ItemStatus> const state = statusOf(item);
    if (!state.hasValue()) return state.problem();
    if (Result<void> const removed = removeExactly(folder, name, state.value()); !removed.isDone()) return removed;
    // The entry is removed even if flushing to the disk fails; a failure would mean that nothing was changed.
    (void)flushFolder(folder);
    return {};
}

// Reads what the user's file is restored from.
Result<void> remember(FileDescriptor const& folder, AutostartItem const& item, RemovedAutostart& removed) {
    if (item.status.kind != FileStatus::Kind::File) {
        Result<std::string> text = linkTextIn(folder, item.fileName);
        if (!text.hasValue()) return text.problem();
        removed.linkText = text.takeValue();
        return {};
    }
    FileDescriptor const file(
        ::openat(folder.number(), item.fileName.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen()) return lastSystemError("open", item.fileName);
    Result<ItemAccess> access = accessOf(file);
    if (!access.hasValue()) return access.problem();
    Result<FileContents> contents = readOpenFile(file, LargestRemovedFile);
    if (!contents.hasValue()) return contents.problem();
    if (contents.value().status != item.status)
        return SystemError{.code = ESTALE, .operation = "read", .item = item.fileName};
    removed.bytes = std::move(contents.value().bytes);
    removed.access = access.takeValue();
    return {};
}

// Replaces the item by an entry that hides the system's.
Result<void> mask(FileDescriptor const& folder, AutostartItem const& item, RemovedAutostart& removed) {
    std::string const& name = item.fileName;
    std::string const text = textOfAutostartMask(name);
    FileReplacement how{.newFileMode = EntryMode, .hasToBe = true};
    if (removed.bytes) how.state = item.status;
    if (removed.linkText) {
        Result<void> const gone = removeItem(folder, name, item.status);
        if (!gone.isDone()) return gone;
    }
    Result<void> const written = replaceFileInFolder(folder, name, bytesOf(text), how);
    if (!written.isDone()) {
        // The link comes back; if it cannot, the first problem is the one to tell.
        if (removed.linkText) (void)createLink(folder, name, *removed.linkText);
        return written;
    }
    Result<FileStatus> const status = fileStatusInFolder(folder, name);
    if (!status.hasValue()) return status.problem();
    removed.mask = status.value();
    return {};
}

// Writes the user's file in place of the mask; in a free place if that is nullopt.
Result<void> writeAsItWas(FileDescriptor const& folder, std::string const& name, RemovedAutostart const& removed,
                          std::optional<FileStatus> const& mask) {
    FileReplacement const how{
        .newFileMode = OwnersAlone, .hasToBe = true, .state = mask, .beforeRenaming = [&](FileDescriptor const& file) {
            return giveAccess(file, removed.access, InheritedList::MayBeThere);
        }};
    return replaceFileInFolder(folder, name, *removed.bytes, how);
}

Result<void> createAsItWas(FileDescriptor const& folder, std::string const& name, RemovedAutostart const& removed) {
    if (removed.bytes) return writeAsItWas(folder, name, removed, std::nullopt);
    return createLink(folder, name, *removed.linkText);
}

bool isMissing(FileDescriptor const& folder, std::string const& name) {
    Result<FileStatus> const status = fileStatusInFolder(folder, name);
    return !status.hasValue() && status.problem().is(ENOENT);
}

std::string withoutExtension(std::string const& fileName) { return fileName.substr(0, fileName.rfind('.')); }

} // namespace

Result<std::string> addAutostart(NewAutostartEntry const& entry) {
    if (needsLauncher(entry) && !resolvedProgram(entry.launcher))
        return SystemError{.code = ENOENT, .operation = "start", .item = entry.launcher};
    Result<FileDescriptor> const folder = openUsersFolder();
    if (!folder.hasValue()) return folder.problem();
    std::string const text = textOfAutostartEntry(entry);
    return createUnderFreeName(autostartNameFor(entry.item), [&](std::string const& name) {
        return createFile(folder.value(), name, bytesOf(text));
    });
}

Result<bool> needsMask(AutostartItem const& item) { return item.isOfUser ? isStartedBySystem(item.fileName) : true; }

Result<RemovedAutostart> removeAutostart(AutostartItem const& item) {
    Result<FileDescriptor> const folder = openUsersFolder();
    if (!folder.hasValue()) return folder.problem();
    RemovedAutostart removed{.fileName = item.fileName};
    if (item.isOfUser) {
        Result<void> const remembered = remember(folder.value(), item, removed);
        if (!remembered.isDone()) return remembered.problem();
    }
    Result<bool> const needs = needsMask(item);
    if (!needs.hasValue()) return needs.problem();
    Result<void> const done =
        needs.value() ? mask(folder.value(), item, removed) : removeItem(folder.value(), item.fileName, item.status);
    return done.isDone() ? Result<RemovedAutostart>(std::move(removed)) : done.problem();
}

Result<std::string> restoreAutostart(RemovedAutostart const& removed) {
    Result<FileDescriptor> const folder = openUsersFolder();
    if (!folder.hasValue()) return folder.problem();
    std::string const& name = removed.fileName;
    bool const isMasked = removed.mask && !isMissing(folder.value(), name);
    if (isMasked && removed.bytes) {
        Result<void> const written = writeAsItWas(folder.value(), name, removed, removed.mask);
        return written.isDone() ? Result<std::string>(name) : written.problem();
    }
    if (isMasked) {
        Result<void> const gone = removeItem(folder.value(), name, *removed.mask);
        if (!gone.isDone()) return gone.problem();
    }
    if (!removed.bytes && !removed.linkText) return name;
    Result<void> const created = createAsItWas(folder.value(), name, removed);
    if (created.isDone()) return name;
    if (!created.problem().is(EEXIST)) return created.problem();
    return createUnderFreeName(withoutExtension(name),
                               [&](std::string const& free) { return createAsItWas(folder.value(), free, removed); });
}

} // namespace mac
