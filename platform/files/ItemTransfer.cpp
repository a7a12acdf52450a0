#include "platform/files/ItemTransfer.h"
#include "platform/files/FileCopy.h"
#include "platform/files/ItemReferences.h"
#include "platform/files/Trash.h"
#include "platform/files/TrashMove.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/FolderContents.h"
#include "platform/system/NewFile.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/AppleDoubleFile.h"
#include "platform/system/items/FolderDescent.h"
#include "platform/system/items/FolderPlace.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>

namespace mac {

namespace {

constexpr int ListFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

std::int64_t changeTime(FileDescriptor const& folder, std::string const& name) {
    struct stat status {};
    constexpr std::int64_t nanoseconds = 1000000000;
    if (::fstatat(folder.number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW | AT_EMPTY_PATH) != 0) return -1;
    return status.st_ctim.tv_sec * nanoseconds + status.st_ctim.tv_nsec;
}

// What was copied, and the state it was copied in; of folders only that they were.
using CopiedItems = std::unordered_map<ItemIdentity, std::int64_t, ItemIdentityHash>;

// Copies one item. However deep it goes, two folders are open.
class TreeCopy {
public:
    TreeCopy(TransferGoesOn const& goesOn, CopiedItems& copied) : m_goesOn(goesOn), m_copied(copied) {}

    bool run(OpenItem const& item, FileDescriptor const& folder, std::string const& name);

private:
    struct Level {
        ItemPlace place;
        ItemIdentity target;
        std::vector<std::string> names;
    };

    bool copy(std::string const& from, std::string const& to, ItemPlace const& place);
    bool copyFile(std::string const& from, std::string const& to, ItemPlace const& place);
    bool enter(std::string const& from, std::string const& to, ItemPlace const& place);
    bool leave();

