#include "platform/system/items/TreeCopy.h"
#include "platform/system/FolderContents.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/FileCopy.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr int CopiedFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
// Folders of which only a name is needed need not be readable.
constexpr int NameFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

Result<FileDescriptor> openFolder(FileDescriptor const& folder, std::string const& name, int flags) {
    FileDescriptor opened(::openat(folder.number(), name.c_str(), flags));
    if (!opened.isOpen()) return lastSystemError("open", name);
    return opened;
}

SystemError exchangedItem(std::string const& name) { return {.code = ESTALE, .operation = "open", .item = name}; }

// Done if the open item is the expected one.
Result<void> confirm(FileDescriptor const& item, ItemIdentity const& expected, std::string const& name) {
    Result<ItemPlace> const found = placeOf(item);
    if (!found.hasValue()) return found.problem();
    if (!(found.value().identity == expected)) return exchangedItem(name);
    return {};
}

// Opens the folder above, which must be the expected one.
Result<FileDescriptor> openAbove(FileDescriptor const& folder, int flags, ItemIdentity const& expected) {
    Result<FileDescriptor> above = openFolder(folder, "..", flags);
    if (!above.hasValue()) return above;
    Result<void> const confirmed = confirm(above.value(), expected, "..");
    if (!confirmed.isDone()) return confirmed.problem();
    return above;
}

} // namespace

std::int64_t changeTime(FileDescriptor const& folder, std::string const& name) {
    struct stat status {};
    constexpr std::int64_t nanoseconds = 1'000'000'000;
    if (::fstatat(folder.number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW | AT_EMPTY_PATH) != 0) return -1;
    return status.st_ctim.tv_sec * nanoseconds + status.st_ctim.tv_nsec;
}

Result<ItemPlace> TreeCopy::start(OpenItem const& item, FileDescriptor const& folder) {
    Result<FileDescriptor> source = openFolder(item.folder, ".", NameFlags);
    if (!source.hasValue()) return source.problem();
    m_source = source.takeValue();
    Result<FileDescriptor> target = openFolder(folder, ".", NameFlags);
    if (!target.hasValue()) return target.problem();
    m_target = target.takeValue();
    Result<ItemPlace> const sourcePlace = placeOf(m_source);
    if (!sourcePlace.hasValue()) return sourcePlace.problem();
    m_sourceStart = sourcePlace.value();
    Result<ItemPlace> const targetPlace = placeOf(m_target);
    if (!targetPlace.hasValue()) return targetPlace.problem();
    m_targetStart = targetPlace.value().identity;
    Result<ItemPlace> found = placeOf(m_source, item.name);
    if (!found.hasValue()) return found;
    Result<void> const confirmed = confirm(item.item, found.value().identity, item.name);
    if (!confirmed.isDone()) return confirmed.problem();
    return found;
}

Result<void> TreeCopy::run(OpenItem const& item, FileDescriptor const& folder, std::string const& name) {
    Result<ItemPlace> const place = start(item, folder);
    if (!place.hasValue()) return place.problem();
    Result<void> copied = copy(item.name, name, place.value());
    while (copied.isDone() && !m_levels.empty())
        copied = m_levels.back().names.empty() ? leave() : copyNext();
    return copied;
}

Result<void> TreeCopy::copyNext() {
    std::string const next = std::move(m_levels.back().names.back());
    m_levels.back().names.pop_back();
    Result<ItemPlace> const place = placeOf(m_source, next);
    if (place.hasValue()) return copy(next, next, place.value());
    // An item that another process has removed meanwhile is no failure.
    if (place.problem().is(ENOENT)) return {};
    return place.problem();
}

Result<void> TreeCopy::copy(std::string const& from, std::string const& to, ItemPlace const& place) {
    if (!m_shouldContinue()) return SystemError{.code = ECANCELED, .operation = "copy", .item = from};
    if (place.isFolder) return enter(from, to, place);
    std::int64_t const state = changeTime(m_source, from);
    Result<void> copied = S_ISREG(place.mode) ? copyFile(from, to, place) : copySpecial(m_source, from, m_target, to);
    if (copied.isDone()) m_copied[place.identity] = state;
    return copied;
}

Result<void> TreeCopy::copyFile(std::string const& from, std::string const& to, ItemPlace const& place) {
    FileDescriptor const source(
        ::openat(m_source.number(), from.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!source.isOpen()) return lastSystemError("open", from);
    if (Result<void> const confirmed = confirm(source, place.identity, from); !confirmed.isDone()) return confirmed;
    FileDescriptor const target(::openat(m_target.number(), to.c_str(),
                                         O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                         mode_t{S_IRUSR | S_IWUSR}));
    if (!target.isOpen()) return lastSystemError("open", to);
    Result<void> const copied = copyContents(source, target, m_shouldContinue);
    return copied.isDone() ? copyMetadata(source, target) : copied;
}

Result<void> TreeCopy::enter(std::string const& from, std::string const& to, ItemPlace const& place) {
    if (place.mount != m_sourceStart.mount) return SystemError{.code = EBUSY, .operation = "open", .item = from};
    // The folder leads to its own copy, through a mount.
    if (!m_levels.empty() && place.identity == m_levels.front().target)
        return SystemError{.code = EINVAL, .operation = "copy", .item = from};
    Result<FileDescriptor> source = openFolder(m_source, from, CopiedFolderFlags);
    if (!source.hasValue()) return source.problem();
    Result<std::vector<std::string>> names = namesInOpenFolder(source.value());
    if (!names.hasValue()) return names.problem();
    // They are taken from the end. Sidecars come first, so that attributes which the volume cannot hold join those that
    // the sidecars hold.
    std::partition(names.value().begin(), names.value().end(),
                   [](std::string const& name) { return !name.starts_with(AppleDoubleSidecar::namePrefix); });
    if (Result<void> const confirmed = confirm(source.value(), place.identity, from); !confirmed.isDone())
        return confirmed;
    if (::mkdirat(m_target.number(), to.c_str(), S_IRWXU) != 0) return lastSystemError("mkdir", to);
    Result<FileDescriptor> target = openFolder(m_target, to, CopiedFolderFlags);
    if (!target.hasValue()) return target.problem();
    Result<ItemPlace> const made = placeOf(target.value());
    if (!made.hasValue()) return made.problem();
    m_levels.push_back({.place = place, .target = made.value().identity, .names = names.takeValue()});
    m_source = source.takeValue();
    m_target = target.takeValue();
    return {};
}

// A folder's own dates come last, since every item in it changes them. Goes back into the very folders that the copy
// came from, and no others.
Result<void> TreeCopy::leave() {
    Level const level = std::move(m_levels.back());
    m_levels.pop_back();
    if (Result<void> const copied = copyMetadata(m_source, m_target); !copied.isDone()) return copied;
    m_copied[level.place.identity] = 0;
    bool const isStart = m_levels.empty();
    int const flags = isStart ? NameFlags : CopiedFolderFlags;
    Result<FileDescriptor> source =
        openAbove(m_source, flags, isStart ? m_sourceStart.identity : m_levels.back().place.identity);
    if (!source.hasValue()) return source.problem();
    Result<FileDescriptor> target = openAbove(m_target, flags, isStart ? m_targetStart : m_levels.back().target);
    if (!target.hasValue()) return target.problem();
    m_source = source.takeValue();
    m_target = target.takeValue();
    return {};
}

} // namespace mac
