#pragma once

#include "platform/foundation/objects/ServiceTypes.h"
#include <cstddef>
#include <optional>
#include <span>

namespace mac {

// The bytes of one resource in a resource fork, by its type and number; nullopt if there is no such resource, and if
// the fork contradicts itself on the way to it. The bytes lie in the fork's. For implementations; any thread.
std::optional<std::span<std::byte const>> resourceInFork(std::span<std::byte const> fork, OSType type,
                                                         std::int16_t number);

} // namespace mac
