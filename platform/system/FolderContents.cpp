#include "platform/system/FolderContents.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/TreeDescent.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::size_t BlockSize = std::size_t{128} << 10;

struct Item {
    FileDescriptor item;
    struct stat status {};
};

std::optional<Item> withStatus(FileDescriptor item) {
    Item opened{.item = std::move(item)};
    if (!opened.item.isOpen() || ::fstat(opened.item.number(), &opened.status) != 0) return std::nullopt;
    return opened;
}

// The very item, for reading.
FileDescriptor readable(Item const& file) {
    return FileDescriptor(::open(descriptorPath(file.item).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
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

bool haveEqualText(Item const& link, Item const& other) {
    std::optional<std::string> const text = linkText(link.item);
    return text && linkText(other.item) == text;
}

// Of what is no folder; a folder is equal to nothing else.
bool haveEqualItems(Item const& one, Item const& other) {
    mode_t const type = one.status.st_mode & S_IFMT;
    if (S_ISDIR(type) || type != (other.status.st_mode & S_IFMT)) return false;
    if (S_ISREG(type)) return haveEqualBytes(one, other);
    if (S_ISLNK(type)) return haveEqualText(one, other);
    return one.status.st_rdev == other.status.st_rdev;
}

std::optional<std::vector<std::string>> namesIn(FileDescriptor readableFolder) {
    if (!readableFolder.isOpen()) return std::nullopt;
    std::optional<std::vector<FolderEntry>> entries = entriesOf(std::move(readableFolder));
    if (!entries) return std::nullopt;
    std::vector<std::string> names;
    names.reserve(entries->size());
    for (FolderEntry& entry : *entries)
        names.push_back(std::move(entry.name));
    std::ranges::sort(names);
    return names;
}

// Two trees side by side.
class TreeComparison {
public:
    TreeComparison(FileDescriptor one, FileDescriptor other) : m_one(std::move(one)), m_other(std::move(other)) {}

    bool haveEqualContents() {
        do {
            if (!areEqual(withStatus(m_one.item()), withStatus(m_other.item()))) return false;
        } while (m_one.next() && m_other.next());
        return true;
    }

private:
    bool areEqual(std::optional<Item> one, std::optional<Item> other) {
        if (!one || !other) return false;
        if (S_ISDIR(one->status.st_mode) && S_ISDIR(other->status.st_mode))
            return enter(std::move(one->item), std::move(other->item));
        return haveEqualItems(*one, *other);
    }

    bool enter(FileDescriptor folder, FileDescriptor otherFolder) {
        std::optional<std::vector<std::string>> names = namesIn(readableFolder(folder));
        if (!names || namesIn(readableFolder(otherFolder)) != names) return false;
        m_one.enter(std::move(folder), *names);
        m_other.enter(std::move(otherFolder), std::move(*names));
        return true;
    }

    TreeDescent m_one;
    TreeDescent m_other;
};

} // namespace

std::optional<std::vector<std::string>> namesInFolder(std::string_view path, LinkAtEnd linkAtEnd) {
    int const links = linkAtEnd == LinkAtEnd::IsFollowed ? 0 : O_NOFOLLOW;
    return namesIn(openPath(path, O_RDONLY | O_DIRECTORY | O_NONBLOCK | links));
}

std::optional<std::vector<std::string>> namesInOpenFolder(FileDescriptor const& folder) {
    return namesIn(readableFolder(folder));
}

bool haveEqualContents(std::string const& path, std::string const& otherPath) {
    std::optional<Item> one = withStatus(openPath(path, O_PATH | O_NOFOLLOW));
    std::optional<Item> other = withStatus(openPath(otherPath, O_PATH | O_NOFOLLOW));
    if (!one || !other) return false;
    if (S_ISDIR(one->status.st_mode) && S_ISDIR(other->status.st_mode))
        return TreeComparison(std::move(one->item), std::move(other->item)).haveEqualContents();
    return haveEqualItems(*one, *other);
}

} // namespace mac
