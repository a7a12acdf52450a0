#include "platform/files/HeldItems.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include <cerrno>
#include <fcntl.h>

namespace mac {

namespace {

constexpr int HeldFolderFlags = O_PATH | O_DIRECTORY;

// Fails unless the path leads to the item; a symbolic link at its end is not followed.
Result<void> confirmAtPath(std::string const& path, ItemIdentity const& identity) {
    SplitPath const parts = splitPath(path);
    Result<FileDescriptor> const folder = openPath(parts.folder.empty() ? "." : parts.folder, HeldFolderFlags);
    if (!folder.hasValue()) return folder.problem();
    return confirmItemInFolder(folder.value(), parts.name.empty() ? "." : parts.name, identity);
}

// Looks for the item under another name in the folder of the path.
Result<std::string> findInFolder(std::string const& path, ItemIdentity const& identity) {
    std::string const folderPath = splitPath(path).folder;
    Result<FileDescriptor> const folder = openPath(folderPath, HeldFolderFlags);
    if (!folder.hasValue()) return folder.problem();
    Result<FileDescriptor> const readable = readableFolder(folder.value());
    if (!readable.hasValue()) return readable.problem();
    Result<std::vector<FolderEntry>> const entries = entriesOf(readable.value());
    if (!entries.hasValue()) return entries.problem();
    for (FolderEntry const& entry : entries.value()) {
        bool const mayBe = entry.inode == identity.inode;
        if (mayBe && confirmItemInFolder(folder.value(), entry.name, identity).isDone()) return folderPath + entry.name;
    }
    return SystemError{.code = ENOENT, .operation = "find", .item = path};
}

Result<std::string> findAround(std::string const& path, ItemIdentity const& identity) {
    if (confirmAtPath(path, identity).isDone()) return path;
    return findInFolder(path, identity);
}

Result<std::string> findHeld(FileDescriptor const& item, std::string const& lastPath, ItemIdentity const& identity) {
    Result<std::string> path = systemsPath(item);
    if (path.hasValue() && confirmAtPath(path.value(), identity).isDone()) return path;
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

Result<std::string> HeldItems::pathOf(ItemIdentity const& identity) const {
    if (auto const held = m_heldByIdentity.find(identity); held != m_heldByIdentity.end())
        return findHeld(held->second->item, held->second->path, identity);
    auto const remembered = m_rememberedByIdentity.find(identity);
    if (remembered == m_rememberedByIdentity.end() || !identity.isLasting())
        return SystemError{.code = ESTALE, .operation = "find"};
    return findAround(remembered->second->path, identity);
}

Result<FileDescriptor> HeldItems::openFolder(ItemIdentity const& identity) const {
    if (auto const held = m_heldByIdentity.find(identity); held != m_heldByIdentity.end())
        return openBelow(held->second->item, "");
    Result<std::string> const path = pathOf(identity);
    if (!path.hasValue()) return path.problem();
    return openPath(path.value(), HeldFolderFlags | O_NOFOLLOW);
}

void HeldItems::releaseRemoved() {
    for (auto held = m_held.begin(); held != m_held.end();) {
        auto const current = held++;
        Result<IdentifiedItem> const status = identify(current->item);
        if (status.hasValue() && !status.value().isRemoved) continue;
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
    Result<std::string> path = systemsPath(gone.item);
    // The search may need the descriptor, if the process can open no more files.
    gone.item = FileDescriptor();
    bool const isThere = path.hasValue() && confirmAtPath(path.value(), gone.identity).isDone();
    if (!isThere) path = findAround(gone.path, gone.identity);
    remember(gone.identity, std::move(path).valueOr(std::move(gone.path)));
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
