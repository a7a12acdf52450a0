#include "platform/system/FolderContents.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
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

std::optional<Item> withStatus(Result<FileDescriptor> item) {
    if (!item.hasValue()) return std::nullopt;
    Item opened{.item = item.takeValue()};
    if (::fstat(opened.item.number(), &opened.status) != 0) return std::nullopt;
    return opened;
}

// Opens the very item for reading; not open if that fails.
FileDescriptor readable(Item const& file) {
    return FileDescriptor(::open(descriptorPath(file.item).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
}

// Reads as many bytes as there are, up to a block; nullopt if that fails.
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

ContentsLikeness likenessOf(bool areEqual) { return areEqual ? ContentsLikeness::Equal : ContentsLikeness::Different; }

ContentsLikeness compareBytes(Item const& one, Item const& other, std::stop_token const& stop) {
    if (one.status.st_size != other.status.st_size) return ContentsLikeness::Different;
    FileDescriptor const file = readable(one);
    FileDescriptor const otherFile = readable(other);
    if (!file.isOpen() || !otherFile.isOpen()) return ContentsLikeness::Unreadable;
    std::vector<char> block(BlockSize);
    std::vector<char> otherBlock(BlockSize);
    while (!stop.stop_requested()) {
        std::optional<std::size_t> const size = readBlock(file, block);
        std::optional<std::size_t> const otherSize = readBlock(otherFile, otherBlock);
        if (!size || !otherSize) return ContentsLikeness::Unreadable;
        if (*size != *otherSize || std::memcmp(block.data(), otherBlock.data(), *size) != 0)
            return ContentsLikeness::Different;
        if (*size < block.size()) return ContentsLikeness::Equal;
    }
    return ContentsLikeness::Unreadable;
}

ContentsLikeness compareText(Item const& link, Item const& other) {
    Result<std::string> const text = linkText(link.item);
    Result<std::string> const otherText = linkText(other.item);
    if (!text.hasValue() || !otherText.hasValue()) return ContentsLikeness::Unreadable;
    return likenessOf(text.value() == otherText.value());
}

// Compares two items that are not both folders.
ContentsLikeness compareItems(Item const& one, Item const& other, std::stop_token const& stop) {
    mode_t const type = one.status.st_mode & S_IFMT;
    if (S_ISDIR(type) || type != (other.status.st_mode & S_IFMT)) return ContentsLikeness::Different;
    if (S_ISREG(type)) return compareBytes(one, other, stop);
    if (S_ISLNK(type)) return compareText(one, other);
    return likenessOf(one.status.st_rdev == other.status.st_rdev);
}

Result<std::vector<std::string>> namesIn(Result<FileDescriptor> const& readableFolder) {
    if (!readableFolder.hasValue()) return readableFolder.problem();
    Result<std::vector<FolderEntry>> entries = entriesOf(readableFolder.value());
    if (!entries.hasValue()) return entries.problem();
    std::vector<std::string> names;
    names.reserve(entries.value().size());
    for (FolderEntry& entry : entries.value())
        names.push_back(std::move(entry.name));
    std::ranges::sort(names);
    return names;
}

// Traverses two trees side by side.
class TreeComparison {
public:
    TreeComparison(FileDescriptor one, FileDescriptor other, std::stop_token stop)
        : m_one(std::move(one)), m_other(std::move(other)), m_stop(std::move(stop)) {}

    ContentsLikeness compare() {
        do {
            if (m_stop.stop_requested()) return ContentsLikeness::Unreadable;
            ContentsLikeness const likeness = compareOne(withStatus(m_one.item()), withStatus(m_other.item()));
            if (likeness != ContentsLikeness::Equal) return likeness;
        } while (m_one.next() && m_other.next());
        return ContentsLikeness::Equal;
    }

private:
    ContentsLikeness compareOne(std::optional<Item> one, std::optional<Item> other) {
        if (!one || !other) return ContentsLikeness::Unreadable;
        if (S_ISDIR(one->status.st_mode) && S_ISDIR(other->status.st_mode))
            return enter(std::move(one->item), std::move(other->item));
        return compareItems(*one, *other, m_stop);
    }

    ContentsLikeness enter(FileDescriptor folder, FileDescriptor otherFolder) {
        Result<std::vector<std::string>> names = namesInOpenFolder(folder);
        Result<std::vector<std::string>> otherNames = namesInOpenFolder(otherFolder);
        if (!names.hasValue() || !otherNames.hasValue()) return ContentsLikeness::Unreadable;
        if (names.value() != otherNames.value()) return ContentsLikeness::Different;
        m_one.enter(std::move(folder), names.takeValue());
        m_other.enter(std::move(otherFolder), otherNames.takeValue());
        return ContentsLikeness::Equal;
    }

    TreeDescent m_one;
    TreeDescent m_other;
    std::stop_token m_stop;
};

} // namespace

Result<std::vector<std::string>> namesInFolder(std::string_view path, LinkAtEnd linkAtEnd) {
    int const links = linkAtEnd == LinkAtEnd::IsFollowed ? 0 : O_NOFOLLOW;
    return namesIn(openPath(path, O_RDONLY | O_DIRECTORY | O_NONBLOCK | links));
}

Result<std::vector<std::string>> namesInOpenFolder(FileDescriptor const& folder) {
    return namesIn(readableFolder(folder));
}

TreeDescent::TreeDescent(FileDescriptor root) : m_root(std::move(root)) {}

Result<FileDescriptor> TreeDescent::item() {
    if (m_path.empty()) return openBelow(m_root, "");
    std::string_view const path = m_path;
    if (!m_folder.isOpen()) {
        Result<FileDescriptor> folder = openBelow(m_root, path.substr(0, m_folderLength));
        if (!folder.hasValue()) return folder;
        m_folder = folder.takeValue();
    }
    return openBelow(m_folder, path.substr(m_folderLength));
}

void TreeDescent::enter(FileDescriptor folder, std::vector<std::string> names) {
    std::ranges::reverse(names);
    m_levels.push_back({m_folderLength, std::move(names)});
    if (!m_path.empty()) m_path += '/';
    m_folderLength = m_path.size();
    m_folder = std::move(folder);
}

bool TreeDescent::next() {
    while (!m_levels.empty() && m_levels.back().names.empty())
        leave();
    m_path.resize(m_folderLength);
    if (m_levels.empty()) return false;
    m_path += m_levels.back().names.back();
    m_levels.back().names.pop_back();
    return true;
}

void TreeDescent::leave() {
    m_folderLength = m_levels.back().aboveLength;
    m_levels.pop_back();
    m_folder = FileDescriptor();
}

ContentsLikeness compareContents(std::string const& path, std::string const& otherPath, std::stop_token const& stop) {
    std::optional<Item> one = withStatus(openPath(path, O_PATH | O_NOFOLLOW));
    std::optional<Item> other = withStatus(openPath(otherPath, O_PATH | O_NOFOLLOW));
    if (!one || !other) return ContentsLikeness::Unreadable;
    bool const isOneItem = one->status.st_dev == other->status.st_dev && one->status.st_ino == other->status.st_ino;
    if (isOneItem) return ContentsLikeness::OneItem;
    if (S_ISDIR(one->status.st_mode) && S_ISDIR(other->status.st_mode))
        return TreeComparison(std::move(one->item), std::move(other->item), stop).compare();
    return compareItems(*one, *other, stop);
}

bool haveEqualContents(std::string const& path, std::string const& otherPath) {
    ContentsLikeness const likeness = compareContents(path, otherPath, {});
    return likeness == ContentsLikeness::Equal || likeness == ContentsLikeness::OneItem;
}

} // namespace mac
