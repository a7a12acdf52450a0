#pragma once

#include "platform/desktop/places/Places.h"
#include "platform/preferences/NativeStores.h"
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// The array of the Finder's toolbar items, kept as the file browser's places (platform/desktop/places/Places.h). Places
// that are files of this computer are items: dictionaries of
//   "file-data"  a dictionary of "_CFURLString", the file's URL, and "_CFURLStringType", 15
//   "label"      the place's name for people, if it has one
//   "store"      the list that it stands in: "gtk" or "kde"
// Other items have no native form: those with other keys, or with a plain path (type 0). Items of equal contents are
// the same item. Main thread.
class ToolbarItemsStore {
public:
    // The row of nativeStores().
    static NativeItems readItems(NSArray const& kept);
    static NativeWriting writeItems(NSArray const& items);

    // The places' items, new objects at each call, and behind them those kept elsewhere.
    NativeItems read(NSArray const& kept);
    // Removes the places that the last read answered and that are not in the array, and adds those that it has more, at
    // the end of the list that the item names, else of this desktop's. A place that was removed by this object before
    // comes back as it was. The order of the array is not kept.
    NativeWriting write(NSArray const& items);

private:
    // What makes two items the same.
    struct Item {
        std::string url{};
        std::string label{};
        std::string store{};

        auto operator<=>(Item const&) const = default;
    };

    static std::optional<Item> itemOf(Place const& place);
    // nullopt for an item without native form.
    static std::optional<Item> itemOf(id const& dictionary);
    static NSDictionary dictionaryOf(Item const& item);
    static Place placeOf(Item const& item);

    // The change that makes the known places those of the items.
    PlacesChange changeTo(std::vector<Item> items);
    std::vector<RemovedPlace> takeRemoved(std::vector<Item>& missing);
    // Remembers what was removed, and of the places on the disk those that are meant.
    void remember(PlacesOutcome const& outcome, std::vector<Item> meant);

    // The places that the last read answered, or the last writing left.
    std::vector<Place> m_known{};
    // In the order of their removal.
    std::vector<RemovedPlace> m_removed{};
};

} // namespace mac
