#include "platform/foundation/FileWriting.h"
#include "platform/foundation/FileDescriptor.h"
#include "platform/foundation/LongPath.h"
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <optional>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

// As many as the kernel follows in one path.
constexpr unsigned MostLinks = 40;
constexpr mode_t UsualMode = 0666;
constexpr mode_t PermissionBits = 07777;

bool writeAll(int file, std::span<std::byte const> bytes) {
    while (!bytes.empty()) {
        ssize_t const count = ::write(file, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

// An open folder and the name of a file in it.
struct Place {
    FileDescriptor folder{};
    std::string name{};
};

std::optional<Place> placeOf(std::string const& path) {
    std::size_t const slash = path.rfind('/');
    std::string const folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    Place place{openPath(folder, O_PATH | O_DIRECTORY), path.substr(slash == std::string::npos ? 0 : slash + 1)};
    if (!place.folder.isOpen()) return std::nullopt;
    if (!place.name.empty() && place.name != "." && place.name != "..") return place;
    errno = EISDIR;
    return std::nullopt;
}

// Follows symbolic links at the end of the path.
std::optional<Place> finalPlaceOf(std::string path) {
    for (unsigned links = 0; links < MostLinks; ++links) {
        std::optional<Place> place = placeOf(path);
        if (!place) return std::nullopt;
        std::array<char, PATH_MAX> target;
        ssize_t const length = ::readlinkat(place->folder.number(), place->name.c_str(), target.data(), target.size());
        if (length < 0) return place;
        std::string const next(target.data(), static_cast<std::size_t>(length));
        path.resize(next.starts_with('/') ? 0 : path.size() - place->name.size());
        path += next;
    }
    errno = ELOOP;
    return std::nullopt;
}

std::optional<std::string> unguessableName() {
    std::array<unsigned char, 16> random;
    if (::getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) return std::nullopt;
    constexpr std::string_view digits = "0123456789abcdef";
    std::string name = ".";
    for (unsigned char const byte : random) {
        name.push_back(digits[byte >> 4]);
        name.push_back(digits[byte & 0xF]);
    }
    return name;
}

// A new file beside another one, removed again unless it took its place.
class NewFile {
public:
    NewFile(int folder, mode_t mode) : m_folder(folder) {
        std::optional<std::string> const name = unguessableName();
        if (!name) return;
        m_name = *name;
        m_file = FileDescriptor(
            ::openat(folder, m_name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    }
    ~NewFile() {
        int const reason = errno;
        if (m_file.isOpen() && !m_isDone) ::unlinkat(m_folder, m_name.c_str(), 0);
        errno = reason;
    }
    NewFile(NewFile const&) = delete;
    NewFile& operator=(NewFile const&) = delete;

    bool isOpen() const { return m_file.isOpen(); }

    // Before there is anything to read in it. A file of somebody else's becomes ours where the system does not let us
    // give it away, and then nobody gets to run it in our name.
    bool takeAfter(struct stat const& old) const {
        bool const hasOwner = ::fchown(m_file.number(), old.st_uid, old.st_gid) == 0;
        mode_t const mode = old.st_mode & PermissionBits;
        return ::fchmod(m_file.number(), hasOwner ? mode : mode & 0777U) == 0;
    }

    bool write(std::span<std::byte const> bytes) const {
        return writeAll(m_file.number(), bytes) && ::fsync(m_file.number()) == 0;
    }

    bool rename(std::string const& name) {
        m_isDone = ::renameat(m_folder, m_name.c_str(), m_folder, name.c_str()) == 0;
        return m_isDone;
    }

private:
    int m_folder;
    std::string m_name;
    FileDescriptor m_file;
    bool m_isDone{false};
};

} // namespace

bool replaceFileAtPath(std::string const& path, std::span<std::byte const> bytes, unsigned newFileMode) {
    std::optional<Place> const place = finalPlaceOf(path);
    return place && replaceFileInFolder(place->folder.number(), place->name, bytes, newFileMode);
}

bool replaceFileInFolder(int folder, std::string const& name, std::span<std::byte const> bytes, unsigned newFileMode) {
    struct stat old {};
    bool const isThere = ::fstatat(folder, name.c_str(), &old, AT_SYMLINK_NOFOLLOW) == 0;
    if (!isThere && errno != ENOENT) return false;
    if (isThere && !S_ISREG(old.st_mode)) {
        errno = S_ISDIR(old.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    NewFile file(folder, newFileMode);
    if (!file.isOpen() || (isThere && !file.takeAfter(old)) || !file.write(bytes) || !file.rename(name)) return false;
    // The new bytes are there for every reader; on a file system that cannot flush folders they still are.
    FileDescriptor const flushed(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (flushed.isOpen()) ::fsync(flushed.number());
    return true;
}

bool overwriteFileAtPath(std::string const& path, std::span<std::byte const> bytes) {
    std::optional<Place> const place = finalPlaceOf(path);
    if (!place) return false;
    FileDescriptor const file(::openat(place->folder.number(), place->name.c_str(),
                                       O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, UsualMode));
    return file.isOpen() && writeAll(file.number(), bytes);
}

} // namespace mac
