#include "platform/system/items/TreeCopy.h"
#include "platform/system/BytePath.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/ItemAccess.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

// Removes what this process made; an interrupted call is made again. The flags are the system call's.
void removeUnfinished(FileDescriptor const& folder, std::string const& name, int flags) {
    int answer = -1;
    do {
        answer = ::unlinkat(folder.number(), name.c_str(), flags);
    } while (answer != 0 && errno == EINTR);
}

constexpr int CopiedFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
// Folders of which only a name is needed need not be readable.
constexpr int NameFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

Result<FileDescriptor> openIn(FileDescriptor const& folder, std::string const& name, int flags) {
    // The mode counts for a new file only.
    FileDescriptor opened(::openat(folder.number(), name.c_str(), flags, mode_t{S_IRUSR | S_IWUSR}));
    if (!opened.isOpen()) return lastSystemError("open", name);
    return opened;
}

bool isMissing(FileDescriptor const& folder, std::string const& name) {
    Result<ItemPlace> const place = placeOf(folder, name);
    return !place.hasValue() && place.problem().is(ENOENT);
}

SystemError exchangedItem(std::string const& name) { return {.code = ESTALE, .operation = "open", .item = name}; }

// Opens the folder above, which must be the expected one.
Result<FileDescriptor> openAbove(FileDescriptor const& folder, int flags, ItemIdentity const& expected) {
    Result<FileDescriptor> above = openIn(folder, "..", flags);
    if (!above.hasValue()) return above;
    Result<ItemPlace> const found = placeOf(above.value());
    if (!found.hasValue()) return found.problem();
    if (!(found.value().identity == expected)) return exchangedItem("..");
    return above;
}

bool isOpenToOthers(ItemPlace const& place) { return (place.mode & (S_IRWXG | S_IRWXO)) != 0; }

// What the volume makes of the owner and mode of an item that this user makes for himself alone: file systems without
// owners show one and the same for all items, and servers may have an owner of their own for those of an administrator.
Result<ItemPlace> privateItemIn(FileDescriptor const& folder) {
    Result<std::string> const name = temporaryName();
    if (!name.hasValue()) return name.problem();
    Result<FileDescriptor> const file =
        openIn(folder, name.value(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC);
    if (!file.hasValue()) return file.problem();
    Result<ItemPlace> place = placeOf(file.value());
    removeUnfinished(folder, name.value(), 0);
    return place;
}

// ESTALE if the folder that was opened after it was made can be one that another user has put in its place.
Result<void> confirmOwnFolder(FileDescriptor const& made, FileDescriptor const& folder, std::string const& name) {
    Result<ItemPlace> const place = placeOf(made);
    if (!place.hasValue()) return place.problem();
    Result<ItemPlace> const around = placeOf(folder);
    if (!around.hasValue()) return around.problem();
    if (place.value().mount != around.value().mount) return exchangedItem(name);
    if (place.value().owner == ::geteuid() && !isOpenToOthers(place.value())) return {};
    Result<ItemPlace> const usual = privateItemIn(folder);
    if (!usual.hasValue()) return usual.problem();
    bool const isUsual =
        place.value().owner == usual.value().owner && (!isOpenToOthers(place.value()) || isOpenToOthers(usual.value()));
    return isUsual ? Result<void>() : exchangedItem(name);
}

// Opens the folder that has just been made, and removes the access lists that the folder around it has handed on.
Result<FileDescriptor> openMadeFolder(FileDescriptor const& folder, std::string const& name, InheritedList lists) {
    Result<FileDescriptor> made = openIn(folder, name, CopiedFolderFlags);
    if (!made.hasValue()) return made;
    if (Result<void> const own = confirmOwnFolder(made.value(), folder, name); !own.isDone()) return own.problem();
    if (lists == InheritedList::IsRemoved) return made;
    if (Result<void> const removed = removeInheritedLists(made.value()); !removed.isDone()) return removed.problem();
    return made;
}

// Makes a folder for this user alone, without the access lists that the folder around it hands on.
Result<FileDescriptor> makeFolder(FileDescriptor const& folder, std::string const& name, InheritedList lists,
                                  CopySteps const& steps) {
    if (::mkdirat(folder.number(), name.c_str(), S_IRWXU) != 0) return lastSystemError("mkdir", name);
    if (steps) steps(CopyStep::FolderMade);
    Result<FileDescriptor> made = openMadeFolder(folder, name, lists);
    // Only an empty folder goes.
    if (!made.hasValue()) removeUnfinished(folder, name, AT_REMOVEDIR);
    return made;
}

FolderEntry::Kind kindOf(ItemStatus const& status) {
    if (status.place.isFolder) return FolderEntry::Kind::Folder;
    return status.isFile() ? FolderEntry::Kind::File : FolderEntry::Kind::Other;
}

bool isSidecar(FolderEntry const& entry) { return entry.name.starts_with(AppleDoubleSidecar::namePrefix); }

} // namespace

