#include "platform/system/FileWriting.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/NewFile.h"
#include "platform/system/OpenItems.h"
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr mode_t UsualMode = 0666;
constexpr mode_t OwnersAlone = 0600;
constexpr mode_t ReadAndWrite = 0666;
constexpr mode_t AllPermissions = 07777;

// An open folder and the name of a file in it.
struct Place {
    FileDescriptor folder{};
    std::string name{};
};

SystemError refusal(int code, std::string const& name) { return {.code = code, .operation = "replace", .item = name}; }

Result<void> outcomeOf(Result<FileDescriptor> const& opened) {
    return opened.hasValue() ? Result<void>() : opened.problem();
}

Result<Place> placeOf(std::string const& path) {
    SplitPath parts = splitPath(path);
    Result<FileDescriptor> folder = openPath(parts.folder.empty() ? "." : parts.folder, O_PATH | O_DIRECTORY);
    if (!folder.hasValue()) return folder.problem();
    if (parts.name.empty() || parts.name == "." || parts.name == "..") return refusal(EISDIR, path);
    return Place{folder.takeValue(), std::move(parts.name)};
}

// Follows symbolic links at the end of the path.
Result<Place> finalPlaceOf(std::string path) {
    std::string const wanted = path;
    for (unsigned links = 0; links <= MostLinksInPath; ++links) {
        Result<Place> place = placeOf(path);
        if (!place.hasValue()) return place;
        Result<std::string> const target = linkTextIn(place.value().folder, place.value().name);
        if (!target.hasValue()) return place;
        path.resize(target.value().starts_with('/') ? 0 : path.size() - place.value().name.size());
        path += target.value();
    }
    return refusal(ELOOP, wanted);
}

// The old file, opened with O_PATH, and its state; closed and nullopt if there is none.
struct OldFile {
    FileDescriptor file{};
    std::optional<FileStatus> state{};
};

Result<OldFile> oldFile(FileDescriptor const& folder, std::string const& name) {
    OldFile old{.file = FileDescriptor(::openat(folder.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC))};
    if (!old.file.isOpen()) {
        SystemError error = lastSystemError("open", name);
        return error.is(ENOENT) ? Result<OldFile>(OldFile()) : error;
    }
    Result<FileStatus> const state = fileStatusOf(old.file);
    if (!state.hasValue()) return state.problem();
    old.state = state.value();
    return old;
}

// Fails if the old file is no regular file or not in the state it must be in.
Result<void> mayReplace(OldFile const& old, std::string const& name, FileReplacement const& how) {
    if (old.state && old.state->kind == FileStatus::Kind::Folder) return refusal(EISDIR, name);
    if (old.state && old.state->kind == FileStatus::Kind::Other) return refusal(EINVAL, name);
    if (how.hasToBe && how.state != old.state) return refusal(how.state ? EAGAIN : EEXIST, name);
    return {};
}

// The attributes of the old file, else of the item that a new file is to be like.
Result<void> takeAttributes(NewFile const& file, OldFile const& old, FileReplacement const& how) {
    if (!old.state) return how.newFileIsLike ? file.takeAfter(*how.newFileIsLike, ReadAndWrite) : Result<void>();
    Result<void> const taken = file.takeAfter(old.file, AllPermissions);
    return taken.isDone() ? file.copyAttributesOf(old.file) : taken;
}

// Fails if the file of the name changed since it was opened; asked as late as possible.
Result<void> isUnchanged(FileDescriptor const& folder, std::string const& name, OldFile const& old,
                         FileReplacement const& how) {
    if (!how.hasToBe || !old.state) return {};
    Result<FileStatus> const now = fileStatusInFolder(folder, name);
    return now.hasValue() && now.value() == old.state ? Result<void>() : refusal(EAGAIN, name);
}

Result<void> called(std::function<Result<void>(FileDescriptor const&)> const& function, FileDescriptor const& file) {
    return function ? function(file) : Result<void>();
}

// Writes the new file completely and to the disk, without its final name.
Result<void> fill(NewFile const& file, std::span<std::byte const> bytes, OldFile const& old,
                  FileReplacement const& how) {
    Result<void> const written = file.write(bytes);
    if (!written.isDone()) return written;
    Result<void> const taken = takeAttributes(file, old, how);
    if (!taken.isDone()) return taken;
    Result<void> const changed = called(how.beforeFlushing, file.file());
    return changed.isDone() ? file.flush() : changed;
}

} // namespace

Result<void> replaceFileAtPath(std::string const& path, std::span<std::byte const> bytes, FileReplacement const& how) {
    Result<Place> const place = finalPlaceOf(path);
    if (!place.hasValue()) return place.problem();
    return replaceFileInFolder(place.value().folder, place.value().name, bytes, how);
}

Result<void> replaceFileInFolder(FileDescriptor const& folder, std::string const& name,
                                 std::span<std::byte const> bytes, FileReplacement const& how) {
    Result<OldFile> const opened = oldFile(folder, name);
    if (!opened.hasValue()) return opened.problem();
    OldFile const& old = opened.value();
    Result<void> const allowed = mayReplace(old, name, how);
    if (!allowed.isDone()) return allowed;

    bool const isLikeAnother = old.state || how.newFileIsLike != nullptr;
    Result<NewFile> made = NewFile::make(folder, isLikeAnother ? OwnersAlone : how.newFileMode);
    if (!made.hasValue()) return made.problem();
    NewFile& file = made.value();
    Result<void> const filled = fill(file, bytes, old, how);
    if (!filled.isDone()) return filled;
    Result<void> const confirmed = called(how.beforeRenaming, file.file());
    if (!confirmed.isDone()) return confirmed;
    Result<void> const unchanged = isUnchanged(folder, name, old, how);
    if (!unchanged.isDone()) return unchanged;

    bool const mustBeFree = how.hasToBe && !old.state;
    Result<void> const named = file.giveName(name, mustBeFree ? NewFile::Place::MustBeFree : NewFile::Place::IsTaken);
    return named.isDone() ? called(how.afterRenaming, file.file()) : named;
}

Result<void> overwriteFileAtPath(std::string const& path, std::span<std::byte const> bytes) {
    Result<Place> const place = finalPlaceOf(path);
    if (!place.hasValue()) return place.problem();
    FileDescriptor const file(::openat(place.value().folder.number(), place.value().name.c_str(),
                                       O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, UsualMode));
    if (!file.isOpen()) return lastSystemError("open", path);
    return writeAll(file, bytes);
}

Result<void> makeFolderAtPath(std::string_view path) {
    Result<FileDescriptor> const there = openPath(path, O_PATH | O_DIRECTORY);
    if (there.hasValue() || !there.problem().is(ENOENT)) return outcomeOf(there);
    BytePath const folder(path);
    if (folder.leaf().empty()) return there.problem();
    std::string_view const above = folder.parent().empty() ? "." : folder.parent();
    Result<void> const made = makeFolderAtPath(above);
    if (!made.isDone()) return made;
    Result<FileDescriptor> const parent = openPath(above, O_PATH | O_DIRECTORY);
    if (!parent.hasValue()) return parent.problem();
    std::string const name(folder.leaf());
    Result<void> const own = makeOwnFolder(parent.value(), name);
    if (own.isDone()) return flushFolder(parent.value());
    // Another process was quicker.
    return own.problem().is(EEXIST) ? outcomeOf(openPath(path, O_PATH | O_DIRECTORY)) : own;
}

} // namespace mac
