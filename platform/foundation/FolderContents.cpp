#include "platform/foundation/FolderContents.h"
#include "platform/foundation/LongPath.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::size_t BlockSize = std::size_t{128} << 10;
// As deep as a path can be that the system gives out.
constexpr unsigned DeepestFolder = PATH_MAX / 2;

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

struct Item {
    FileDescriptor item;
    struct stat status {};
};

std::optional<Item> openItem(std::string const& path) {
    Item opened{.item = openPath(path, O_PATH | O_NOFOLLOW)};
    if (!opened.item.isOpen() || ::fstat(opened.item.number(), &opened.status) != 0) return std::nullopt;
    return opened;
}

std::optional<std::string> linkText(Item const& link) {
    std::array<char, PATH_MAX> text;
    ssize_t const length = ::readlinkat(link.item.number(), "", text.data(), text.size());
    if (length < 0) return std::nullopt;
    return std::string(text.data(), static_cast<std::size_t>(length));
}

// The very item, for reading.
FileDescriptor readable(Item const& file) {
    std::string const path = "/proc/self/fd/" + std::to_string(file.item.number());
    return FileDescriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
}

// As many bytes as there are, up to a block.
std::optional<std::size_t> readBlock(FileDescriptor const& file, std::vector<char>& block) {
    std::size_t size = 0;
    while (size < block.size()) {
        ssize_t const count = ::read(file.number(), block.data() + size, block.size() - size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        size += static_cast<std::size_t>(count);
    }
    return size;
}

bool haveEqualBytes(Item const& one, Item const& other) {
    if (one.status.st_size != other.status.st_size) return false;
    FileDescriptor const file = readable(one);
    FileDescriptor const otherFile = readable(other);
    if (!file.isOpen() || !otherFile.isOpen()) return false;
    std::vector<char> block(BlockSize);
    std::vector<char> otherBlock(BlockSize);
    for (;;) {
        std::optional<std::size_t> const size = readBlock(file, block);
        if (!size || readBlock(otherFile, otherBlock) != size) return false;
        if (std::memcmp(block.data(), otherBlock.data(), *size) != 0) return false;
        if (*size < block.size()) return true;
    }
}

bool areEqual(std::string const& path, std::string const& otherPath, unsigned depth);

bool haveEqualItems(std::string const& path, std::string const& otherPath, unsigned depth) {
    std::optional<std::vector<std::string>> const names = namesInFolder(path, LinkAtEnd::IsNotFollowed);
    if (!names || depth == DeepestFolder || namesInFolder(otherPath, LinkAtEnd::IsNotFollowed) != names) return false;
    return std::ranges::all_of(*names, [&](std::string const& name) {
        return areEqual(path + "/" + name, otherPath + "/" + name, depth + 1);
    });
}

bool areEqual(std::string const& path, std::string const& otherPath, unsigned depth) {
    std::optional<Item> const one = openItem(path);
    std::optional<Item> const other = openItem(otherPath);
    if (!one || !other || (one->status.st_mode & S_IFMT) != (other->status.st_mode & S_IFMT)) return false;
    if (S_ISDIR(one->status.st_mode)) return haveEqualItems(path, otherPath, depth);
    if (S_ISREG(one->status.st_mode)) return haveEqualBytes(*one, *other);
    if (!S_ISLNK(one->status.st_mode)) return one->status.st_rdev == other->status.st_rdev;
    std::optional<std::string> const text = linkText(*one);
    return text && linkText(*other) == text;
}

} // namespace

std::optional<std::vector<std::string>> namesInFolder(std::string_view path, LinkAtEnd linkAtEnd) {
    int const links = linkAtEnd == LinkAtEnd::IsFollowed ? 0 : O_NOFOLLOW;
    FileDescriptor const folder = openPath(path, O_RDONLY | O_DIRECTORY | O_NONBLOCK | links);
    if (!folder.isOpen()) return std::nullopt;
    // What lists the folder closes its descriptor.
    std::unique_ptr<DIR, CloseFolder> const entries(::fdopendir(::fcntl(folder.number(), F_DUPFD_CLOEXEC, 0)));
    if (!entries) return std::nullopt;
    std::vector<std::string> names;
    errno = 0;
    while (dirent const* const entry = ::readdir(entries.get())) {
        std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(std::move(name));
    }
    if (errno != 0) return std::nullopt;
    std::ranges::sort(names);
    return names;
}

bool haveEqualContents(std::string const& path, std::string const& otherPath) { return areEqual(path, otherPath, 0); }

} // namespace mac
