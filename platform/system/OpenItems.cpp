#include "platform/system/OpenItems.h"
#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::string_view DescriptorPathStart = "/proc/self/fd/";
constexpr std::size_t ReadingBlockSize = std::size_t{32} << 10;

Result<std::string> textOfLink(int folder, char const* name) {
    std::array<char, PATH_MAX> room;
    ssize_t const count = ::readlinkat(folder, name, room.data(), room.size());
    if (count < 0) return lastSystemError("readlink", name);
    if (static_cast<std::size_t>(count) < room.size()) return std::string(room.data(), static_cast<std::size_t>(count));
    for (std::size_t size = std::size_t{2} * PATH_MAX;; size *= 2) {
        std::string text(size, '\0');
        ssize_t const length = ::readlinkat(folder, name, text.data(), text.size());
        if (length < 0) return lastSystemError("readlink", name);
        // A buffer that is full may hold a part of it.
        if (static_cast<std::size_t>(length) == size) continue;
        text.resize(static_cast<std::size_t>(length));
        return text;
    }
}

// The folder in which the system shows this process's open descriptors as links to what they are open on; negative
// until it is opened. Kept open, since going there takes longer than reading a link.
constinit std::atomic<int> openFolderOfDescriptors{-1};

// Runs in a process that was forked off, where the folder is still that of the parent.
void closeParentsFolder() {
    int const folder = openFolderOfDescriptors.exchange(-1);
    if (folder >= 0) ::close(folder);
}

// A negative number if the folder cannot be opened.
int folderOfDescriptors() {
    static bool const isClosedAfterFork = ::pthread_atfork(nullptr, nullptr, closeParentsFolder) == 0;
    int known = openFolderOfDescriptors.load();
    if (known >= 0 || !isClosedAfterFork) return known;
    FileDescriptor folder(::open("/proc/self/fd", O_PATH | O_DIRECTORY | O_CLOEXEC));
    // Another thread may have been quicker; then its folder is answered.
    if (!openFolderOfDescriptors.compare_exchange_strong(known, folder.number())) return known;
    return folder.release();
}

FolderEntry::Kind kindOf(unsigned char type) {
    if (type == DT_REG) return FolderEntry::Kind::File;
    if (type == DT_DIR) return FolderEntry::Kind::Folder;
    return type == DT_UNKNOWN ? FolderEntry::Kind::Unknown : FolderEntry::Kind::Other;
}

} // namespace

std::string descriptorPath(FileDescriptor const& item) {
    return std::string(DescriptorPathStart) + std::to_string(item.number());
}

bool isDescriptorPath(std::string_view path) { return path.starts_with(DescriptorPathStart); }

Result<std::string> systemsPath(FileDescriptor const& item) {
    int const folder = item.isOpen() ? folderOfDescriptors() : -1;
    Result<std::string> path = folder < 0 ? textOfLink(AT_FDCWD, descriptorPath(item).c_str())
                                          : textOfLink(folder, std::to_string(item.number()).c_str());
    if (!path.hasValue() || path.value().starts_with('/')) return path;
    return SystemError{.code = ENOENT, .operation = "readlink", .item = path.takeValue()};
}

Result<std::string> linkText(FileDescriptor const& link) { return textOfLink(link.number(), ""); }

Result<std::string> linkTextIn(FileDescriptor const& folder, std::string const& name) {
    return textOfLink(folder.number(), name.c_str());
}

Result<FileDescriptor> openBelow(FileDescriptor const& folder, std::string_view relativePath) {
    constexpr int flags = O_PATH | O_NOFOLLOW | O_CLOEXEC;
    FileDescriptor item(::openat(folder.number(), ".", flags));
    if (!item.isOpen()) return lastSystemError("open", ".");
    while (!relativePath.empty()) {
        std::size_t const length = std::min(relativePath.find('/'), relativePath.size());
        std::string const name(relativePath.substr(0, length));
        relativePath.remove_prefix(std::min(length + 1, relativePath.size()));
        if (name.empty()) continue;
        item = FileDescriptor(::openat(item.number(), name.c_str(), flags));
        if (!item.isOpen()) return lastSystemError("open", name);
    }
    return item;
}

Result<FileDescriptor> readableFolder(FileDescriptor const& folder) {
    FileDescriptor readable(::openat(folder.number(), ".", O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC));
    if (!readable.isOpen()) return lastSystemError("open", ".");
    return readable;
}

Result<void> makeOwnFolder(FileDescriptor const& parent, std::string const& name) {
    if (::mkdirat(parent.number(), name.c_str(), S_IRWXU) != 0) return lastSystemError("mkdir", name);
    constexpr int flags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    FileDescriptor const made(::openat(parent.number(), name.c_str(), flags));
    // Another process has taken it away already.
    if (!made.isOpen()) return lastSystemError("open", name);
    return permitOwner(made, S_IRWXU);
}

Result<void> permitOwner(FileDescriptor const& item, unsigned permissions) {
    struct stat status {};
    if (::fstat(item.number(), &status) != 0) return lastSystemError("stat");
    unsigned const wanted = (status.st_mode | permissions) & 07777U;
    if (wanted == (status.st_mode & 07777U)) return {};
    // By a path, since a descriptor that only names the item is refused.
    if (::chmod(descriptorPath(item).c_str(), wanted) == 0) return {};
    SystemError error = lastSystemError("chmod");
    // Some file systems tell one mode of everything and change none; whoever lacks a permission there learns it next.
    bool const isFixed = error.is(EPERM) || error.is(ENOSYS) || error.is(EOPNOTSUPP);
    return isFixed ? Result<void>() : error;
}

Result<void> flushFolder(FileDescriptor const& folder) {
    Result<FileDescriptor> const readable = readableFolder(folder);
    if (!readable.hasValue() || ::fsync(readable.value().number()) == 0) return {};
    SystemError error = lastSystemError("fsync", ".");
    bool const cannotFlush = error.is(EINVAL) || error.is(EROFS) || error.is(EOPNOTSUPP) || error.is(ENOSYS);
    return cannotFlush ? Result<void>() : error;
}

Result<void> writeAll(FileDescriptor const& file, std::span<std::byte const> bytes) {
    while (!bytes.empty()) {
        ssize_t const count = ::write(file.number(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return lastSystemError("write");
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return {};
}

Result<void> confirmWritten(FileDescriptor const& file, std::string const& name) {
    int const copy = ::fcntl(file.number(), F_DUPFD_CLOEXEC, 0);
    if (copy < 0 || ::close(copy) != 0) return lastSystemError("close", name);
    return {};
}

Result<std::vector<FolderEntry>> entriesOf(FileDescriptor const& folder) {
    std::vector<FolderEntry> result;
    std::vector<char> block(ReadingBlockSize);
    for (;;) {
        ssize_t const count = ::getdents64(folder.number(), block.data(), block.size());
        // A folder that was removed while open has no entries.
        if (count == 0 || (count < 0 && errno == ENOENT)) return result;
        if (count < 0) return lastSystemError("getdents");
        for (std::size_t position = 0; position < static_cast<std::size_t>(count);) {
            auto const& entry = *reinterpret_cast<dirent64 const*>(block.data() + position);
            position += entry.d_reclen;
            std::string name = entry.d_name;
            if (name != "." && name != "..") result.push_back({std::move(name), entry.d_ino, kindOf(entry.d_type)});
        }
    }
}

SplitPath splitPath(std::string_view path) {
    std::size_t const slash = path.rfind('/');
    std::size_t const start = slash == std::string_view::npos ? 0 : slash + 1;
    return {std::string(path.substr(0, start)), std::string(path.substr(start))};
}

} // namespace mac
