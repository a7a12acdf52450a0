#include "platform/files/trash/TrashRecords.h"
#include "platform/system/BytePath.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/FileWriting.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/FolderDescent.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <linux/magic.h>
#include <span>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::size_t LargestInformation = std::size_t{1} << 20;
constexpr char SizesFileName[] = "directorysizes";
constexpr std::size_t LargestSizesFile = std::size_t{4} << 20;
constexpr std::size_t MostItemsAddedUp = 50'000;
constexpr std::uint64_t CountedBlockSize = 512;

// The disk space of the item and of all below it, in bytes, as du counts it; nullopt for what is no folder and for more
// than MostItemsAddedUp items.
std::optional<std::uint64_t> diskUse(TrashPlace const& trash, std::string const& name) {
    Result<ItemPlace> const place = placeOf(trash.files, name);
    if (!place.hasValue() || !place.value().isFolder) return std::nullopt;
    std::uint64_t blocks = 0;
    DescentVisit const add = [&](FileDescriptor const& folder, std::string const& item,
                                 ItemPlace const&) -> Result<void> {
        struct stat status {};
        if (::fstatat(folder.number(), item.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            return lastSystemError("stat", item);
        blocks += static_cast<std::uint64_t>(status.st_blocks);
        return {};
    };
    Result<void> const added = descend(trash.files, name, place.value().identity, {.mostItems = MostItemsAddedUp}, add);
    if (!added.isDone()) return std::nullopt;
    return blocks * CountedBlockSize;
}

// Opens the trash and locks it. Not open if another process has the lock: the file is not worth waiting for.
FileDescriptor locked(TrashPlace const& trash) {
    FileDescriptor folder(::openat(trash.folder.number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen() || ::flock(folder.number(), LOCK_EX | LOCK_NB) != 0) return {};
    return folder;
}

std::vector<DirectorySize> readSizes(FileDescriptor const& folder) {
    FileDescriptor const file(
        ::openat(folder.number(), SizesFileName, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) return {};
    Result<FileContents> const contents = readOpenFile(file, LargestSizesFile);
    if (!contents.hasValue()) return {};
    std::span<std::byte const> const bytes = contents.value().bytes;
    return DirectorySize::read({reinterpret_cast<char const*>(bytes.data()), bytes.size()});
}

void writeSizes(FileDescriptor const& folder, std::vector<DirectorySize> const& sizes) {
    std::string const text = DirectorySize::text(sizes);
    // The file is a cache, which may be missing.
    (void)replaceFileInFolder(folder, SizesFileName, std::as_bytes(std::span(text)),
                              {.newFileMode = S_IRUSR | S_IWUSR});
}

// Whether flushing a new file flushes its name, too. These file systems do it by their journal, ext4 also without one
// (it serves ext2 and ext3, too); the last two keep nothing on a disk.
bool isNameFlushedWithFile(FileDescriptor const& file) {
    struct statfs volume {};
    if (::fstatfs(file.number(), &volume) != 0) return false;
    static constexpr std::array<decltype(volume.f_type), 6> kinds{
        EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC, BTRFS_SUPER_MAGIC, F2FS_SUPER_MAGIC, TMPFS_MAGIC, RAMFS_MAGIC,
    };
    return std::ranges::find(kinds, volume.f_type) != kinds.end();
}

bool isNoSuchName(SystemError const& error) { return error.is(ENOENT) || error.is(ENAMETOOLONG); }

} // namespace

Result<std::optional<TrashInformation>> informationOf(TrashPlace const& trash, std::string const& name) {
    std::optional<TrashInformation> const none;
    if (!trash.information.isOpen()) return none;
    std::string const file = TrashInformation::nameFor(name);
    // Opening an item that is no file may block or have side effects.
    Result<ItemPlace> const place = placeOf(trash.information, file);
    if (!place.hasValue() && isNoSuchName(place.problem())) return none;
    if (!place.hasValue()) return place.problem();
    if (!S_ISREG(place.value().mode)) return none;
    FileDescriptor const open(
        ::openat(trash.information.number(), file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!open.isOpen()) return lastSystemError("open", file);
    Result<FileContents> const contents = readOpenFile(open, LargestInformation);
    if (!contents.hasValue() && contents.problem().is(EFBIG)) return none;
    if (!contents.hasValue()) return contents.problem();
    std::span<std::byte const> const bytes = contents.value().bytes;
    return TrashInformation::read({reinterpret_cast<char const*>(bytes.data()), bytes.size()});
}

Result<void> removeInformation(TrashPlace const& trash, std::string const& name) {
    if (!trash.information.isOpen()) return {};
    std::string const file = TrashInformation::nameFor(name);
    for (;;) {
        if (::unlinkat(trash.information.number(), file.c_str(), 0) == 0) return {};
        SystemError error = lastSystemError("unlink", file);
        if (error.is(EINTR)) continue;
        if (error.is(ENOENT)) return {};
        Result<std::string> const unused = temporaryName();
        bool const isRecord = !unused.hasValue() || !moveAside(trash.information, file, unused.value()).isDone();
        return isRecord ? error : Result<void>();
    }
}

Result<TrashedItem> itemInTrash(TrashPlace const& trash, std::string const& name) {
    Result<ItemPlace> const place = placeOf(trash.files, name);
    if (!place.hasValue()) return place.problem();
    TrashedItem item{
        .path = trash.filesPath() + "/" + name, .identity = place.value().identity, .isFolder = place.value().isFolder};
    Result<std::optional<TrashInformation>> const information = informationOf(trash, name);
    if (!information.hasValue() || !information.value()) return item;
    item.originalPath = trash.originalPath(information.value()->path);
    item.deletionTime = secondsOfLocalTimeText(information.value()->date);
    return item;
}

Result<std::optional<OpenSidecar>> sidecarInTrash(TrashPlace const& trash, std::string const& name) {
    Result<std::optional<TrashInformation>> const information = informationOf(trash, AppleDoubleSidecar::nameFor(name));
    if (!information.hasValue()) return information.problem();
    if (!information.value()) return std::optional<OpenSidecar>();
    Result<std::optional<TrashInformation>> const owner = informationOf(trash, name);
    if (!owner.hasValue()) return owner.problem();
    if (!owner.value()) return std::optional<OpenSidecar>();
    BytePath const original(owner.value()->path);
    std::string const expected = BytePath(original.parent()).joined(AppleDoubleSidecar::nameFor(original.leaf()));
    if (information.value()->path != expected) return std::optional<OpenSidecar>();
    return sidecarBeside(trash.files, name);
}

TrashReservation::TrashReservation(TrashPlace const& trash, std::string const& name)
    : m_trash(trash), m_name(TrashInformation::nameFor(name)) {}

TrashReservation::~TrashReservation() {
    if (!m_file.isOpen() || m_isKept) return;
    if (confirmItemInFolder(m_trash.information, m_name, m_file).isDone())
        ::unlinkat(m_trash.information.number(), m_name.c_str(), 0);
}

Result<void> TrashReservation::make(std::string const& writtenPath, std::string const& date) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    m_file = FileDescriptor(::openat(m_trash.information.number(), m_name.c_str(), flags, mode_t{S_IRUSR | S_IWUSR}));
    if (!m_file.isOpen()) return lastSystemError("open", m_name);
    if (Result<void> const permitted = permitOwner(m_file, S_IRUSR | S_IWUSR); !permitted.isDone()) return permitted;
    std::string const text = TrashInformation{writtenPath, date}.text();
    Result<void> const written = writeAll(m_file, std::as_bytes(std::span(text)));
    if (!written.isDone()) return written;
    if (::fsync(m_file.number()) != 0) return lastSystemError("fsync", m_name);
    // Some file systems cannot flush folders.
    if (!isNameFlushedWithFile(m_file)) ::fsync(m_trash.information.number());
    return {};
}

void addDirectorySize(TrashPlace const& trash, std::string const& name) {
    std::optional<std::uint64_t> const bytes = diskUse(trash, name);
    struct stat information {};
    std::string const informationName = TrashInformation::nameFor(name);
    int const found = ::fstatat(trash.information.number(), informationName.c_str(), &information, AT_SYMLINK_NOFOLLOW);
    if (!bytes || found != 0) return;
    FileDescriptor const folder = locked(trash);
    if (!folder.isOpen()) return;
    std::vector<DirectorySize> sizes = readSizes(folder);
    std::erase_if(sizes, [&](DirectorySize const& size) { return size.name == name; });
    sizes.push_back({*bytes, information.st_mtim.tv_sec, name});
    writeSizes(folder, sizes);
}

void removeOldDirectorySizes(TrashPlace const& trash) {
    FileDescriptor const folder = locked(trash);
    if (!folder.isOpen()) return;
    std::vector<DirectorySize> sizes = readSizes(folder);
    std::size_t const gone =
        std::erase_if(sizes, [&](DirectorySize const& size) { return !placeOf(trash.files, size.name).hasValue(); });
    if (gone > 0) writeSizes(folder, sizes);
}

} // namespace mac
