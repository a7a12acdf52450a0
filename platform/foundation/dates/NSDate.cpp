#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/NSString.h"
#include <cmath>
#include <ctime>

namespace mac {

namespace {

// 1 January 4001 and 1 January 1: what the framework's own constants are.
constexpr NSTimeInterval DistantFuture = 63113904000.0;
constexpr NSTimeInterval DistantPast = -63114076800.0;

NSTimeInterval secondsNow() {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9 - NSTimeIntervalSince1970;
}

struct Day {
    long long year;
    unsigned month;
    unsigned day;
};

// The civil date of a day counted from 1 January 1970. Until 4 October 1582 the calendar is the Julian one, as the
// framework's is. Years are counted from March, so that a leap day is the last of its year.
Day dayOf(long long daysSince1970) {
    constexpr long long firstGregorianDay = -141427;
    constexpr long long daysOfFourYears = 1461;
    constexpr long long daysOfFourCenturies = 146097;
    auto const floorDivided = [](long long value, long long by) { return (value - (value < 0 ? by - 1 : 0)) / by; };
    // From 1 March of year 0 of either calendar.
    long long days = daysSince1970 + (daysSince1970 < firstGregorianDay ? 719470 : 719468);
    long long year = 0;
    if (daysSince1970 >= firstGregorianDay) {
        long long const era = floorDivided(days, daysOfFourCenturies);
        days -= era * daysOfFourCenturies;
        long long const yearOfEra = (days - days / 1460 + days / 36524 - days / 146096) / 365;
        days -= yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100;
        year = era * 400 + yearOfEra;
    } else {
        long long const cycle = floorDivided(days, daysOfFourYears);
        days -= cycle * daysOfFourYears;
        long long const yearOfCycle = (days - days / 1460) / 365;
        days -= yearOfCycle * 365;
        year = cycle * 4 + yearOfCycle;
    }
    // March to July and August to December have the same five lengths.
    auto const month = static_cast<unsigned>((5 * days + 2) / 153);
    auto const day = static_cast<unsigned>(days - (153 * month + 2) / 5 + 1);
    return {month < 10 ? year : year + 1, month < 10 ? month + 3 : month - 9, day};
}

} // namespace

class NSDate::Body : public ObjectBody {
public:
    explicit Body(NSTimeInterval seconds) : m_seconds(seconds) {}

    bool isEqual(id const& other) const override {
        if (other.body() == this) return true;
        NSDate const date = as<NSDate>(other);
        return date != nil && date.timeIntervalSinceReferenceDate() == m_seconds;
    }
    std::uint64_t hash() const override { return std::hash<double>()(m_seconds); }
    id copy() const override { return id::retain(const_cast<Body*>(this)); }

    // "2001-01-01 00:00:00 +0000", always of UTC. Beyond what a calendar can tell, the seconds alone.
    NSString description() const override {
        constexpr double farthest = 1e15;
        constexpr long long secondsOfDay = 86400;
        if (!(std::abs(m_seconds) < farthest)) return NSString::stringWithFormat_("%f", m_seconds);
        auto const seconds = static_cast<long long>(std::floor(m_seconds + NSTimeIntervalSince1970));
        long long const days = (seconds - (seconds < 0 ? secondsOfDay - 1 : 0)) / secondsOfDay;
        long long const time = seconds - days * secondsOfDay;
        Day const day = dayOf(days);
        return NSString::stringWithFormat_("%04lld-%02u-%02u %02lld:%02lld:%02lld +0000", day.year, day.month, day.day,
                                           time / 3600, time / 60 % 60, time % 60);
    }

    NSTimeInterval m_seconds;
};

ClassDescription NSDate::describeClass() {
    return {
        .name = "NSDate",
        .superclass = classOf<NSObject>(),
        .methods = {method<&NSDate::timeIntervalSinceReferenceDate>("timeIntervalSinceReferenceDate"),
                    method<&NSDate::timeIntervalSinceNow>("timeIntervalSinceNow"),
                    method<&NSDate::timeIntervalSince1970>("timeIntervalSince1970"),
                    method<&NSDate::timeIntervalSinceDate_>("timeIntervalSinceDate:"),
                    method<&NSDate::isEqualToDate_>("isEqualToDate:"), method<&NSDate::compare_>("compare:")},
    };
}

NSDate NSDate::date() { return adopt<NSDate>(secondsNow()); }

NSDate NSDate::dateWithTimeIntervalSinceReferenceDate_(NSTimeInterval seconds) { return adopt<NSDate>(seconds); }

NSDate NSDate::dateWithTimeIntervalSince1970_(NSTimeInterval seconds) {
    return adopt<NSDate>(seconds - NSTimeIntervalSince1970);
}

NSDate NSDate::dateWithTimeIntervalSinceNow_(NSTimeInterval seconds) { return adopt<NSDate>(secondsNow() + seconds); }

NSDate NSDate::distantFuture() { return adopt<NSDate>(DistantFuture); }

NSDate NSDate::distantPast() { return adopt<NSDate>(DistantPast); }

NSTimeInterval NSDate::timeIntervalSinceReferenceDate() const { return *this == nil ? 0 : bodyOf(*this)->m_seconds; }

NSTimeInterval NSDate::timeIntervalSince1970() const {
    return *this == nil ? 0 : bodyOf(*this)->m_seconds + NSTimeIntervalSince1970;
}

NSTimeInterval NSDate::timeIntervalSinceNow() const {
    return *this == nil ? 0 : bodyOf(*this)->m_seconds - secondsNow();
}

NSTimeInterval NSDate::timeIntervalSinceDate_(NSDate const& other) const {
    return *this == nil ? 0 : bodyOf(*this)->m_seconds - other.timeIntervalSinceReferenceDate();
}

bool NSDate::isEqualToDate_(NSDate const& other) const { return isEqual_(other); }

NSComparisonResult NSDate::compare_(NSDate const& other) const {
    if (*this == nil || other == nil) return NSOrderedSame;
    NSTimeInterval const difference = timeIntervalSinceDate_(other);
    if (difference == 0) return NSOrderedSame;
    return difference < 0 ? NSOrderedAscending : NSOrderedDescending;
}

} // namespace mac
