#include "platform/files/ItemReferences.h"
#include "platform/files/HeldItems.h"
#include "platform/system/OpenItems.h"
#include "platform/system/SymbolicLinks.h"
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

// What a reference's bytes begin with; the rest is zero.
struct Contents {
    std::array<char, 8> mark{'F', 'S', 'R', 'e', 'f', ' ', '1', '\0'};
    ItemIdentity identity{};
};
static_assert(sizeof(Contents) <= sizeof(FSRef) && std::is_trivially_copyable_v<Contents>);

struct Table {
    std::mutex lock;
    HeldItems items;
};

// Never destroyed: references may be asked for until the program's last instruction.
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

std::optional<ItemIdentity> identityOf(FSRef const& reference) {
    Contents contents;
    std::memcpy(&contents, reference.hidden.data(), sizeof(contents));
    bool const isReference = reference == referenceTo(contents.identity);
    return isReference ? std::optional(contents.identity) : std::nullopt;
}

// Asks again, with room made, where the process had no descriptor left.
template <class Question>
auto withRoom(HeldItems& items, Question const& question) {
    for (;;) {
        errno = 0;
        auto answer = question();
        if (answer || (errno != EMFILE && errno != ENFILE) || items.heldCount() == 0) return answer;
        items.releaseHalf();
    }
}

// A relative one starts at the current folder, however long that one's path is.
std::string absolutePath(std::string_view path) {
    if (path.starts_with('/')) return std::string(path);
    std::unique_ptr<char, decltype(&std::free)> const folder(::getcwd(nullptr, 0), &std::free);
    return (folder ? std::string(folder.get()) : std::string()).append("/").append(path);
}

// Where the item is, as far as a path can tell: the system's own, or that which led there without its links.
std::string placeOf(OpenItem const& item, std::string_view path, bool followsLinks) {
    if (std::optional<std::string> known = systemsPath(item.item)) return *known;
    std::string const absolute = absolutePath(path);
    SplitPath const parts = splitPath(absolute);
    bool const isLinkItself = !followsLinks && parts.name == item.name;
    return isLinkItself ? resolvedPath(parts.folder) + "/" + parts.name : resolvedPath(absolute);
}

std::optional<FSRef> holdItem(HeldItems& items, FileDescriptor item, std::string path) {
    std::optional<IdentifiedItem> const found = identify(item);
    if (!found) return std::nullopt;
    items.hold(found->identity, std::move(item), std::move(path));
    return referenceTo(found->identity);
}

std::optional<FileDescriptor> opened(FileDescriptor descriptor) {
    return descriptor.isOpen() ? std::optional(std::move(descriptor)) : std::nullopt;
}

struct FoundItem {
    OpenItem item;
    std::string path;
    bool isFolder;
};

std::optional<FoundItem> findItem(FSRef const& reference) {
    std::optional<ItemIdentity> const identity = identityOf(reference);
    if (!identity) return std::nullopt;
    std::scoped_lock const lock(table().lock);
    HeldItems& items = table().items;
    std::optional<std::string> path = withRoom(items, [&] { return items.pathOf(*identity); });
    if (!path) return std::nullopt;
    std::optional<OpenItem> item = withRoom(items, [&] { return openItemAtPath(*path, false); });
    std::optional<IdentifiedItem> const found = item ? identify(item->item) : std::nullopt;
    if (!found || !(found->identity == *identity)) return std::nullopt;
    return FoundItem{std::move(*item), std::move(*path), found->isFolder};
}

} // namespace

std::optional<FSRef> referenceToPath(std::string_view path, bool followsLinks) {
    std::scoped_lock const lock(table().lock);
    HeldItems& items = table().items;
    items.releaseRemoved();
    std::optional<OpenItem> item = withRoom(items, [&] { return openItemAtPath(path, followsLinks); });
    if (!item) return std::nullopt;
    std::string place = placeOf(*item, path, followsLinks);
    return holdItem(items, std::move(item->item), std::move(place));
}

std::optional<FSRef> referenceInFolder(FSRef const& folder, std::string const& name) {
    std::optional<ItemIdentity> const identity = identityOf(folder);
    if (!identity) {
        errno = ESTALE;
        return std::nullopt;
    }
    std::scoped_lock const lock(table().lock);
    HeldItems& items = table().items;
    items.releaseRemoved();
    std::optional<FileDescriptor> const parent = withRoom(items, [&] { return opened(items.openFolder(*identity)); });
    // What is in the way says so itself; that there is nothing any more, or something else, is the reference's fault.
    bool const isInTheWay = errno == ENOTDIR || errno == EACCES || errno == EMFILE || errno == ENFILE;
    std::optional<IdentifiedItem> const found = parent ? identify(*parent) : std::nullopt;
    if (!found || !(found->identity == *identity)) {
        if (parent || !isInTheWay) errno = ESTALE;
        return std::nullopt;
    }
    std::optional<FileDescriptor> item = withRoom(items, [&] {
        return opened(FileDescriptor(::openat(parent->number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)));
    });
    if (!item) return std::nullopt;
    std::optional<std::string> place = systemsPath(*item);
    if (!place) place = items.pathOf(*identity).value_or("") + "/" + name;
    return holdItem(items, std::move(*item), std::move(*place));
}

std::optional<FSRef> referenceToFolderOf(OpenItem const& item) {
    if (item.name.empty()) return FSRef{};
    std::scoped_lock const lock(table().lock);
    HeldItems& items = table().items;
    items.releaseRemoved();
    std::optional<FileDescriptor> folder =
        withRoom(items, [&] { return opened(FileDescriptor(::fcntl(item.folder.number(), F_DUPFD_CLOEXEC, 0))); });
    std::optional<std::string> place = folder ? pathOfFolder(*folder) : std::nullopt;
    if (!place) return std::nullopt;
    return holdItem(items, std::move(*folder), std::move(*place));
}

std::optional<ReferencedItem> itemOfReference(FSRef const& reference) {
    std::optional<FoundItem> found = findItem(reference);
    if (!found) return std::nullopt;
    return ReferencedItem{std::move(found->path), found->isFolder};
}

std::optional<OpenItem> openItemOfReference(FSRef const& reference) {
    std::optional<FoundItem> found = findItem(reference);
    if (!found) return std::nullopt;
    return std::move(found->item);
}

void releaseRemovedItems() {
    std::scoped_lock const lock(table().lock);
    table().items.releaseRemoved();
}

} // namespace mac
