#include "platform/preferences/NativeStores.h"
#include "platform/preferences/LoginItemsStore.h"
#include "platform/preferences/ToolbarItemsStore.h"
#include <array>

namespace mac {

namespace {

constexpr auto Stores = std::to_array<NativeStore>({
    {.domain = "com.apple.finder",
     .key = "FXToolbarItems",
     .read = ToolbarItemsStore::readItems,
     .write = ToolbarItemsStore::writeItems},
    {.domain = "loginwindow",
     .key = "AutoLaunchedApplicationDictionary",
     .read = readLoginItems,
     .write = writeLoginItems},
});

} // namespace

std::span<NativeStore const> nativeStores() { return Stores; }

} // namespace mac
