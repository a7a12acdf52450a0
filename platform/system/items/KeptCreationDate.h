#pragma once

#include "platform/system/Result.h"
#include "platform/system/items/OpenItem.h"
#include <cstdint>

namespace mac {

// The creation date that a program has set for an item. File systems cannot store one, so it is kept in an attribute,
// which travels with the item. Any thread.

// Its 8 bytes are the date, the most significant first.
inline constexpr char CreateDateAttribute[] = "com.apple.FSCatalogInfo.createDate";

// A moment in units of 1/65536 second since the beginning of 1904 in UTC.
struct KeptCreationDate {
    std::uint64_t units{0};

    bool operator==(KeptCreationDate const&) const = default;
};

// ENODATA if no date is kept.
Result<KeptCreationDate> keptCreationDate(OpenItem const& item);
Result<void> keepCreationDate(OpenItem const& item, KeptCreationDate date);

} // namespace mac
