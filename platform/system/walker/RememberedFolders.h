#pragma once

#include "platform/system/walker/FolderFacts.h"
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace mac {

// The folders that a walk has read, with the names of what it found in each: an index that lets the next walk leave out
// those that did not change. One block of memory, as it is written to a file: about 20 to 30 bytes a folder. Whatever
// the bytes are, reading them stays within them and ends. Immutable; any thread.
class RememberedFolders {
public:
    // Where a folder's entry lies; None for a folder that is not remembered.
    using Place = std::uint32_t;
    static constexpr Place None = 0;

    enum class Kind : std::uint8_t {
        Name,    // a folder without an entry: it held no folder, was not entered or could not be read
        Folder,  // a folder with an entry
        Package, // a wanted package
    };

    struct Child {
        std::string_view name; // never empty, ".", ".." or with a slash or zero byte; bytes of the block
        Kind kind = Kind::Name;
        Place place = None;
    };

    // Where in a folder's list of children a reader is.
    struct Cursor {
        std::uint32_t next = 0;
        std::uint32_t end = 0;
        Place nextFolder = None;
    };

    // nullopt unless the bytes from `start` on are whole volumes that indexOf (FolderLog.h) could have written.
    // The index may begin anywhere in the block, so that what was read from a file need not be copied.
    static std::optional<RememberedFolders> parse(std::vector<std::byte> block, std::size_t start = 0);

    // The folder from which a volume was walked, by the path it was walked from; None if it was not, or if another
    // file system has that path now.
    Place volume(std::string_view path, VolumeIdentity const& identity) const;
    // The folders from which all volumes were walked.
    std::vector<Place> volumes() const;
    // REQUIRES for these: the place is one of this index's. A stamp that no folder can have (inode 0) if the list of
    // children is not to be relied on.
    FolderStamp stamp(Place place) const;
    // How many folders lie below, at all depths, those without entries included.
    std::uint32_t foldersBelow(Place place) const;
    Cursor children(Place place) const;
    // nullopt after the last child.
    std::optional<Child> next(Cursor& cursor) const;

    std::span<std::byte const> bytes() const { return std::span(m_block).subspan(m_start); }
    // The number of folders with an entry; folders that are known by name alone do not count.
    std::size_t folderCount() const { return m_folderCount; }

private:
    RememberedFolders(std::vector<std::byte> block, std::size_t start) : m_block(std::move(block)), m_start(start) {}
    bool check();
    bool checkVolume(std::size_t& position);
    bool checkFolder(std::size_t position, std::size_t end);
    template <class T>
    T read(std::size_t position) const;

    std::vector<std::byte> m_block;
    std::size_t m_start = 0;
    std::size_t m_folderCount = 0;
};

// Finds what the index has for the subfolders of one folder by their names, for a folder whose list is read anew.
class RememberedNames {
public:
    RememberedNames(RememberedFolders const& folders, RememberedFolders::Cursor children) {
        while (std::optional<RememberedFolders::Child> const child = folders.next(children)) {
            if (child->place != RememberedFolders::None) m_places.emplace(child->name, child->place);
        }
    }

    // The place of the folder of that name; RememberedFolders::None if it has no entry.
    RememberedFolders::Place place(std::string_view name) const {
        auto const found = m_places.find(name);
        return found == m_places.end() ? RememberedFolders::None : found->second;
    }

private:
    std::unordered_map<std::string_view, RememberedFolders::Place> m_places;
};

} // namespace mac