Result<ItemStatus> TreeCopy::start(OpenItem const& item, FileDescriptor const& folder) {
    Result<FileDescriptor> source = openIn(item.folder, ".", NameFlags);
    if (!source.hasValue()) return source.problem();
    m_source = source.takeValue();
    for (FileDescriptor* const opened : {&m_target, &m_top}) {
        Result<FileDescriptor> target = openIn(folder, ".", NameFlags);
        if (!target.hasValue()) return target.problem();
        *opened = target.takeValue();
    }
    Result<ItemPlace> const sourcePlace = placeOf(m_source);
    if (!sourcePlace.hasValue()) return sourcePlace.problem();
    m_sourceStart = sourcePlace.value();
    Result<ItemPlace> const targetPlace = placeOf(m_target);
    if (!targetPlace.hasValue()) return targetPlace.problem();
    m_targetStart = targetPlace.value().identity;
    Result<ItemStatus> found = statusOf(m_source, item.name);
    if (!found.hasValue()) return found;
    Result<ItemPlace> const expected = placeOf(item.item);
    if (!expected.hasValue()) return expected.problem();
    if (!(found.value().place.identity == expected.value().identity)) return exchangedItem(item.name);
    return found;
}

Result<void> TreeCopy::run(OpenItem const& item, FileDescriptor const& folder, std::string const& name) {
    Result<ItemStatus> const status = start(item, folder);
    if (!status.hasValue()) return status.problem();
    Result<void> copied = copy({item.name, name}, kindOf(status.value()));
    while (copied.isDone() && !m_levels.empty())
        copied = m_levels.back().entries.empty() ? leave() : copyNext();
    return copied;
}

Result<void> TreeCopy::copyNext() {
    FolderEntry const next = std::move(m_levels.back().entries.back());
    m_levels.back().entries.pop_back();
    FolderEntry::Kind kind = next.kind;
    // An item that another process has removed meanwhile is no failure.
    if (kind == FolderEntry::Kind::Unknown) {
        Result<ItemStatus> const status = statusOf(m_source, next.name);
        if (!status.hasValue()) return status.problem().is(ENOENT) ? Result<void>() : status.problem();
        kind = kindOf(status.value());
    }
    Result<void> copied = copy({next.name, next.name}, kind);
    bool const isRemoved = !copied.isDone() && copied.problem().is(ENOENT) && isMissing(m_source, next.name) &&
                           isMissing(m_target, next.name);
    return isRemoved ? Result<void>() : copied;
}

Result<void> TreeCopy::copy(Names const& names, FolderEntry::Kind kind) {
    if (!m_shouldContinue()) return SystemError{.code = ECANCELED, .operation = "copy", .item = names.from};
    if (kind == FolderEntry::Kind::Folder) return enter(names);
    return kind == FolderEntry::Kind::File ? copyFile(names) : copyOther(names);
}

Result<ItemStatus> TreeCopy::stateOf(FileDescriptor const& source) const {
    return m_purpose == CopyPurpose::Move ? settledStatusOf(source) : statusOf(source);
}

