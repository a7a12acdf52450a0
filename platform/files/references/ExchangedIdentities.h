#pragma once

#include "platform/system/items/ItemIdentity.h"
#include <unordered_map>

namespace mac {

// Which item a reference leads to, and by which identity an item is referred to: its own, unless it has exchanged its
// contents with others. One thread at a time.
class ExchangedIdentities {
public:
    ItemIdentity referredTo(ItemIdentity const& item) const { return found(m_referredTo, item); }
    ItemIdentity itemOf(ItemIdentity const& referredTo) const { return found(m_items, referredTo); }

    // From now on each is referred to as the other was.
    void exchange(ItemIdentity const& first, ItemIdentity const& second) {
        ItemIdentity const ofFirst = referredTo(first);
        ItemIdentity const ofSecond = referredTo(second);
        set(first, ofSecond);
        set(second, ofFirst);
    }

private:
    using Map = std::unordered_map<ItemIdentity, ItemIdentity, ItemIdentityHash>;

    static ItemIdentity found(Map const& map, ItemIdentity const& key) {
        auto const place = map.find(key);
        return place == map.end() ? key : place->second;
    }
    void set(ItemIdentity const& item, ItemIdentity const& referredTo) {
        m_referredTo.insert_or_assign(item, referredTo);
        m_items.insert_or_assign(referredTo, item);
        if (!(item == referredTo)) return;
        m_referredTo.erase(item);
        m_items.erase(item);
    }

    Map m_referredTo{};
    Map m_items{};
};

} // namespace mac
