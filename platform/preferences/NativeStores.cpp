#include "platform/preferences/NativeStores.h"
#include "platform/preferences/LoginItemsStore.h"
#include <array>

namespace mac {

namespace {

constexpr auto Stores = std::to_array<NativeStore>({
    {.domain = "loginwindow",
     .key = "AutoLaunchedApplicationDictionary",
     .read = readLoginItems,
     .write = writeLoginItems},
});

} // namespace

std::span<NativeStore const> nativeStores() { return Stores; }

} // namespace mac
