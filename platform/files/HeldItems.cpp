#include "platform/files/HeldItems.h"
#include "platform/foundation/LongPath.h"
#include <array>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace mac {

namespace {

constexpr int FolderFlags = O_PATH | O_DIRECTORY;

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

bool isThere(FileDescriptor const& folder, std::string const& name, ItemIdentity const& identity) {
    std::optional<IdentifiedItem> const found = identify(folder, name);
    return found && found->identity == identity;
}

struct SplitPath {
    std::string folder;
    std::string name;
};

SplitPath split(std::string const& path) {
    std::size_t const slash = path.rfind('/');
    std::size_t const start = slash == std::string::npos ? 0 : slash + 1;
    return {path.substr(0, start), path.substr(start)};
}

// Whether the item is what the path names, without following a link at its end.
bool isAtPath(std::string const& path, ItemIdentity const& identity) {
    SplitPath const parts = split(path);
    FileDescriptor const folder = openPath(parts.folder.empty() ? "." : parts.folder, FolderFlags);
    return folder.isOpen() && isThere(folder, parts.name.empty() ? "." : parts.name, identity);
}

// The path that the system has for an open item. It says " (deleted)" behind one that is gone, but a name may end so,
// and it says nothing when the path is too long for it.
std::optional<std::string> systemsPath(FileDescriptor const& item) {
    std::array<char, PATH_MAX> path;
    std::string const link = "/proc/self/fd/" + std::to_string(item.number());
    ssize_t const length = ::readlink(link.c_str(), path.data(), path.size());
    if (length <= 0 || path[0] != '/') return std::nullopt;
    return std::string(path.data(), static_cast<std::size_t>(length));
}

// Under another name in the folder that the path names.
std::optional<std::string> findInFolder(std::string const& path, ItemIdentity const& identity) {
    std::string const folderPath = split(path).folder;
    FileDescriptor const folder = openPath(folderPath, O_RDONLY | O_DIRECTORY);
    if (!folder.isOpen()) return std::nullopt;
    std::unique_ptr<DIR, CloseFolder> const entries(::fdopendir(::dup(folder.number())));
    while (dirent const* const entry = entries ? ::readdir(entries.get()) : nullptr) {
        std::string const name = entry->d_name;
        if (entry->d_ino != identity.inode || name == "." || name == "..") continue;
        if (isThere(folder, name, identity)) return folderPath + name;
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
