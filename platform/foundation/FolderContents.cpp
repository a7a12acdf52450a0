#include "platform/foundation/FolderContents.h"
#include "platform/foundation/LongPath.h"
#include "platform/foundation/OpenItems.h"
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

// Two trees side by side. Only the folders that are being looked at are open, however deep they lie.
class TreeComparison {
public:
    TreeComparison(FileDescriptor one, FileDescriptor other) : m_root(std::move(one)), m_otherRoot(std::move(other)) {}

    bool haveEqualContents() {
        if (!areEqual(withStatus(openBelow(m_root, "")), withStatus(openBelow(m_otherRoot, "")))) return false;
        while (!m_levels.empty()) {
            if (m_levels.back().names.empty()) {
                leave();
                continue;
            }
            std::string const name = std::move(m_levels.back().names.back());
            m_levels.back().names.pop_back();
            if (!isOpen()) return false;
            m_name = name;
            if (!areEqual(withStatus(openBelow(m_folder, name)), withStatus(openBelow(m_otherFolder, name))))
                return false;
        }
        return true;
    }

private:
    struct Level {
        std::size_t pathLength; // of the folder above
        std::vector<std::string> names;
    };

    bool areEqual(std::optional<Item> one, std::optional<Item> other) {
        if (!one || !other) return false;
        if (S_ISDIR(one->status.st_mode) && S_ISDIR(other->status.st_mode))
            return enter(std::move(one->item), std::move(other->item));
        return haveEqualItems(*one, *other);
    }

    bool enter(FileDescriptor folder, FileDescriptor otherFolder) {
        std::optional<std::vector<std::string>> names = namesIn(readableFolder(folder));
        if (!names || namesIn(readableFolder(otherFolder)) != names) return false;
        m_levels.push_back({m_path.size(), std::move(*names)});
        if (m_levels.size() > 1) m_path.append(m_name).append("/");
        m_folder = std::move(folder);
        m_otherFolder = std::move(otherFolder);
        return true;
    }

    void leave() {
        m_path.resize(m_levels.back().pathLength);
        m_levels.pop_back();
        m_folder = FileDescriptor();
        m_otherFolder = FileDescriptor();
    }

    // The way back to a folder above is from the root again.
    bool isOpen() {
        if (m_folder.isOpen()) return true;
        m_folder = openBelow(m_root, m_path);
        m_otherFolder = openBelow(m_otherRoot, m_path);
        return m_folder.isOpen() && m_otherFolder.isOpen();
    }

    FileDescriptor m_root;
    FileDescriptor m_otherRoot;
    FileDescriptor m_folder{};
    FileDescriptor m_otherFolder{};
    std::string m_path{}; // from the roots to the folders, with a slash at the end
    std::string m_name{}; // of what is being compared
    std::vector<Level> m_levels{};
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
