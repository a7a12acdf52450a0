#include "platform/preferences/NativeStores.h"

namespace mac {

std::span<NativeStore const> nativeStores() { return {}; }

} // namespace mac