Result<void> TreeCopy::copyFile(Names const& names) {
    Result<FileDescriptor> const source =
        openIn(m_source, names.from, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (!source.hasValue()) return source.problem();
    Result<ItemStatus> const status = stateOf(source.value());
    if (!status.hasValue()) return status.problem();
    if (!status.value().isFile()) return exchangedItem(names.from);
    if (linkToCopy(status.value(), names.to)) return {};
    if (Result<void> const filled = fill(source.value(), status.value(), names.to); !filled.isDone()) return filled;
    remember(status.value());
    return {};
}

Result<void> TreeCopy::fill(FileDescriptor const& source, ItemStatus const& status, std::string const& to) {
    Result<FileDescriptor> const target = openIn(m_target, to, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC);
    if (!target.hasValue()) return target.problem();
    if (m_levels.empty()) {
        rememberMade(target.value());
        if (Result<void> const removed = removeInheritedLists(target.value()); !removed.isDone()) return removed;
    }
    if (Result<void> const copied = m_contents.run(source, status, target.value()); !copied.isDone()) return copied;
    Result<AttributesBeside> const beside = copyMetadata(source, status, {target.value(), m_target, to});
    if (!beside.hasValue()) return beside.problem();
    // The flush of the volume, which writes the rest, may miss a failure that another process has been told of.
    if (m_purpose == CopyPurpose::Move && ::fdatasync(target.value().number()) != 0)
        return lastSystemError("fdatasync", to);
    if (Result<void> const written = confirmWritten(target.value(), to); !written.isDone()) return written;
    // Another name of the copy would not have the sidecar.
    if (beside.value() == AttributesBeside::None) rememberCopy(status, to);
    return {};
}

Result<void> TreeCopy::copyOther(Names const& names) {
    Result<FileDescriptor> const source = openIn(m_source, names.from, O_PATH | O_NOFOLLOW | O_CLOEXEC);
    if (!source.hasValue()) return source.problem();
    Result<ItemStatus> const status = stateOf(source.value());
    if (!status.hasValue()) return status.problem();
    bool const isOther = !status.value().isFile() && !status.value().place.isFolder;
    if (!isOther) return exchangedItem(names.from);
    if (linkToCopy(status.value(), names.to)) return {};
    Result<void> copied = m_levels.empty() ? copyPrivately(source.value(), status.value(), names.to)
                                           : copySpecial(source.value(), status.value(), m_target, names.to, m_steps);
    if (!copied.isDone()) return copied;
    rememberCopy(status.value(), names.to);
    remember(status.value());
    return {};
}

// Makes a special file in a folder of its own, where no other process can take its place.
Result<void> TreeCopy::copyPrivately(FileDescriptor const& source, ItemStatus const& status, std::string const& to) {
    Result<std::string> const name = temporaryName();
    if (!name.hasValue()) return name.problem();
    Result<FileDescriptor> const folder = makeFolder(m_target, name.value(), InheritedList::MayBeThere, m_steps);
    if (!folder.hasValue()) return folder.problem();
    Result<void> copied = copySpecial(source, status, folder.value(), to, m_steps);
    Result<ItemPlace> const made = placeOf(folder.value(), to);
    if (copied.isDone()) copied = renameWithoutReplacing(folder.value(), to, m_target, to);
    if (copied.isDone() && made.hasValue()) m_made = made.value().identity;
    if (!copied.isDone()) removeUnfinished(folder.value(), to, 0);
    removeUnfinished(m_target, name.value(), AT_REMOVEDIR);
    return copied;
}

Result<void> TreeCopy::enter(Names const& names) {
    Result<FileDescriptor> source = openIn(m_source, names.from, CopiedFolderFlags);
    if (!source.hasValue()) return source.problem();
    Result<ItemStatus> const status = statusOf(source.value());
    if (!status.hasValue()) return status.problem();
    ItemPlace const& place = status.value().place;
    if (place.mount != m_sourceStart.mount) return SystemError{.code = EBUSY, .operation = "open", .item = names.from};
    // The folder leads to its own copy, through a mount.
    if (!m_levels.empty() && place.identity == m_levels.front().target)
        return SystemError{.code = EINVAL, .operation = "copy", .item = names.from};
    Result<std::vector<FolderEntry>> entries = entriesOf(source.value());
    if (!entries.hasValue()) return entries.problem();
    // They are taken from the end, in the order in which they lie on the disk. Sidecars come first, so that attributes
    // which the volume cannot hold join those that the sidecars hold.
    std::ranges::sort(entries.value(), [](FolderEntry const& one, FolderEntry const& other) {
        return isSidecar(one) != isSidecar(other) ? isSidecar(other) : one.inode > other.inode;
    });
    // Only the first folder is made where lists may be handed on.
    InheritedList const lists = m_levels.empty() ? InheritedList::MayBeThere : InheritedList::IsRemoved;
    Result<FileDescriptor> target = makeFolder(m_target, names.to, lists, m_steps);
    if (!target.hasValue()) return target.problem();
    Result<ItemPlace> const made = placeOf(target.value());
    if (m_levels.empty()) rememberMade(target.value());
    if (!made.hasValue()) return made.problem();
    m_levels.push_back({.source = status.value(),
                        .target = made.value().identity,
                        .entries = entries.takeValue(),
                        .pathLength = m_path.size()});
    appendComponent(m_path, names.to);
    m_source = source.takeValue();
    m_target = target.takeValue();
    return {};
}

// A folder's own dates come last, since every item in it changes them. Goes back into the very folders that the copy
// came from, and no others.
Result<void> TreeCopy::leave() {
    Level const level = std::move(m_levels.back());
    m_levels.pop_back();
    bool const isStart = m_levels.empty();
    int const flags = isStart ? NameFlags : CopiedFolderFlags;
    Result<FileDescriptor> target = openAbove(m_target, flags, isStart ? m_targetStart : m_levels.back().target);
    if (!target.hasValue()) return target.problem();
    std::string const name(BytePath(m_path).leaf());
    Result<AttributesBeside> const copied = copyMetadata(m_source, level.source, {m_target, target.value(), name});
    if (!copied.hasValue()) return copied.problem();
    if (m_purpose == CopyPurpose::Move) m_copied[level.source.place.identity] = {};
    Result<FileDescriptor> source =
        openAbove(m_source, flags, isStart ? m_sourceStart.identity : m_levels.back().source.place.identity);
    if (!source.hasValue()) return source.problem();
    m_path.resize(level.pathLength);
    m_source = source.takeValue();
    m_target = target.takeValue();
    return {};
}

std::string TreeCopy::pathOf(std::string const& name) const { return BytePath(m_path).joined(name); }

void TreeCopy::remember(ItemStatus const& status) {
    if (m_purpose == CopyPurpose::Move) m_copied[status.place.identity] = {status.changeTime, markOf(status)};
}

// Asks twice, since a copy that is not known to be ours would stay if it cannot be completed.
void TreeCopy::rememberMade(FileDescriptor const& item) {
    Result<ItemPlace> place = placeOf(item);
    if (!place.hasValue()) place = placeOf(item);
    if (place.hasValue()) m_made = place.value().identity;
}

void TreeCopy::rememberCopy(ItemStatus const& status, std::string const& to) {
    if (status.links < 2) return;
    Result<ItemPlace> const made = placeOf(m_target, to);
    if (made.hasValue()) m_copies[status.place.identity] = {pathOf(to), made.value().identity};
}

// False if the item has no copy yet, or the file system cannot give it another name: then it is copied once more.
bool TreeCopy::linkToCopy(ItemStatus const& status, std::string const& to) const {
    auto const known = status.links < 2 ? m_copies.end() : m_copies.find(status.place.identity);
    if (known == m_copies.end()) return false;
    SplitPath const path = splitPath(known->second.path);
    Result<FileDescriptor> const folder = openBelow(m_top, path.folder);
    if (!folder.hasValue()) return false;
    Result<ItemPlace> const copy = placeOf(folder.value(), path.name);
    if (!copy.hasValue() || !(copy.value().identity == known->second.identity)) return false;
    return ::linkat(folder.value().number(), path.name.c_str(), m_target.number(), to.c_str(), 0) == 0;
}

} // namespace mac
