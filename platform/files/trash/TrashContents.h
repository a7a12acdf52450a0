#pragma once

#include "platform/files/trash/TrashPlaces.h"
#include <optional>
#include <string>
#include <vector>

// What lies in one trash. Any thread.

namespace mac {

// An AppleDouble sidecar that came with an item, as it was when the trash was listed.
struct TrashedSidecar {
    std::string name{};
    ItemIdentity identity{};
};

struct ListedItem {
    TrashedItem item{};
    // Not listed as an item of its own.
    std::optional<TrashedSidecar> sidecar{};
};

struct ListedTrash {
    // Sorted by the bytes of their names.
    std::vector<ListedItem> items{};
    // Why items that are there could not be looked at; one problem for each.
    std::vector<SystemError> problems{};
};

Result<ListedTrash> itemsInTrash(TrashPlace const& trash);

} // namespace mac
