#include "platform/files/references/ItemReferences.h"
#include "platform/files/references/ExchangedIdentities.h"
#include "platform/files/references/HeldItems.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/FolderPlace.h"
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <linux/openat2.h>
#include <memory>
#include <mutex>
#include <optional>
#include <sys/syscall.h>
#include <unistd.h>
#include <unordered_set>
#include <vector>

namespace mac {

namespace {

// The first bytes of a reference; the others are zero.
struct Contents {
    std::array<char, 8> mark{'F', 'S', 'R', 'e', 'f', ' ', '1', '\0'};
    ItemIdentity identity{};
};
static_assert(sizeof(Contents) <= sizeof(FSRef) && std::is_trivially_copyable_v<Contents>);

struct Table {
    std::mutex lock{};
    HeldItems items{};
    // Items that are held for PassingReferences alone.
    std::unordered_set<ItemIdentity, ItemIdentityHash> passing{};
    ExchangedIdentities exchanged{};

    void noteHolding(ItemIdentity const& identity, HeldItems::Holding holding);
    void dropPassing(ItemIdentity const& identity);
};

// Never destroyed, since references may be used until the program's last instruction.
Table& table() {
    static Table& shared = *std::make_unique<Table>().release();
    return shared;
}

// The references that this thread is to drop at the end of a PassingReferences.
std::vector<ItemIdentity>& passingReferences() {
    static thread_local std::vector<ItemIdentity> passing;
    return passing;
}

// The number of PassingReferences on this thread.
unsigned& passingDepth() {
    static thread_local unsigned depth = 0;
    return depth;
}

void Table::noteHolding(ItemIdentity const& identity, HeldItems::Holding holding) {
    if (passingDepth() == 0) {
        passing.erase(identity);
    } else if (holding == HeldItems::Holding::New) {
        passing.insert(identity);
        passingReferences().push_back(identity);
    }
}

void Table::dropPassing(ItemIdentity const& identity) {
    if (passing.erase(identity) > 0) items.drop(identity);
}

FSRef referenceWith(ItemIdentity const& identity) {
    Contents const contents{.identity = identity};
    FSRef reference{};
    std::memcpy(reference.hidden.data(), &contents, sizeof(contents));
    return reference;
}

// The lock is held here and in identityOf().
FSRef referenceTo(ItemIdentity const& item) { return referenceWith(table().exchanged.referredTo(item)); }

SystemError badReference() { return {.code = ESTALE, .operation = "find reference"}; }

// ESTALE for bytes that are no reference.
Result<ItemIdentity> identityOf(FSRef const& reference) {
    Contents contents;
    std::memcpy(&contents, reference.hidden.data(), sizeof(contents));
    if (reference != referenceWith(contents.identity)) return badReference();
    return table().exchanged.itemOf(contents.identity);
}

// Calls the operation, which answers a result, again after releasing held items if the process can open no more files.
template <class Operation>
auto withRoom(HeldItems& items, Operation const& operation) {
    for (;;) {
        auto result = operation();
        bool const needsRoom = !result.hasValue() && (result.problem().is(EMFILE) || result.problem().is(ENFILE));
        if (!needsRoom || items.heldCount() == 0) return result;
        items.releaseHalf();
    }
}

// A relative path starts at the current folder, whose own path may be of any length.
std::string absolutePath(std::string_view path) {
    if (path.starts_with('/')) return std::string(path);
    std::unique_ptr<char, decltype(&std::free)> const folder(::getcwd(nullptr, 0), &std::free);
    return (folder ? std::string(folder.get()) : std::string()).append("/").append(path);
}

// Whether the text of a path has only the names of folders and an item, from the root.
bool hasOnlyNames(std::string_view path) {
    if (!path.starts_with('/') || path.size() < 2) return false;
    for (std::size_t place = 0; place < path.size();) {
        std::size_t const start = place + 1;
        place = std::min(path.find('/', start), path.size());
        std::string_view const name = path.substr(start, place - start);
        if (name.empty() || name == "." || name == "..") return false;
    }
    return true;
}

// Opens the item of a path that leads through no symbolic link, which is then the item's own path.
std::optional<FileDescriptor> openAtOwnPath(std::string const& path, LinkAtEnd linkAtEnd) {
    if (path.size() >= PATH_MAX || !hasOnlyNames(path)) return std::nullopt;
    unsigned const flags = linkAtEnd == LinkAtEnd::IsFollowed ? O_PATH | O_CLOEXEC : O_PATH | O_NOFOLLOW | O_CLOEXEC;
    open_how how{.flags = flags, .mode = 0, .resolve = RESOLVE_NO_SYMLINKS};
    FileDescriptor item(static_cast<int>(::syscall(SYS_openat2, AT_FDCWD, path.c_str(), &how, sizeof how)));
    return item.isOpen() ? std::optional(std::move(item)) : std::nullopt;
}

// The path of the item that the path led to, without links, where the system does not tell it.
std::string pathWithoutLinks(std::string_view path, LinkAtEnd linkAtEnd) {
    std::string const absolute = absolutePath(path);
    SplitPath const parts = splitPath(absolute);
    bool const isName = !parts.name.empty() && parts.name != "." && parts.name != "..";
    bool const isLinkItself = linkAtEnd == LinkAtEnd::IsNotFollowed && isName;
    return isLinkItself ? BytePath(resolvedPath(parts.folder)).joined(parts.name) : resolvedPath(absolute);
}

struct OpenedPath {
    FileDescriptor item{};
    std::string path{};
    bool isPathFollowed{false};
};

Result<OpenedPath> openWithItsPath(HeldItems& items, std::string const& path, LinkAtEnd linkAtEnd) {
    if (std::optional<FileDescriptor> item = openAtOwnPath(path, linkAtEnd))
        return OpenedPath{.item = std::move(*item), .path = path, .isPathFollowed = true};
    int const flags = linkAtEnd == LinkAtEnd::IsFollowed ? O_PATH : O_PATH | O_NOFOLLOW;
    Result<FileDescriptor> item = withRoom(items, [&] { return openPath(path, flags); });
    if (!item.hasValue()) return item.problem();
    OpenedPath opened{.item = item.takeValue()};
    Result<std::string> known = systemsPath(opened.item);
    opened.isPathFollowed = known.hasValue();
    opened.path = known.hasValue() ? known.takeValue() : pathWithoutLinks(path, linkAtEnd);
    return opened;
}

// Different for the path of a link and of what it leads to.
std::size_t hashOf(std::string const& path, LinkAtEnd linkAtEnd) {
    std::size_t const hash = std::hash<std::string>()(path);
    return linkAtEnd == LinkAtEnd::IsFollowed ? hash : ~hash;
}

// A reference to an item that is held already and whose open descriptor tells its path.
std::optional<FSRef> referenceToHeld(Table& table, IdentifiedItem const& item) {
    if (!table.items.holdAgain(item)) return std::nullopt;
    table.noteHolding(item.identity, HeldItems::Holding::ReferredToBefore);
    return referenceTo(item.identity);
}

Result<FSRef> holdItem(Table& table, OpenedPath opened) {
    Result<IdentifiedItem> const found = identify(opened.item);
    if (!found.hasValue()) return found.problem();
    ItemIdentity const identity = found.value().identity;
    HeldItems::Holding const holding =
        table.items.hold({found.value(), std::move(opened.item), std::move(opened.path), opened.isPathFollowed});
    table.noteHolding(identity, holding);
    return referenceTo(identity);
}

// Opens the folder that was referred to. An obstacle on the way, or a lack of descriptors, is the error; if the folder
// is gone, or another item has taken its place, the reference is bad.
Result<FileDescriptor> openReferencedFolder(HeldItems& items, ItemIdentity const& identity) {
    Result<FileDescriptor> folder = withRoom(items, [&] { return items.openFolder(identity); });
    if (!folder.hasValue()) {
        SystemError const& error = folder.problem();
        bool const isObstacle = error.is(ENOTDIR) || error.is(EACCES) || error.is(EMFILE) || error.is(ENFILE);
        return isObstacle ? error : badReference();
    }
    Result<IdentifiedItem> const found = identify(folder.value());
    bool const isThere = found.hasValue() && found.value().identity == identity && !found.value().isRemoved;
    if (!isThere) return badReference();
    return folder;
}

Result<FileDescriptor> openNamed(FileDescriptor const& folder, std::string const& name) {
    FileDescriptor item(::openat(folder.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!item.isOpen()) return lastSystemError("open", name);
    return item;
}

Result<FileDescriptor> duplicateOf(FileDescriptor const& item) {
    FileDescriptor duplicate(::fcntl(item.number(), F_DUPFD_CLOEXEC, 0));
    if (!duplicate.isOpen()) return lastSystemError("fcntl");
    return duplicate;
}

Result<PlacedItem> placeOf(HeldItems& items, FSRef const& reference) {
    Result<ItemIdentity> const identity = identityOf(reference);
    if (!identity.hasValue()) return identity.problem();
    return withRoom(items, [&] { return items.find(identity.value()); });
}

} // namespace

Result<FSRef> referenceToPath(std::string_view path, LinkAtEnd linkAtEnd) {
    std::scoped_lock const lock(table().lock);
    HeldItems& items = table().items;
    std::string const bytes(path);
    std::size_t const hash = hashOf(bytes, linkAtEnd);
    // A held item is found by its status alone; any other one has to be opened at any rate.
    if (items.isLikelyHeldAt(hash)) {
        Result<IdentifiedItem> const seen = withRoom(items, [&] { return identifyAtPath(bytes, linkAtEnd); });
        if (!seen.hasValue()) return seen.problem();
        if (std::optional<FSRef> const held = referenceToHeld(table(), seen.value())) return *held;
    }
    items.releaseOneIfRemoved();
    Result<OpenedPath> opened = openWithItsPath(items, bytes, linkAtEnd);
    if (!opened.hasValue()) return opened.problem();
    items.rememberPath(hash);
    return holdItem(table(), opened.takeValue());
}

Result<FSRef> referenceInFolder(FSRef const& folder, std::string const& name) {
    std::scoped_lock const lock(table().lock);
    Result<ItemIdentity> const identity = identityOf(folder);
    if (!identity.hasValue()) return identity.problem();
    HeldItems& items = table().items;
    items.releaseOneIfRemoved();
    Result<FileDescriptor> const parent = openReferencedFolder(items, identity.value());
    if (!parent.hasValue()) return parent.problem();
    Result<FileDescriptor> item = withRoom(items, [&] { return openNamed(parent.value(), name); });
    if (!item.hasValue()) return item.problem();
    OpenedPath opened{.item = item.takeValue()};
    Result<std::string> known = systemsPath(opened.item);
    opened.isPathFollowed = known.hasValue();
    opened.path =
        known.hasValue() ? known.takeValue() : items.find(identity.value()).valueOr({}).path.append("/").append(name);
    return holdItem(table(), std::move(opened));
}

Result<OpenItem> openItemInFolder(FSRef const& folder, std::string const& name) {
    std::scoped_lock const lock(table().lock);
    Result<ItemIdentity> const identity = identityOf(folder);
    if (!identity.hasValue()) return identity.problem();
    HeldItems& items = table().items;
    Result<FileDescriptor> parent = openReferencedFolder(items, identity.value());
    if (!parent.hasValue()) return parent.problem();
    Result<FileDescriptor> item = withRoom(items, [&] { return openNamed(parent.value(), name); });
    if (!item.hasValue()) return item.problem();
    return OpenItem{.folder = parent.takeValue(), .item = item.takeValue(), .name = name};
}

Result<FSRef> referenceToFolderOf(OpenItem const& item) {
    if (item.name.empty()) return FSRef{};
    std::scoped_lock const lock(table().lock);
    HeldItems& items = table().items;
    items.releaseOneIfRemoved();
    Result<FileDescriptor> folder = withRoom(items, [&] { return duplicateOf(item.folder); });
    if (!folder.hasValue()) return folder.problem();
    OpenedPath opened{.item = folder.takeValue()};
    Result<std::string> known = systemsPath(opened.item);
    opened.isPathFollowed = known.hasValue();
    if (!known.hasValue()) known = pathOfFolder(opened.item);
    if (!known.hasValue()) return known.problem();
    opened.path = known.takeValue();
    return holdItem(table(), std::move(opened));
}

Result<ReferencedItem> itemOfReference(FSRef const& reference) {
    std::scoped_lock const lock(table().lock);
    Result<PlacedItem> found = placeOf(table().items, reference);
    if (!found.hasValue()) return found.problem();
    return ReferencedItem{std::move(found.value().path), found.value().isFolder};
}

Result<OpenItem> openItemOfReference(FSRef const& reference) {
    std::scoped_lock const lock(table().lock);
    HeldItems& items = table().items;
    Result<PlacedItem> const place = placeOf(items, reference);
    if (!place.hasValue()) return place.problem();
    std::string const& path = place.value().path;
    Result<OpenItem> item = withRoom(items, [&] { return openItemAtPath(path, LinkAtEnd::IsNotFollowed); });
    if (!item.hasValue()) return item;
    Result<IdentifiedItem> const found = identify(item.value().item);
    if (!found.hasValue()) return found.problem();
    if (reference == referenceTo(found.value().identity)) return item;
    return badReference();
}

Result<void> exchangeReferences(FSRef const& first, FSRef const& second) {
    std::scoped_lock const lock(table().lock);
    Result<ItemIdentity> const one = identityOf(first);
    if (!one.hasValue()) return one.problem();
    Result<ItemIdentity> const other = identityOf(second);
    if (!other.hasValue()) return other.problem();
    table().exchanged.exchange(one.value(), other.value());
    return {};
}

void followMovedItem(FileDescriptor const& folder, std::string const& name) {
    Result<IdentifiedItem> const found = identify(folder, name);
    if (!found.hasValue()) return;
    std::scoped_lock const lock(table().lock);
    HeldItems& items = table().items;
    if (!items.isHeld(found.value().identity)) return;
    Result<FileDescriptor> item = openNamed(folder, name);
    if (!item.hasValue()) return;
    Result<IdentifiedItem> const opened = identify(item.value());
    Result<std::string> path = systemsPath(item.value());
    // Of a path that is too long the older one tells as much; another item may have taken the name meanwhile.
    bool const isFound = opened.hasValue() && opened.value().identity == found.value().identity && path.hasValue();
    if (isFound) static_cast<void>(items.hold({opened.value(), item.takeValue(), path.takeValue(), true}));
}

void releaseRemovedItems() {
    std::scoped_lock const lock(table().lock);
    table().items.releaseRemoved();
}

PassingReferences::PassingReferences() : m_alreadyPassing(passingReferences().size()) { ++passingDepth(); }

PassingReferences::~PassingReferences() {
    --passingDepth();
    std::vector<ItemIdentity>& passing = passingReferences();
    std::scoped_lock const lock(table().lock);
    for (; passing.size() > m_alreadyPassing; passing.pop_back())
        table().dropPassing(passing.back());
}

} // namespace mac
