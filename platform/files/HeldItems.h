#pragma once

#include "platform/system/items/ItemIdentity.h"
#include "platform/system/items/OpenItem.h"
#include <list>
#include <unordered_map>

namespace mac {

// The items that references were made to: the last ones held open, of those before them the place where they were. For
// implementations; one thread at a time.
class HeldItems {
public:
    static constexpr std::size_t MostHeld = 256;
    static constexpr std::size_t MostRemembered = 65536;

    // Makes it the last one; the path is the one that led to it.
    void hold(ItemIdentity const& identity, FileDescriptor item, std::string path);
    // Where it is now.
    std::optional<std::string> pathOf(ItemIdentity const& identity) const;
    // A folder, to look into, by itself where it is held and else by where it is; what is opened may be another item
    // then.
    FileDescriptor openFolder(ItemIdentity const& identity) const;
    // Lets the items go that are on no volume any more.
    void releaseRemoved();
    // Lets the older half go, when the process has no descriptor left.
    void releaseHalf();

    std::size_t heldCount() const { return m_held.size(); }

private:
    struct Held {
        ItemIdentity identity;
        FileDescriptor item;
        std::string path;
    };
    struct Remembered {
        ItemIdentity identity;
        std::string path;
    };
    // The last one first.
    using HeldList = std::list<Held>;
    using RememberedList = std::list<Remembered>;

    void letGo(HeldList::iterator held);
    void remember(ItemIdentity const& identity, std::string path);
    void forget(ItemIdentity const& identity);

    HeldList m_held{};
    RememberedList m_remembered{};
    std::unordered_map<ItemIdentity, HeldList::iterator, ItemIdentityHash> m_heldByIdentity{};
    std::unordered_map<ItemIdentity, RememberedList::iterator, ItemIdentityHash> m_rememberedByIdentity{};
};

} // namespace mac
