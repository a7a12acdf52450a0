#include "platform/files/HeldItems.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include <fcntl.h>

namespace mac {

namespace {

constexpr int FolderFlags = O_PATH | O_DIRECTORY;

// Whether the item is what the path names, without following a link at its end.
bool isAtPath(std::string const& path, ItemIdentity const& identity) {
    SplitPath const parts = splitPath(path);
    FileDescriptor const folder = openPath(parts.folder.empty() ? "." : parts.folder, FolderFlags);
    return folder.isOpen() && isItemInFolder(folder, parts.name.empty() ? "." : parts.name, identity);
}

// Under another name in the folder that the path names.
std::optional<std::string> findInFolder(std::string const& path, ItemIdentity const& identity) {
    std::string const folderPath = splitPath(path).folder;
    FileDescriptor const folder = openPath(folderPath, FolderFlags);
    FileDescriptor readable = folder.isOpen() ? readableFolder(folder) : FileDescriptor();
    if (!readable.isOpen()) return std::nullopt;
    std::optional<std::vector<FolderEntry>> const entries = entriesOf(std::move(readable));
    if (!entries) return std::nullopt;
    for (FolderEntry const& entry : *entries) {
        if (entry.inode == identity.inode && isItemInFolder(folder, entry.name, identity))
            return folderPath + entry.name;
    }
    return std::nullopt;
}

std::optional<std::string> findAround(std::string const& path, ItemIdentity const& identity) {
    if (isAtPath(path, identity)) return path;
    return findInFolder(path, identity);
}

std::optional<std::string> findHeld(FileDescriptor const& item, std::string const& lastPath,
                                    ItemIdentity const& identity) {
    std::optional<std::string> path = systemsPath(item);
    if (path && isAtPath(*path, identity)) return path;
    return findAround(lastPath, identity);
}

} // namespace

void HeldItems::hold(ItemIdentity const& identity, FileDescriptor item, std::string path) {
    forget(identity);
    if (auto const known = m_heldByIdentity.find(identity); known != m_heldByIdentity.end()) {
        known->second->path = std::move(path);
        m_held.splice(m_held.begin(), m_held, known->second);
        return;
    }
    while (m_held.size() >= MostHeld)
        letGo(std::prev(m_held.end()));
    m_held.push_front({identity, std::move(item), std::move(path)});
    m_heldByIdentity.emplace(identity, m_held.begin());
}

std::optional<std::string> HeldItems::pathOf(ItemIdentity const& identity) const {
    if (auto const held = m_heldByIdentity.find(identity); held != m_heldByIdentity.end())
        return findHeld(held->second->item, held->second->path, identity);
    auto const remembered = m_rememberedByIdentity.find(identity);
    if (remembered == m_rememberedByIdentity.end() || !identity.isLasting()) return std::nullopt;
    return findAround(remembered->second->path, identity);
}

FileDescriptor HeldItems::openFolder(ItemIdentity const& identity) const {
    if (auto const held = m_heldByIdentity.find(identity); held != m_heldByIdentity.end())
        return openBelow(held->second->item, "");
    std::optional<std::string> const path = pathOf(identity);
    return path ? openPath(*path, FolderFlags | O_NOFOLLOW) : FileDescriptor();
}

void HeldItems::releaseRemoved() {
    for (auto held = m_held.begin(); held != m_held.end();) {
        auto const current = held++;
        std::optional<IdentifiedItem> const status = identify(current->item);
        if (status && !status->isRemoved) continue;
        m_heldByIdentity.erase(current->identity);
        m_held.erase(current);
    }
}

void HeldItems::releaseHalf() {
    for (std::size_t count = (m_held.size() + 1) / 2; count > 0; --count)
        letGo(std::prev(m_held.end()));
}

void HeldItems::letGo(HeldList::iterator held) {
    Held gone = std::move(*held);
    m_heldByIdentity.erase(gone.identity);
    m_held.erase(held);
    // Its descriptor may be the one that the search needs.
    std::optional<std::string> path = systemsPath(gone.item);
    gone.item = FileDescriptor();
    if (!path || !isAtPath(*path, gone.identity)) path = findAround(gone.path, gone.identity);
    remember(gone.identity, path ? std::move(*path) : std::move(gone.path));
}

void HeldItems::remember(ItemIdentity const& identity, std::string path) {
    forget(identity);
    if (m_remembered.size() >= MostRemembered) forget(m_remembered.back().identity);
    m_remembered.push_front({identity, std::move(path)});
    m_rememberedByIdentity.emplace(identity, m_remembered.begin());
}

void HeldItems::forget(ItemIdentity const& identity) {
    auto const known = m_rememberedByIdentity.find(identity);
    if (known == m_rememberedByIdentity.end()) return;
    RememberedList::iterator const place = known->second;
    m_rememberedByIdentity.erase(known);
    m_remembered.erase(place);
}

} // namespace mac
