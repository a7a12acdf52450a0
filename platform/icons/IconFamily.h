#pragma once

#include "platform/foundation/objects/ServiceTypes.h"
#include "platform/icons/IconRefs.h"
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace mac {

// A piece of an icon: a picture of one size and depth, or a mask.
struct IconPart {
    OSType type{};
    std::vector<std::byte> bytes{};

    bool operator==(IconPart const&) const = default;
};

// The pieces of an icon, in the order of its data. Nothing for null, and for an icon without data. Any thread.
std::optional<std::vector<IconPart>> partsOfIcon(IconRef iconRef);

// For implementations: of the contents of a file of type 'icns'; nothing for what contradicts itself. Of pieces of one
// type the first counts; the table of contents is not a piece.
std::optional<std::vector<IconPart>> readIconFamily(std::span<std::byte const> bytes);
// For implementations: the contents of a file of type 'icns' with these pieces. REQUIRES: all are together below 4 GiB.
std::vector<std::byte> contentsOfIconFamily(std::span<IconPart const> parts);

} // namespace mac
