#include "platform/files/DirectorySizes.h"
#include "platform/files/TrashInformation.h"
#include "platform/system/FileWriting.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/FolderDescent.h"
#include <fcntl.h>
#include <span>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr char FileName[] = "directorysizes";
constexpr std::size_t LargestFile = std::size_t{4} << 20;
constexpr std::size_t MostItems = 50'000;
constexpr std::uint64_t BlockSize = 512;

// The disk space of the item and of all below it, in bytes, as du counts it; nullopt for what is no folder and for more
// than MostItems items.
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
    Result<void> const added = descend(trash.files, name, place.value().identity, {.mostItems = MostItems}, add);
    if (!added.isDone()) return std::nullopt;
    return blocks * BlockSize;
}

// Opens the trash and locks it. Not open if another process has the lock: the file is not worth waiting for.
FileDescriptor locked(TrashPlace const& trash) {
    FileDescriptor folder(::openat(trash.folder.number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen() || ::flock(folder.number(), LOCK_EX | LOCK_NB) != 0) return {};
    return folder;
}

std::vector<DirectorySize> readSizes(FileDescriptor const& folder) {
    FileDescriptor const file(
        ::openat(folder.number(), FileName, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) return {};
    Result<FileContents> const contents = readOpenFile(file, LargestFile);
    if (!contents.hasValue()) return {};
    std::span<std::byte const> const bytes = contents.value().bytes;
    return DirectorySize::read({reinterpret_cast<char const*>(bytes.data()), bytes.size()});
}

void writeSizes(FileDescriptor const& folder, std::vector<DirectorySize> const& sizes) {
    std::string const text = DirectorySize::text(sizes);
    // The file is a cache, which may be missing.
    (void)replaceFileInFolder(folder, FileName, std::as_bytes(std::span(text)), {.newFileMode = S_IRUSR | S_IWUSR});
}

} // namespace

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
