#include "platform/files/ItemReferences.h"
#include "platform/files/HeldItems.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/FolderPlace.h"
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <unistd.h>

namespace mac {

namespace {

// The first bytes of a reference; the others are zero.
struct Contents {
    std::array<char, 8> mark{'F', 'S', 'R', 'e', 'f', ' ', '1', '\0'};
    ItemIdentity identity{};
};
static_assert(sizeof(Contents) <= sizeof(FSRef) && std::is_trivially_copyable_v<Contents>);

struct Table {
    std::mutex lock;
    HeldItems items;
};

// Never destroyed, since references may be used until the program's last instruction.
Table& table() {
    static Table& shared = *std::make_unique<Table>().release();
    return shared;
}

FSRef referenceTo(ItemIdentity const& identity) {
    Contents const contents{.identity = identity};
    FSRef reference{};
    std::memcpy(reference.hidden.data(), &contents, sizeof(contents));
    return reference;
}

SystemError badReference() { return {.code = ESTALE, .operation = "find reference"}; }

// ESTALE for bytes that are no reference.
Result<ItemIdentity> identityOf(FSRef const& reference) {
    Contents contents;
    std::memcpy(&contents, reference.hidden.data(), sizeof(contents));
    if (reference != referenceTo(contents.identity)) return badReference();
    return contents.identity;
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

// The item's path, as far as it can be known: the system's, or the one that led to the item without its links.
std::string pathOf(OpenItem const& item, std::string_view path, LinkAtEnd linkAtEnd) {
    Result<std::string> known = systemsPath(item.item);
    if (known.hasValue()) return known.takeValue();
    std::string const absolute = absolutePath(path);
    SplitPath const parts = splitPath(absolute);
    bool const isLinkItself = linkAtEnd == LinkAtEnd::IsNotFollowed && parts.name == item.name;
    return isLinkItself ? BytePath(resolvedPath(parts.folder)).joined(parts.name) : resolvedPath(absolute);
}

Result<FSRef> holdItem(HeldItems& items, FileDescriptor item, std::string path) {
    Result<IdentifiedItem> const found = identify(item);
    if (!found.hasValue()) return found.problem();
    items.hold(found.value().identity, std::move(item), std::move(path));
    return referenceTo(found.value().identity);
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
    if (!found.hasValue() || !(found.value().identity == identity)) return badReference();
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

struct FoundItem {
    OpenItem item;
    std::string path;
    bool isFolder;
};

Result<FoundItem> findItem(FSRef const& reference) {
    Result<ItemIdentity> const identity = identityOf(reference);
    if (!identity.hasValue()) return identity.problem();
    std::scoped_lock const lock(table().lock);
    HeldItems& items = table().items;
    Result<std::string> path = withRoom(items, [&] { return items.pathOf(identity.value()); });
    if (!path.hasValue()) return path.problem();
    Result<OpenItem> item = withRoom(items, [&] { return openItemAtPath(path.value(), LinkAtEnd::IsNotFollowed); });
    if (!item.hasValue()) return item.problem();
    Result<IdentifiedItem> const found = identify(item.value().item);
    if (!found.hasValue()) return found.problem();
    if (!(found.value().identity == identity.value())) return badReference();
    return FoundItem{item.takeValue(), path.takeValue(), found.value().isFolder};
}

} // namespace

Result<FSRef> referenceToPath(std::string_view path, LinkAtEnd linkAtEnd) {
    std::scoped_lock const lock(table().lock);
    HeldItems& items = table().items;
    items.releaseRemoved();
    Result<OpenItem> item = withRoom(items, [&] { return openItemAtPath(path, linkAtEnd); });
    if (!item.hasValue()) return item.problem();
    std::string known = pathOf(item.value(), path, linkAtEnd);
    return holdItem(items, std::move(item.value().item), std::move(known));
}

Result<FSRef> referenceInFolder(FSRef const& folder, std::string const& name) {
    Result<ItemIdentity> const identity = identityOf(folder);
    if (!identity.hasValue()) return identity.problem();
    std::scoped_lock const lock(table().lock);
    HeldItems& items = table().items;
    items.releaseRemoved();
    Result<FileDescriptor> const parent = openReferencedFolder(items, identity.value());
    if (!parent.hasValue()) return parent.problem();
    Result<FileDescriptor> item = withRoom(items, [&] { return openNamed(parent.value(), name); });
    if (!item.hasValue()) return item.problem();
    Result<std::string> path = systemsPath(item.value());
    if (!path.hasValue()) path = items.pathOf(identity.value()).valueOr("") + "/" + name;
    return holdItem(items, item.takeValue(), path.takeValue());
}

Result<FSRef> referenceToFolderOf(OpenItem const& item) {
    if (item.name.empty()) return FSRef{};
    std::scoped_lock const lock(table().lock);
    HeldItems& items = table().items;
    items.releaseRemoved();
    Result<FileDescriptor> folder = withRoom(items, [&] { return duplicateOf(item.folder); });
    if (!folder.hasValue()) return folder.problem();
    Result<std::string> path = pathOfFolder(folder.value());
    if (!path.hasValue()) return path.problem();
    return holdItem(items, folder.takeValue(), path.takeValue());
}

Result<ReferencedItem> itemOfReference(FSRef const& reference) {
    Result<FoundItem> found = findItem(reference);
    if (!found.hasValue()) return found.problem();
    return ReferencedItem{std::move(found.value().path), found.value().isFolder};
}

Result<OpenItem> openItemOfReference(FSRef const& reference) {
    Result<FoundItem> found = findItem(reference);
    if (!found.hasValue()) return found.problem();
    return std::move(found.value().item);
}

void releaseRemovedItems() {
    std::scoped_lock const lock(table().lock);
    table().items.releaseRemoved();
}

} // namespace mac
