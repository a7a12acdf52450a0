#pragma once

#include "platform/foundation/objects/ServiceTypes.h"
#include "platform/system/Result.h"
#include <array>
#include <cstddef>
#include <optional>
#include <span>

namespace mac {

struct OpenItem;

// The Finder's metadata of a file or folder: 32 bytes in the order in which Mac OS X stores them, numbers with the most
// significant byte first. A value.
struct FinderInformation {
    std::array<std::byte, 32> bytes{};

    // REQUIRES: information of a file; a folder's bytes mean something else.
    OSType fileType() const;
    OSType fileCreator() const;
    // The bits kIsAlias and so on, below.
    std::uint16_t finderFlags() const;
    void setFinderFlags(std::uint16_t flags);
    // 1 to 7; 0 if the item has no label.
    std::int16_t labelIndex() const;

    bool operator==(FinderInformation const&) const = default;
};

// Bits of the Finder flags.
inline constexpr std::uint16_t kColor = 0x000E;
inline constexpr std::uint16_t kExtensionHidden = 0x0010;
inline constexpr std::uint16_t kIsOnDesk = 0x0100;
inline constexpr std::uint16_t kHasCustomIcon = 0x0400;
inline constexpr std::uint16_t kHasBundle = 0x2000;
inline constexpr std::uint16_t kIsInvisible = 0x4000;
inline constexpr std::uint16_t kIsAlias = 0x8000;

// For implementations. All zero for an item that has no Finder information or cannot have any, and for stored bytes of
// a size other than 32, which other programs may leave.
Result<FinderInformation> readFinderInformation(OpenItem const& item);
// Writing all zero removes the attribute.
Result<void> writeFinderInformation(OpenItem const& item, FinderInformation const& information);
// nullopt for a size other than 32 bytes.
std::optional<FinderInformation> finderInformationFromBytes(std::span<std::byte const> bytes);

} // namespace mac