    TransferGoesOn const& m_goesOn;
    CopiedItems& m_copied;
    FileDescriptor m_source{};
    FileDescriptor m_target{};
    ItemPlace m_sourceStart{};
    ItemPlace m_targetStart{};
    std::vector<Level> m_levels{};
};

bool TreeCopy::run(OpenItem const& item, FileDescriptor const& folder, std::string const& name) {
    // Of the folder that holds the item only a name is needed.
    m_source = FileDescriptor(::openat(item.folder.number(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    m_target = FileDescriptor(::openat(folder.number(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    std::optional<ItemPlace> const source = m_source.isOpen() ? placeOf(m_source) : std::nullopt;
    std::optional<ItemPlace> const target = m_target.isOpen() ? placeOf(m_target) : std::nullopt;
    std::optional<ItemPlace> const meant = placeOf(item.item);
    std::optional<ItemPlace> const found = source ? placeOf(m_source, item.name) : std::nullopt;
    if (!source || !target || !meant || !found) return false;
    if (!(found->identity == meant->identity)) {
        errno = ESTALE;
        return false;
    }
    m_sourceStart = *source;
    m_targetStart = *target;
    if (!copy(item.name, name, *found)) return false;
    while (!m_levels.empty()) {
        if (m_levels.back().names.empty()) {
            if (!leave()) return false;
            continue;
        }
        std::string const next = std::move(m_levels.back().names.back());
        m_levels.back().names.pop_back();
        std::optional<ItemPlace> const place = placeOf(m_source, next);
        // Somebody was quicker.
        if (!place && errno == ENOENT) continue;
        if (!place || !copy(next, next, *place)) return false;
    }
    return true;
}

bool TreeCopy::copy(std::string const& from, std::string const& to, ItemPlace const& place) {
    if (!m_goesOn()) {
        errno = ECANCELED;
        return false;
    }
    if (place.isFolder) return enter(from, to, place);
    std::int64_t const state = changeTime(m_source, from);
    bool const isFile = S_ISREG(place.mode);
    bool const isCopied = isFile ? copyFile(from, to, place) : copySpecial(m_source, from, m_target, to);
    if (isCopied) m_copied[place.identity] = state;
    return isCopied;
}

bool TreeCopy::copyFile(std::string const& from, std::string const& to, ItemPlace const& place) {
    FileDescriptor const source(
        ::openat(m_source.number(), from.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    std::optional<ItemPlace> const found = source.isOpen() ? placeOf(source) : std::nullopt;
    if (!found) return false;
    if (!(found->identity == place.identity)) {
        errno = ESTALE;
        return false;
    }
    FileDescriptor const target(::openat(m_target.number(), to.c_str(),
                                         O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                         mode_t{S_IRUSR | S_IWUSR}));
    if (!target.isOpen()) return false;
    return copyContents(source, target, m_goesOn) && copyMetadata(source, target, descriptorPath(target));
}

bool TreeCopy::enter(std::string const& from, std::string const& to, ItemPlace const& place) {
    if (place.mount != m_sourceStart.mount) {
        errno = EBUSY;
        return false;
    }
    // The folder leads to its own copy, through a mount.
    if (!m_levels.empty() && place.identity == m_levels.front().target) {
        errno = EINVAL;
        return false;
    }
    FileDescriptor source(::openat(m_source.number(), from.c_str(), ListFlags));
    std::optional<ItemPlace> const found = source.isOpen() ? placeOf(source) : std::nullopt;
    std::optional<std::vector<std::string>> names = found ? namesInOpenFolder(source) : std::nullopt;
    if (!names) return false;
    // They are taken from the end. First come AppleDouble files, so that attributes which the volume has no place for
    // join those that they hold.
    std::partition(names->begin(), names->end(),
                   [](std::string const& name) { return !name.starts_with(AppleDoubleFile::namePrefix); });
    bool const isSame = found->identity == place.identity;
    if (!isSame) errno = ESTALE;
    if (!isSame || ::mkdirat(m_target.number(), to.c_str(), S_IRWXU) != 0) return false;
    FileDescriptor target(::openat(m_target.number(), to.c_str(), ListFlags));
    std::optional<ItemPlace> const made = target.isOpen() ? placeOf(target) : std::nullopt;
    if (!made) return false;
    m_levels.push_back({.place = place, .target = made->identity, .names = std::move(*names)});
    m_source = std::move(source);
    m_target = std::move(target);
    return true;
}

// A folder's own dates come last: every item in it changes them. Back only into the very folders it came from.
bool TreeCopy::leave() {
    Level const level = std::move(m_levels.back());
    m_levels.pop_back();
    if (!copyMetadata(m_source, m_target, descriptorPath(m_target))) return false;
    m_copied[level.place.identity] = 0;
    int const flags = m_levels.empty() ? O_PATH | O_DIRECTORY | O_CLOEXEC : ListFlags;
    FileDescriptor source(::openat(m_source.number(), "..", flags));
    FileDescriptor target(::openat(m_target.number(), "..", flags));
    std::optional<ItemPlace> const sourcePlace = source.isOpen() ? placeOf(source) : std::nullopt;
    std::optional<ItemPlace> const targetPlace = target.isOpen() ? placeOf(target) : std::nullopt;
    if (!sourcePlace || !targetPlace) return false;
    ItemIdentity const above = m_levels.empty() ? m_sourceStart.identity : m_levels.back().place.identity;
    ItemIdentity const targetAbove = m_levels.empty() ? m_targetStart.identity : m_levels.back().target;
    if (!(sourcePlace->identity == above) || !(targetPlace->identity == targetAbove)) {
        errno = ESTALE;
        return false;
    }
    m_source = std::move(source);
    m_target = std::move(target);
    return true;
}

bool removeOne(FileDescriptor const& folder, std::string const& name, ItemPlace const& place) {
    return ::unlinkat(folder.number(), name.c_str(), place.isFolder ? AT_REMOVEDIR : 0) == 0;
}

// A stray AppleDouble file there would be taken for the item's own.
bool wouldAdopt(FileDescriptor const& folder, std::string const& name) {
    if (!companionOf(folder, name).file.isOpen()) return false;
    errno = EEXIST;
    return true;
}

// The AppleDouble file goes by the item's name, so both get theirs or none does.
bool nameCopy(FileDescriptor const& folder, std::string const& from, std::string const& to) {
    std::string const companion = AppleDoubleFile::nameFor(from);
    std::string const newCompanion = AppleDoubleFile::nameFor(to);
    bool const hasCompanion = companionOf(folder, from).file.isOpen();
    if (!hasCompanion && wouldAdopt(folder, to)) return false;
    if (hasCompanion && !renameWithoutReplacing(folder.number(), companion, folder.number(), newCompanion))
        return false;
    if (renameWithoutReplacing(folder.number(), from, folder.number(), to)) return true;
    int const reason = errno;
    if (hasCompanion) renameWithoutReplacing(folder.number(), newCompanion, folder.number(), companion);
    errno = reason;
    return false;
}

void removeCopy(FileDescriptor const& folder, std::string const& name) {
    int const reason = errno;
    if (companionOf(folder, name).file.isOpen()) ::unlinkat(folder.number(), AppleDoubleFile::nameFor(name).c_str(), 0);
    if (std::optional<ItemPlace> const place = placeOf(folder, name))
        descend(folder, name, place->identity, {.makesAccessible = true}, removeOne);
    errno = reason;
}

// Where that cannot be found out it may be so.
bool mayLieIn(FileDescriptor const& folder, ItemIdentity const& item) {
    std::optional<std::vector<ItemIdentity>> const above = folderAndThoseAbove(folder);
    return !above || std::ranges::find(*above, item) != above->end();
}

FileDescriptor anotherOf(FileDescriptor const& folder) {
    return FileDescriptor(::openat(folder.number(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
}

// Makes room for the item: what has the name goes to the trash, from where it can be put back. Nothing, and errno, when
// it stays where it is.
std::optional<TrashedItem> makeRoom(OpenItem const& item, FileDescriptor const& folder, std::string const& name) {
    OpenItem old{.folder = anotherOf(folder),
                 .item = FileDescriptor(::openat(folder.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)),
                 .name = name};
    std::optional<ItemPlace> const place = old.item.isOpen() && old.folder.isOpen() ? placeOf(old.item) : std::nullopt;
    if (!place) return std::nullopt;
    // Not what holds the item itself.
    if (mayLieIn(item.folder, place->identity)) {
        errno = EINVAL;
        return std::nullopt;
    }
    TrashResult<TrashedItem> trashed = moveToTrash(old);
    if (trashed.hasValue()) return trashed.takeValue();
    errno = trashed.failure().problem == TrashProblem::ReadOnly ? EROFS : EPERM;
    return std::nullopt;
}

// Calls `place`, which answers false with EEXIST where something has the name; then once more with room made for it.
// When that fails, too, what had the name has it again.
bool placeOver(OpenItem const& item, FileDescriptor const& folder, std::string const& name, NameClash clash,
               std::function<bool()> const& place) {
    if (place()) return true;
    if (errno != EEXIST || clash == NameClash::IsRefused) return false;
    std::optional<TrashedItem> const old = makeRoom(item, folder, name);
    if (!old) {
        // Only a stray AppleDouble file has it.
        if (errno == ENOENT) errno = EEXIST;
        return false;
    }
    if (place()) return true;
    int const reason = errno;
    putBack(*old);
    errno = reason;
    return false;
}

// The AppleDouble file beside the item, as an item; nothing where there is none.
std::optional<OpenItem> companionItem(OpenItem const& item) {
    Companion companion = companionOf(item.folder, item.name);
    if (!companion.file.isOpen()) return std::nullopt;
    return OpenItem{.folder = anotherOf(item.folder), .item = std::move(companion.file), .name = companion.name};
}

bool copyAs(OpenItem const& item, FileDescriptor const& folder, std::string const& name, NameClash clash,
            TransferGoesOn const& goesOn, CopiedItems& copied) {
    std::optional<ItemPlace> const place = placeOf(item.item);
    if (!place) return false;
    if (place->isFolder && mayLieIn(folder, place->identity)) {
        errno = EINVAL;
        return false;
    }
    if (clash == NameClash::IsRefused && (placeOf(folder, name) || wouldAdopt(folder, name))) {
        errno = EEXIST;
        return false;
    }
    std::string const temporary = unguessableName().value_or("");
    FileDescriptor const listed(::openat(folder.number(), ".", ListFlags));
    // First, so that attributes which the volume has no place for join those that it holds.
    std::optional<OpenItem> const companion = companionItem(item);
    bool const isWhole =
        !temporary.empty() && listed.isOpen() &&
        (!companion || TreeCopy(goesOn, copied).run(*companion, folder, AppleDoubleFile::nameFor(temporary))) &&
        TreeCopy(goesOn, copied).run(item, folder, temporary) && ::syncfs(listed.number()) == 0 &&
        placeOver(item, folder, name, clash, [&] { return nameCopy(folder, temporary, name); });
    if (!isWhole && !temporary.empty()) removeCopy(folder, temporary);
    return isWhole;
}

// Only what was copied goes, and only as it was then; a name that goes changes the file that its others lead to.
bool removeCopied(FileDescriptor const& folder, std::string const& name, ItemPlace const& place, CopiedItems& copied) {
    auto const known = copied.find(place.identity);
    bool const isCopied = known != copied.end() && (place.isFolder || known->second == changeTime(folder, name));
    if (!isCopied) {
        errno = ESTALE;
        return false;
    }
    FileDescriptor const file(::openat(folder.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!file.isOpen() || !removeOne(folder, name, place)) return false;
    known->second = changeTime(file, "");
    return true;
}

bool removeOriginal(OpenItem const& item, CopiedItems& copied) {
    std::optional<ItemPlace> const place = placeOf(item.item);
    if (!place) return false;
    return descend(item.folder, item.name, place->identity, {.makesAccessible = true},
                   [&](FileDescriptor const& folder, std::string const& name, ItemPlace const& found) {
                       return removeCopied(folder, name, found, copied);
                   });
}

// To another folder of the volume, with the AppleDouble file beside it or not at all.
Moved moveWithCompanion(OpenItem const& item, FileDescriptor const& folder, std::string const& name) {
    std::optional<ItemPlace> const from = placeOf(item.folder);
    std::optional<ItemPlace> const to = placeOf(folder);
    if (!from || !to) return Moved::No;
    // Told first: before it is copied, nothing has to make room for it.
    if (from->mount != to->mount) {
        errno = EXDEV;
        return Moved::No;
    }
    Companion const companion = companionOf(item.folder, item.name);
    // "._x" may become "x".
    bool const isTheCompanion = isItemInFolder(folder, AppleDoubleFile::nameFor(name), item.item);
    if (!companion.file.isOpen() && !isTheCompanion && wouldAdopt(folder, name)) return Moved::No;
    Moved const moved = moveItem(item.item, item.folder, item.name, folder, name);
    if (moved != Moved::Yes || !companion.file.isOpen()) return moved;
    Moved const followed =
        moveItem(companion.file, item.folder, companion.name, folder, AppleDoubleFile::nameFor(name));
    if (followed == Moved::Yes || (followed == Moved::No && errno == ENOENT)) return Moved::Yes;
    int const reason = errno;
    bool const isBack = moveItem(item.item, folder, name, item.folder, item.name) == Moved::Yes;
    // What has the new name then is the item itself, not something to make room.
    errno = isBack ? reason : ESTALE;
    return isBack ? Moved::No : Moved::ButAnother;
}

} // namespace

bool copyItem(OpenItem const& item, FileDescriptor const& folder, std::string const& name, NameClash clash,
              TransferGoesOn const& goesOn) {
    CopiedItems copied;
    bool const isCopied = copyAs(item, folder, name, clash, goesOn, copied);
    if (isCopied) flushFolder(folder);
    return isCopied;
}

ItemMove moveItem(OpenItem const& item, FileDescriptor const& folder, std::string const& name, NameClash clash,
                  TransferGoesOn const& goesOn) {
    if (clash == NameClash::IsReplaced && isItemInFolder(folder, name, item.item)) return ItemMove::Done;
    Moved moved = Moved::No;
    bool const isMoved = placeOver(item, folder, name, clash, [&] {
        moved = moveWithCompanion(item, folder, name);
        return moved == Moved::Yes;
    });
    if (isMoved) return ItemMove::Done;
    if (moved == Moved::ButAnother || errno != EXDEV) return ItemMove::NotDone;
    CopiedItems copied;
    std::optional<OpenItem> const companion = companionItem(item);
    if (!copyAs(item, folder, name, clash, goesOn, copied)) return ItemMove::NotDone;
    // Not before the copy's name is on the disk, too.
    bool const isGone =
        flushFolder(folder) && removeOriginal(item, copied) && (!companion || removeOriginal(*companion, copied));
    int const reason = errno;
    releaseRemovedItems();
    errno = reason;
    return isGone ? ItemMove::Done : ItemMove::OriginalStays;
}

} // namespace mac
