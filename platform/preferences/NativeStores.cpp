#include "platform/preferences/NativeStores.h"
#include "platform/preferences/ToolbarItemsStore.h"
#include <array>

namespace mac {

namespace {

constexpr std::array Stores{
    NativeStore{"com.apple.finder", "FXToolbarItems", ToolbarItemsStore::readItems, ToolbarItemsStore::writeItems},
};

} // namespace

std::span<NativeStore const> nativeStores() { return Stores; }

} // namespace mac
