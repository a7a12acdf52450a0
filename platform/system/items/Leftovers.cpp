#include "platform/system/items/Leftovers.h"
#include "platform/system/OpenItems.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/MountTable.h"
#include "platform/system/items/TreeRemoval.h"
#include <algorithm>
#include <cerrno>
#include <memory>
#include <mutex>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

// The folders that were looked at, with their modification times then; the latest last.
class KnownFolders {
public:
    bool isUnchanged(ItemStatus const& folder) {
        std::scoped_lock const guard(m_lock);
        return std::ranges::any_of(m_folders, [&](ItemStatus const& known) { return isSameState(known, folder); });
    }

    void remember(ItemStatus const& folder) {
        constexpr std::size_t most = 64;
        std::scoped_lock const guard(m_lock);
        std::erase_if(m_folders,
                      [&](ItemStatus const& known) { return known.place.identity == folder.place.identity; });
        if (m_folders.size() == most) m_folders.erase(m_folders.begin());
        m_folders.push_back(folder);
    }

private:
    static bool isSameState(ItemStatus const& one, ItemStatus const& other) {
        return one.place.identity == other.place.identity &&
               one.modificationTime.tv_sec == other.modificationTime.tv_sec &&
               one.modificationTime.tv_nsec == other.modificationTime.tv_nsec;
    }

    std::mutex m_lock{};
    std::vector<ItemStatus> m_folders{};
};

// Never destroyed: settings are also written at the program's exit.
KnownFolders& knownFolders() {
    static KnownFolders& shared = *std::make_unique<KnownFolders>().release();
    return shared;
}

VolumeSharing sharingOf(ItemStatus const& folder) {
    Result<MountTable> const table = MountTable::current();
    Mount const* const mount = table.hasValue() ? table.value().withId(folder.place.mount) : nullptr;
    return mount != nullptr && isLocal(*mount) ? VolumeSharing::ThisComputerOnly : VolumeSharing::PerhapsOthers;
}

// Whether nobody else can have given the name to an item that this user may remove.
bool isOurs(ItemStatus const& folder, ItemStatus const& item) {
    std::uint32_t const user = ::geteuid();
    bool const isSafeFolder = folder.place.owner == user || folder.place.owner == 0;
    // This user's group may have other members. With an access list its mask shows as the group's permissions.
    bool const othersMayWrite = (folder.place.mode & (S_IWGRP | S_IWOTH)) != 0;
    if (!isSafeFolder) return false;
    if (!othersMayWrite) return true;
    return (folder.place.mode & S_ISVTX) != 0 && item.place.owner == user;
}

// Removes the name that a copy's sidecar has got already, if the copy itself has not got its own.
void removeEarlyName(FileDescriptor const& folder, std::vector<FolderEntry> const& entries, ItemStatus const& sidecar) {
    for (FolderEntry const& entry : entries) {
        bool const mayBe = entry.inode == sidecar.place.identity.inode &&
                           entry.name.starts_with(AppleDoubleSidecar::namePrefix) && !parseTemporaryName(entry.name);
        if (!mayBe) continue;
        Result<ItemPlace> const item = placeOf(folder, entry.name.substr(AppleDoubleSidecar::namePrefix.size()));
        bool const isStray = !item.hasValue() && item.problem().is(ENOENT);
        if (isStray) static_cast<void>(removeTree(folder, entry.name, sidecar.place.identity));
    }
}

bool isSidecarName(std::string_view name) { return name.starts_with(AppleDoubleSidecar::namePrefix); }

// Removes the leftovers of ended processes in one folder: items first, then the sidecars that they leave.
class LeftoversRemoval {
public:
    // All must outlive the object.
    LeftoversRemoval(FileDescriptor const& folder, ItemStatus const& status, std::vector<FolderEntry> const& entries)
        : m_folder(folder), m_status(status), m_entries(entries) {}

    // False if the item stays.
    bool remove(std::string const& name, ParsedTemporaryName const& parsed) {
        Result<ItemStatus> const item = statusOf(m_folder, name);
        if (!item.hasValue()) return item.problem().is(ENOENT);
        if (!isOurs(m_status, item.value())) return false;
        if (!parsed.accepts(markOf(item.value())) && !hasLostItem(name, parsed)) return false;
        if (item.value().isFile() && item.value().links > 1) removeEarlyName(m_folder, m_entries, item.value());
        Result<void> const removed = removeTree(m_folder, name, item.value().place.identity, {.makesAccessible = true});
        if (removed.isDone()) m_removed.insert(name);
        return removed.isDone() || removed.problem().is(ENOENT);
    }

private:
    // Whether the sidecar of an item that was moved aside to go, which the marks do not tell, has outlived it. An item
    // that has not that name any more may have got its own one back without its sidecar.
    bool hasLostItem(std::string const& name, ParsedTemporaryName const& parsed) const {
        if (!isSidecarName(name) || parsed.mark == MarkOfNoItem) return false;
        std::string const item = name.substr(AppleDoubleSidecar::namePrefix.size());
        if (m_removed.contains(item)) return true;
        Result<ItemPlace> const place = placeOf(m_folder, item);
        bool const isGone = !place.hasValue() && place.problem().is(ENOENT);
        return isGone && std::ranges::none_of(m_entries, [&](FolderEntry const& entry) {
                   Result<ItemStatus> const status = statusOf(m_folder, entry.name);
                   if (!status.hasValue()) return !status.problem().is(ENOENT);
                   return parsed.accepts(markOf(status.value()));
               });
    }

    FileDescriptor const& m_folder;
    ItemStatus const& m_status;
    std::vector<FolderEntry> const& m_entries;
    std::set<std::string> m_removed{};
};

} // namespace

std::vector<std::string> removeLeftovers(FileDescriptor const& folder) {
    Result<ItemStatus> const status = statusOf(folder);
    if (!status.hasValue() || knownFolders().isUnchanged(status.value())) return {};
    Result<FileDescriptor> const listed = readableFolder(folder);
    if (!listed.hasValue()) return {};
    Result<std::vector<FolderEntry>> entries = entriesOf(listed.value());
    if (!entries.hasValue()) return {};
    // Items first, then the sidecars that they leave.
    std::stable_partition(entries.value().begin(), entries.value().end(),
                          [](FolderEntry const& entry) { return !isSidecarName(entry.name); });
    knownFolders().remember(status.value());
    std::vector<std::string> inDoubt;
    LeftoversRemoval removal(listed.value(), status.value(), entries.value());
    for (FolderEntry const& entry : entries.value()) {
        std::optional<ParsedTemporaryName> const name = parseTemporaryName(entry.name);
        if (!name) continue;
        OwnerState const owner = stateOf(name->owner, sharingOf(status.value()));
        if (owner == OwnerState::Runs) continue;
        bool const isGone = owner == OwnerState::HasEnded && removal.remove(entry.name, *name);
        if (!isGone) inDoubt.push_back(entry.name);
    }
    return inDoubt;
}

void leaveFolder(FileDescriptor const& folder) {
    Result<ItemStatus> const status = statusOf(folder);
    if (status.hasValue()) knownFolders().remember(status.value());
}

} // namespace mac
