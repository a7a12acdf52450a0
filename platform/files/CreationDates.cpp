#include "platform/files/CreationDates.h"
#include "platform/files/CatalogFields.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/foundation/FileAttributes.h"
#include "platform/system/BigEndian.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/ItemIdentity.h"
#include <array>
#include <cerrno>

namespace mac {

namespace {

constexpr std::uint32_t Start = 0;

using DateBytes = std::array<std::byte, 8>;

DateBytes bytesOf(UTCDateTime const& date) {
    std::uint64_t const whole =
        std::uint64_t{date.highSeconds} << 48 | std::uint64_t{date.lowSeconds} << 16 | date.fraction;
    DateBytes bytes{};
    for (std::size_t index = 0; index < bytes.size(); ++index)
        bytes[index] = static_cast<std::byte>(whole >> (8 * (bytes.size() - 1 - index)));
    return bytes;
}

UTCDateTime dateOf(DateBytes const& bytes) {
    auto const whole = bigEndian<std::uint64_t>(bytes, 0);
    return {static_cast<std::uint16_t>(whole >> 48), static_cast<std::uint32_t>(whole >> 16),
            static_cast<std::uint16_t>(whole)};
}

// The attribute may be in the file beside the item, so its folder and name are needed.
std::optional<OpenItem> inItsFolder(FileDescriptor const& item) {
    std::optional<std::string> const path = systemsPath(item);
    std::optional<OpenItem> found = path ? openItemAtPath(*path, false) : std::nullopt;
    std::optional<IdentifiedItem> const meant = found ? identify(item) : std::nullopt;
    std::optional<IdentifiedItem> const there = meant ? identify(found->item) : std::nullopt;
    if (!there || !(there->identity == meant->identity)) return std::nullopt;
    return found;
}

// In seconds since 2001.
std::optional<double> keptTime(FileDescriptor const& item) {
    int const before = errno;
    std::optional<OpenItem> const found = inItsFolder(item);
    std::optional<UTCDateTime> const date = found ? keptCreationDate(*found) : std::nullopt;
    CFAbsoluteTime time = 0;
    bool const isKnown = date && UCConvertUTCDateTimeToCFAbsoluteTime(&*date, &time) == noErr;
    errno = before;
    return isKnown ? std::optional(time) : std::nullopt;
}

} // namespace

void useCreationDatesInFileManager() { readCreationDatesBy(&keptTime); }

std::optional<UTCDateTime> keptCreationDate(OpenItem const& item) {
    DateBytes bytes{};
    std::ptrdiff_t const length =
        getxattr(attributePath(item).c_str(), CreateDateAttribute, bytes.data(), bytes.size(), Start, XATTR_NOFOLLOW);
    if (length != static_cast<std::ptrdiff_t>(bytes.size())) return std::nullopt;
    return dateOf(bytes);
}

bool keepCreationDate(OpenItem const& item, UTCDateTime const& date) {
    DateBytes const bytes = bytesOf(date);
    return setxattr(attributePath(item).c_str(), CreateDateAttribute, bytes.data(), bytes.size(), Start,
                    XATTR_NOFOLLOW) == 0;
}

} // namespace mac
