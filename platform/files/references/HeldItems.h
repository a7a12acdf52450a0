#pragma once

#include "platform/files/references/LastingMark.h"
#include "platform/system/items/ItemIdentity.h"
#include "platform/system/items/OpenItem.h"
#include <array>
#include <cstddef>
#include <list>
#include <optional>
#include <unordered_map>

namespace mac {

// An item that references lead to, as the system describes it.
struct ItemToHold {
    IdentifiedItem identified{};
    FileDescriptor item{};
    // The path that led to it.
    std::string path{};
    // The system tells the path of the open item, wherever that is moved; it does not tell paths that are too long.
    bool isPathFollowed{false};
};

// Where an item is now.
struct PlacedItem {
    std::string path{};
    bool isFolder{false};
};

// The items that references were made to: the last MostHeld are held open; of the MostRemembered before them the last
// known path is kept. Paths are bytes. One thread at a time.
class HeldItems {
public:
    static constexpr std::size_t MostHeld = 256;
    static constexpr std::size_t MostRemembered = 65536;

    enum class Holding { New, ReferredToBefore };
    // Holds the item as the most recent one.
    Holding hold(ItemToHold item);
    // Makes an item that is held already the most recent one. False if it is not held, and if its path has to be found
    // out anew because the open item may not tell it.
    bool holdAgain(IdentifiedItem const& item);
    bool isHeld(ItemIdentity const& identity) const { return m_heldByIdentity.contains(identity); }
    // Whether a path was remembered as one of a held item: a hint, for the cheaper order of system calls.
    bool isLikelyHeldAt(std::size_t pathHash) const {
        return m_recentPaths[pathHash % m_recentPaths.size()] == pathHash;
    }
    void rememberPath(std::size_t pathHash) { m_recentPaths[pathHash % m_recentPaths.size()] = pathHash; }
    // Where the item is now; ESTALE if it was never held or is not known any more.
    Result<PlacedItem> find(ItemIdentity const& identity) const;
    // Opens a folder with O_PATH. A folder that is no longer held is opened at its last known path, so that another
    // item may be opened instead.
    Result<FileDescriptor> openFolder(ItemIdentity const& identity) const;
    // Closes the item and forgets it.
    void drop(ItemIdentity const& identity);
    // Closes the items that have been removed.
    void releaseRemoved();
    // Looks at one item, each time at another one, and closes it if it has been removed.
    void releaseOneIfRemoved();
    // Closes the older half, for a process that can open no more files.
    void releaseHalf();

    std::size_t heldCount() const { return m_held.size(); }

private:
    // Where an item was that is no longer held.
    struct Remembered {
        ItemIdentity identity{};
        std::string path{};
        // The path that led to it, if that is another one.
        std::string otherPath{};
        // For an item without birth time.
        std::optional<LastingMark> mark{};
    };
    // The most recent item first.
    using HeldList = std::list<ItemToHold>;
    using RememberedList = std::list<Remembered>;

    HeldList::iterator release(HeldList::iterator held);
    void letGo(HeldList::iterator held);
    void remember(Remembered item);
    void forget(ItemIdentity const& identity);

    HeldList m_held{};
    // The hashes of paths that led to held items, each in the place that its value gives.
    std::array<std::size_t, 4 * MostHeld> m_recentPaths{};
    // The item that releaseOneIfRemoved looks at next.
    HeldList::iterator m_nextLook{m_held.end()};
    RememberedList m_remembered{};
    std::unordered_map<ItemIdentity, HeldList::iterator, ItemIdentityHash> m_heldByIdentity{};
    std::unordered_map<ItemIdentity, RememberedList::iterator, ItemIdentityHash> m_rememberedByIdentity{};
};

} // namespace mac
