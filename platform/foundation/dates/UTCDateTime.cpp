#include "platform/foundation/dates/UTCDateTime.h"
#include <cmath>

namespace mac {

namespace {

constexpr double SecondsFrom1904To2001 = 3'061'152'000;
constexpr double FractionsOfASecond = 65536;
constexpr int SecondsBits = 48;

} // namespace

OSStatus UCConvertUTCDateTimeToCFAbsoluteTime(UTCDateTime const* utcDate, CFAbsoluteTime* time) {
    if (!utcDate || !time) return paramErr;
    std::uint64_t const seconds = std::uint64_t{utcDate->highSeconds} << 32 | utcDate->lowSeconds;
    *time = static_cast<double>(seconds) - SecondsFrom1904To2001 + utcDate->fraction / FractionsOfASecond;
    return noErr;
}

OSStatus UCConvertCFAbsoluteTimeToUTCDateTime(CFAbsoluteTime time, UTCDateTime* utcDate) {
    if (!utcDate) return paramErr;
    // Whole seconds apart, so that the sum loses nothing of the fraction.
    double seconds = std::floor(time);
    double fraction = std::round((time - seconds) * FractionsOfASecond);
    if (fraction >= FractionsOfASecond) {
        seconds += 1;
        fraction = 0;
    }
    seconds += SecondsFrom1904To2001;
    bool const fits = seconds >= 0 && seconds < std::ldexp(1.0, SecondsBits);
    if (!fits) return paramErr;
    auto const whole = static_cast<std::uint64_t>(seconds);
    *utcDate = {static_cast<std::uint16_t>(whole >> 32), static_cast<std::uint32_t>(whole),
                static_cast<std::uint16_t>(fraction)};
    return noErr;
}

} // namespace mac
