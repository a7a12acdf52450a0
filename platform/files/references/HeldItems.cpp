#include "platform/files/references/HeldItems.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include <cerrno>
#include <fcntl.h>

namespace mac {

namespace {

SystemError notFound() { return {.code = ESTALE, .operation = "find"}; }

// Fails unless the path leads to the item; a symbolic link at its end is not followed.
Result<PlacedItem> confirmAtPath(std::string const& path, ItemIdentity const& identity) {
    Result<IdentifiedItem> const found = identifyAtPath(path, LinkAtEnd::IsNotFollowed);
    if (!found.hasValue()) return found.problem();
    if (!(found.value().identity == identity)) return notFound();
    return PlacedItem{path, found.value().isFolder};
}

// Whether the path is one at which the NFS client keeps a file that was removed while it was open: ".nfs", 16 digits of
// the inode number and 8 of a counter. The file may have other names still.
bool isOfRemovedName(std::string_view path) {
    constexpr std::string_view prefix = ".nfs";
    constexpr std::size_t digits = 24;
    std::string_view const name = path.substr(path.rfind('/') + 1);
    return name.starts_with(prefix) && name.size() == prefix.size() + digits &&
           name.find_first_not_of("0123456789abcdef", prefix.size()) == std::string_view::npos;
}

// Looks for the item under another name in the folder of the path.
Result<PlacedItem> findInFolder(std::string const& path, ItemIdentity const& identity) {
    std::string const folderPath = splitPath(path).folder;
    Result<FileDescriptor> const folder = openPath(folderPath, O_PATH | O_DIRECTORY);
    if (!folder.hasValue()) return folder.problem();
    Result<FileDescriptor> const readable = readableFolder(folder.value());
    if (!readable.hasValue()) return readable.problem();
    Result<std::vector<FolderEntry>> const entries = entriesOf(readable.value());
    if (!entries.hasValue()) return entries.problem();
    for (FolderEntry const& entry : entries.value()) {
        if (entry.inode != identity.inode || isOfRemovedName(entry.name)) continue;
        Result<IdentifiedItem> const found = identify(folder.value(), entry.name);
        if (found.hasValue() && found.value().identity == identity)
            return PlacedItem{folderPath + entry.name, found.value().isFolder};
    }
    return SystemError{.code = ENOENT, .operation = "find", .item = path};
}

Result<PlacedItem> findAround(std::string const& path, ItemIdentity const& identity) {
    Result<PlacedItem> there = confirmAtPath(path, identity);
    return there.hasValue() ? there : findInFolder(path, identity);
}

// The path that the system knows for the open item. No server is asked.
Result<std::string> pathOfHeld(ItemToHold const& held) {
    Result<std::string> path = systemsPath(held.item);
    return path.hasValue() && isOfRemovedName(path.value()) ? notFound() : path;
}

Result<PlacedItem> findHeld(ItemToHold const& held) {
    ItemIdentity const& identity = held.identified.identity;
    Result<std::string> const path = pathOfHeld(held);
    if (path.hasValue()) {
        Result<PlacedItem> there = confirmAtPath(path.value(), identity);
        if (there.hasValue()) return there;
    }
    return findAround(held.path, identity);
}

// Whether the open item no longer tells where it is, because the name is gone by which it was opened.
bool hasLostItsName(ItemToHold const& held, std::string const& newerPath) {
    Result<std::string> const path = pathOfHeld(held);
    if (!path.hasValue()) return true;
    return path.value() != newerPath && !confirmAtPath(path.value(), held.identified.identity).hasValue();
}

// Whether the item that was found is the one that was let go.
bool bearsMark(PlacedItem const& found, std::optional<LastingMark> const& mark) {
    if (!mark) return false;
    Result<FileDescriptor> const item = openPath(found.path, O_PATH | O_NOFOLLOW);
    if (!item.hasValue()) return false;
    Result<LastingMark> const later = lastingMarkOf(item.value());
    return later.hasValue() && areOfOneItem(*mark, later.value());
}

} // namespace

HeldItems::Holding HeldItems::hold(ItemToHold item) {
    ItemIdentity const identity = item.identified.identity;
    bool const isRemembered = m_rememberedByIdentity.contains(identity);
    forget(identity);
    if (auto const known = m_heldByIdentity.find(identity); known != m_heldByIdentity.end()) {
        // The newer path, but not the newer descriptor unless the older one is of no use: both may lead to the item by
        // different names.
        ItemToHold& held = *known->second;
        if (hasLostItsName(held, item.path)) {
            held.item = std::move(item.item);
            held.isPathFollowed = item.isPathFollowed;
            held.identified.mount = item.identified.mount;
        }
        held.path = std::move(item.path);
        held.identified.hasOtherNames = item.identified.hasOtherNames;
        m_held.splice(m_held.begin(), m_held, known->second);
        return Holding::ReferredToBefore;
    }
    while (m_held.size() >= MostHeld)
        letGo(std::prev(m_held.end()));
    m_held.push_front(std::move(item));
    m_heldByIdentity.emplace(identity, m_held.begin());
    return isRemembered ? Holding::ReferredToBefore : Holding::New;
}

bool HeldItems::holdAgain(IdentifiedItem const& item) {
    auto const known = m_heldByIdentity.find(item.identity);
    if (known == m_heldByIdentity.end()) return false;
    ItemToHold const& held = *known->second;
    // The name that the open item had may be gone, and the item have another one only.
    bool const hasOneName = !item.hasOtherNames && !held.identified.hasOtherNames;
    bool const isFollowed = held.isPathFollowed && hasOneName && item.mount == held.identified.mount && item.mount != 0;
    if (!isFollowed) return false;
    m_held.splice(m_held.begin(), m_held, known->second);
    return true;
}

Result<PlacedItem> HeldItems::find(ItemIdentity const& identity) const {
    if (auto const held = m_heldByIdentity.find(identity); held != m_heldByIdentity.end())
        return findHeld(*held->second);
    auto const place = m_rememberedByIdentity.find(identity);
    if (place == m_rememberedByIdentity.end()) return notFound();
    Remembered const& remembered = *place->second;
    Result<PlacedItem> found = findAround(remembered.path, identity);
    if (!found.hasValue() && !remembered.otherPath.empty()) found = findAround(remembered.otherPath, identity);
    bool const isCertain = !found.hasValue() || identity.isLasting() || bearsMark(found.value(), remembered.mark);
    return isCertain ? found : notFound();
}

Result<FileDescriptor> HeldItems::openFolder(ItemIdentity const& identity) const {
    if (auto const held = m_heldByIdentity.find(identity); held != m_heldByIdentity.end())
        return openBelow(held->second->item, "");
    Result<PlacedItem> const place = find(identity);
    if (!place.hasValue()) return place.problem();
    return openPath(place.value().path, O_PATH | O_DIRECTORY | O_NOFOLLOW);
}

void HeldItems::drop(ItemIdentity const& identity) {
    if (auto const held = m_heldByIdentity.find(identity); held != m_heldByIdentity.end()) release(held->second);
    forget(identity);
}

void HeldItems::releaseRemoved() {
    for (auto held = m_held.begin(); held != m_held.end();)
        held = isKnownToBeRemoved(held->item) ? release(held) : std::next(held);
    m_nextLook = m_held.end();
}

void HeldItems::releaseOneIfRemoved() {
    if (m_held.empty()) return;
    // From the most recent to the oldest, which is the next to be let go anyway.
    if (m_nextLook == m_held.end()) m_nextLook = m_held.begin();
    auto const looked = m_nextLook++;
    if (isKnownToBeRemoved(looked->item)) release(looked);
}

void HeldItems::releaseHalf() {
    for (std::size_t count = (m_held.size() + 1) / 2; count > 0; --count)
        letGo(std::prev(m_held.end()));
}

// Closes the item; returns the next older one.
HeldItems::HeldList::iterator HeldItems::release(HeldList::iterator held) {
    if (m_nextLook == held) ++m_nextLook;
    m_heldByIdentity.erase(held->identified.identity);
    return m_held.erase(held);
}

void HeldItems::letGo(HeldList::iterator held) {
    Remembered remembered{.identity = held->identified.identity};
    // Neither path is looked at: either may lead to a server by now that does not answer.
    remembered.path = pathOfHeld(*held).valueOr("");
    if (remembered.path != held->path) remembered.otherPath = std::move(held->path);
    if (remembered.path.empty()) remembered.path.swap(remembered.otherPath);
    if (!remembered.identity.isLasting()) {
        Result<LastingMark> mark = lastingMarkOf(held->item);
        if (mark.hasValue()) remembered.mark = mark.takeValue();
    }
    release(held);
    remember(std::move(remembered));
}

void HeldItems::remember(Remembered item) {
    forget(item.identity);
    if (m_remembered.size() >= MostRemembered) forget(m_remembered.back().identity);
    m_remembered.push_front(std::move(item));
    m_rememberedByIdentity.emplace(m_remembered.front().identity, m_remembered.begin());
}

void HeldItems::forget(ItemIdentity const& identity) {
    auto const known = m_rememberedByIdentity.find(identity);
    if (known == m_rememberedByIdentity.end()) return;
    RememberedList::iterator const place = known->second;
    m_rememberedByIdentity.erase(known);
    m_remembered.erase(place);
}

} // namespace mac
