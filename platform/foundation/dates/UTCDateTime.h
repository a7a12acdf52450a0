#pragma once

#include "platform/foundation/objects/ServiceTypes.h"

namespace mac {

// A moment in 1/65536 of a second since the beginning of 1904 in UTC, whose 48 bits of seconds lie in two fields.
struct UTCDateTime {
    std::uint16_t highSeconds{0};
    std::uint32_t lowSeconds{0};
    std::uint16_t fraction{0};

    constexpr bool operator==(UTCDateTime const&) const = default;
};

// The record as one number of 1/65536 seconds since the beginning of 1904, and back.
constexpr std::uint64_t unitsOf(UTCDateTime const& date) {
    return std::uint64_t{date.highSeconds} << 48 | std::uint64_t{date.lowSeconds} << 16 | date.fraction;
}
constexpr UTCDateTime utcDateTimeOf(std::uint64_t units) {
    return {static_cast<std::uint16_t>(units >> 48), static_cast<std::uint32_t>(units >> 16),
            static_cast<std::uint16_t>(units)};
}

// Seconds since the beginning of 2001 in UTC.
using CFAbsoluteTime = double;

// Converts a record to seconds. paramErr for a null pointer. Any thread.
OSStatus UCConvertUTCDateTimeToCFAbsoluteTime(UTCDateTime const* utcDate, CFAbsoluteTime* time);
// Converts seconds to a record, to the nearest 1/65536 of a second. paramErr for a null pointer, and for a moment that
// the record cannot hold. Any thread.
OSStatus UCConvertCFAbsoluteTimeToUTCDateTime(CFAbsoluteTime time, UTCDateTime* utcDate);

} // namespace mac
