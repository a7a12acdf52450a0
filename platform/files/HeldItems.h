#pragma once

#include "platform/system/items/ItemIdentity.h"
#include "platform/system/items/OpenItem.h"
#include <list>
#include <unordered_map>

namespace mac {

// The items that references were made to: the last MostHeld are held open; of the MostRemembered before them the last
// known path is kept. Paths are bytes. One thread at a time.
class HeldItems {
public:
    static constexpr std::size_t MostHeld = 256;
    static constexpr std::size_t MostRemembered = 65536;

    // Holds the item as the most recent one; `path` is the path that led to it.
    void hold(ItemIdentity const& identity, FileDescriptor item, std::string path);
    // The path where the item is now.
    Result<std::string> pathOf(ItemIdentity const& identity) const;
    // Opens a folder with O_PATH. A folder that is no longer held is opened at its last known path, so that another
    // item may be opened instead.
    Result<FileDescriptor> openFolder(ItemIdentity const& identity) const;
    // Closes the items that have been removed.
    void releaseRemoved();
    // Closes the older half, for a process that can open no more files.
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
    // The most recent item first.
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
