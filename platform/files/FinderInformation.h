#pragma once

#include "platform/foundation/MacErrors.h"
#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace mac {

// What the Finder keeps with a file or folder: 32 bytes in the order in which Mac OS X stores them, numbers with the
// most significant byte first. A value.
struct FinderInformation {
    std::array<std::byte, 32> bytes{};

    // Of a file; of a folder the bytes mean something else.
    OSType fileType() const;
    OSType fileCreator() const;
    // kIsAlias and the others below.
    std::uint16_t finderFlags() const;
    void setFinderFlags(std::uint16_t flags);
    // 0, none, to 7.
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

// For implementations. The item's own, a link at the end of the path (bytes) not followed; all zero where there is
// none, as for what is no file and no folder. Nothing where it cannot be read; errno says why. Bytes of another size
// than 32, as other programs may leave them, are none.
std::optional<FinderInformation> readFinderInformation(std::string const& path);
// False where it cannot be written; errno says why. All zero leaves nothing behind.
bool writeFinderInformation(std::string const& path, FinderInformation const& information);
// Of stored bytes; nothing for another size.
std::optional<FinderInformation> finderInformationFromBytes(std::span<std::byte const> bytes);

} // namespace mac
