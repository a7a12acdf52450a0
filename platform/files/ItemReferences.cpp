#include "platform/files/ItemReferences.h"
#include "platform/files/HeldItems.h"
#include <cerrno>
#include <cstring>
#include <memory>
#include <mutex>

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
    std::optional<IdentifiedItem> const found = item ? identify(item->item) : std::nullopt;
    if (!found) return std::nullopt;
    items.hold(found->identity, std::move(item->item), std::string(path));
    return referenceTo(found->identity);
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
