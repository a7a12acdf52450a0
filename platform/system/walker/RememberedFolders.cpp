#include "platform/system/walker/RememberedFolders.h"
#include "platform/system/walker/FolderIndexFormat.h"
#include <cstring>
#include <utility>

namespace mac {

namespace {

bool isFileName(std::string_view name) {
    bool isPlain = true;
    for (char const byte : name)
        isPlain = isPlain && byte != '/' && byte != '\0';
    return isPlain && !name.empty() && name != "." && name != "..";
}

} // namespace

template <class T>
T RememberedFolders::read(std::size_t position) const {
    T value;
    std::memcpy(&value, m_block.data() + position, sizeof value);
    return value;
}

std::optional<RememberedFolders> RememberedFolders::parse(std::vector<std::byte> block, std::size_t start) {
    if (start > block.size() || block.size() - start > MostIndexBytes) return std::nullopt;
    RememberedFolders folders(std::move(block), start);
    if (!folders.check()) return std::nullopt;
    return folders;
}

// Whether every place that `next` will hand out is that of an entry that lies within its parent's.
bool RememberedFolders::check() {
    std::size_t position = m_start;
    while (position < m_block.size()) {
        if (!checkVolume(position)) return false;
    }
    return true;
}

bool RememberedFolders::checkVolume(std::size_t& position) {
    if (m_block.size() - position < sizeof(VolumeEntry)) return false;
    auto const volume = read<VolumeEntry>(position);
    position += sizeof volume;
    if (volume.isZero != 0 || m_block.size() - position < volume.pathBytes) return false;
    position += volume.pathBytes;
    if (m_block.size() - position < sizeof(FolderEntryHead)) return false;
    std::size_t const end = position + read<FolderEntryHead>(position).extent;
    if (end == position || end > m_block.size()) return false;
    // Each entry is followed by those of its subfolders, which fill it to its end, so one pass meets them all.
    while (position < end) {
        if (!checkFolder(position, end)) return false;
        position += sizeof(FolderEntryHead) + read<FolderEntryHead>(position).childBytes;
    }
    return position == end;
}

// Whether the entry lies before the end, its children are well formed, and the entries that some of them have fill it.
bool RememberedFolders::checkFolder(std::size_t position, std::size_t end) {
    if (position > end || end - position < sizeof(FolderEntryHead)) return false;
    auto const head = read<FolderEntryHead>(position);
    std::size_t const own = sizeof head + std::size_t{head.childBytes};
    if (head.extent < own || head.extent > end - position) return false;
    ++m_folderCount;
    std::size_t child = position + sizeof head;
    std::size_t const childrenEnd = position + own;
    std::size_t entry = childrenEnd;
    std::size_t const entriesEnd = position + head.extent;
    while (child < childrenEnd) {
        if (childrenEnd - child < ChildHeadBytes) return false;
        auto const kind = static_cast<std::uint8_t>(m_block[child]);
        auto const length = static_cast<std::size_t>(m_block[child + 1]);
        child += ChildHeadBytes;
        if (kind > static_cast<std::uint8_t>(Kind::Package) || childrenEnd - child < length) return false;
        if (!isFileName({reinterpret_cast<char const*>(m_block.data()) + child, length})) return false;
        child += length;
        if (kind != static_cast<std::uint8_t>(Kind::Folder)) continue;
        if (entriesEnd - entry < sizeof head) return false;
        std::size_t const extent = read<FolderEntryHead>(entry).extent;
        if (extent < sizeof head || extent > entriesEnd - entry) return false;
        entry += extent;
    }
    return entry == entriesEnd;
}

RememberedFolders::Place RememberedFolders::volume(std::string_view path, VolumeIdentity const& identity) const {
    std::size_t position = m_start;
    while (position < m_block.size()) {
        auto const volume = read<VolumeEntry>(position);
        position += sizeof volume;
        std::string_view const itsPath(reinterpret_cast<char const*>(m_block.data()) + position, volume.pathBytes);
        position += volume.pathBytes;
        VolumeIdentity const its{.device = volume.device, .type = volume.type, .fileSystem = volume.fileSystem};
        if (itsPath == path && its == identity) return static_cast<Place>(position);
        position += read<FolderEntryHead>(position).extent;
    }
    return None;
}

std::vector<RememberedFolders::Place> RememberedFolders::volumes() const {
    std::vector<Place> places;
    std::size_t position = m_start;
    while (position < m_block.size()) {
        position += sizeof(VolumeEntry) + read<VolumeEntry>(position).pathBytes;
        places.push_back(static_cast<Place>(position));
        position += read<FolderEntryHead>(position).extent;
    }
    return places;
}

FolderStamp RememberedFolders::stamp(Place place) const {
    auto const head = read<FolderEntryHead>(place);
    return {.inode = head.inode, .modified = head.modified, .changed = head.changed, .linkCount = head.linkCount};
}

std::uint32_t RememberedFolders::foldersBelow(Place place) const { return read<FolderEntryHead>(place).foldersBelow; }

RememberedFolders::Cursor RememberedFolders::children(Place place) const {
    auto const head = read<FolderEntryHead>(place);
    auto const first = static_cast<std::uint32_t>(place + sizeof head);
    return {.next = first, .end = first + head.childBytes, .nextFolder = first + head.childBytes};
}

std::optional<RememberedFolders::Child> RememberedFolders::next(Cursor& cursor) const {
    if (cursor.next >= cursor.end) return std::nullopt;
    auto const length = static_cast<std::uint32_t>(m_block[cursor.next + 1]);
    char const* const name = reinterpret_cast<char const*>(m_block.data()) + cursor.next + ChildHeadBytes;
    Child child{.name = {name, length}, .kind = static_cast<Kind>(m_block[cursor.next])};
    cursor.next += static_cast<std::uint32_t>(ChildHeadBytes) + length;
    if (child.kind != Kind::Folder) return child;
    child.place = cursor.nextFolder;
    cursor.nextFolder += read<FolderEntryHead>(child.place).extent;
    return child;
}

} // namespace mac
