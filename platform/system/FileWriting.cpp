#include "platform/system/FileWriting.h"
#include "platform/system/NewFile.h"
#include "platform/system/OpenItems.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace mac {

namespace {

// As many as the kernel follows in one path.
constexpr unsigned MostLinks = 40;
constexpr mode_t UsualMode = 0666;
constexpr mode_t OwnersAlone = 0600;
constexpr mode_t ReadAndWrite = 0666;
constexpr mode_t AllPermissions = 07777;

// An open folder and the name of a file in it.
struct Place {
    FileDescriptor folder{};
    std::string name{};
};

std::optional<Place> placeOf(std::string const& path) {
    SplitPath parts = splitPath(path);
    Place place{openPath(parts.folder.empty() ? "." : parts.folder, O_PATH | O_DIRECTORY), std::move(parts.name)};
    if (!place.folder.isOpen()) return std::nullopt;
    if (!place.name.empty() && place.name != "." && place.name != "..") return place;
    errno = EISDIR;
    return std::nullopt;
}

// Follows symbolic links at the end of the path.
std::optional<Place> finalPlaceOf(std::string path) {
    for (unsigned links = 0; links <= MostLinks; ++links) {
        std::optional<Place> place = placeOf(path);
        if (!place) return std::nullopt;
        std::optional<std::string> const target = linkTextIn(place->folder, place->name);
        if (!target) return place;
        path.resize(target->starts_with('/') ? 0 : path.size() - place->name.size());
        path += *target;
    }
    errno = ELOOP;
    return std::nullopt;
}

// Why the file is not as it has to be; 0 when it is.
int contradiction(FileReplacement const& how, std::optional<FileStatus> const& state) {
    if (!how.hasToBe || how.state == state) return 0;
    return how.state ? EAGAIN : EEXIST;
}

int complaintAbout(std::optional<FileStatus> const& state) {
    if (!state || state->kind == FileStatus::Kind::File) return 0;
    return state->kind == FileStatus::Kind::Folder ? EISDIR : EINVAL;
}

// Of a file that is there, else of what it is to be like.
bool takeAttributes(NewFile const& file, FileDescriptor const& old, FileReplacement const& how) {
    if (old.isOpen()) return file.takeAfter(old, AllPermissions) && file.copyAttributesOf(old);
    return how.newFileIsLike == nullptr || file.takeAfter(*how.newFileIsLike, ReadAndWrite);
}

} // namespace

bool replaceFileAtPath(std::string const& path, std::span<std::byte const> bytes, FileReplacement const& how) {
    std::optional<Place> const place = finalPlaceOf(path);
    return place && replaceFileInFolder(place->folder, place->name, bytes, how);
}

bool replaceFileInFolder(FileDescriptor const& folder, std::string const& name, std::span<std::byte const> bytes,
                         FileReplacement const& how) {
    FileDescriptor const old(::openat(folder.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!old.isOpen() && errno != ENOENT) return false;
    std::optional<FileStatus> const state = old.isOpen() ? fileStatusOf(old) : std::nullopt;
    int const complaint = old.isOpen() && !state ? errno : std::max(complaintAbout(state), contradiction(how, state));
    if (complaint != 0) {
        errno = complaint;
        return false;
    }
    bool const isLikeAnother = state || how.newFileIsLike != nullptr;
    NewFile file(folder, isLikeAnother ? OwnersAlone : how.newFileMode);
    if (!file.isOpen() || !file.write(bytes) || !takeAttributes(file, old, how)) return false;
    if (how.beforeRenaming && !how.beforeRenaming(file.file())) return false;
    // Once more, as late as can be.
    if (how.hasToBe && state && fileStatusInFolder(folder, name) != state) {
        errno = EAGAIN;
        return false;
    }
    bool const mustBeFree = how.hasToBe && !state;
    if (!file.finish(name, mustBeFree ? NewFile::Place::MustBeFree : NewFile::Place::IsTaken)) return false;
    return !how.afterRenaming || how.afterRenaming(file.file());
}

bool overwriteFileAtPath(std::string const& path, std::span<std::byte const> bytes) {
    std::optional<Place> const place = finalPlaceOf(path);
    if (!place) return false;
    FileDescriptor const file(::openat(place->folder.number(), place->name.c_str(),
                                       O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, UsualMode));
    return file.isOpen() && writeAll(file, bytes);
}

} // namespace mac
