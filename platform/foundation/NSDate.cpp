#include "platform/foundation/NSDate.h"
#include "platform/foundation/Method.h"
#include "platform/foundation/NSString.h"
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

void appendNumber(std::string& text, long long value, std::size_t digits) {
    std::string const number = std::to_string(value < 0 ? -value : value);
    if (value < 0) text += '-';
    if (number.size() < digits) text.append(digits - number.size(), '0');
    text += number;
}

} // namespace

class NSDate::Body : public ObjectBody {
public:
    explicit Body(NSTimeInterval seconds) : m_seconds(seconds) {}

    bool isEqual(id const& other) const override {
        NSDate const date = as<NSDate>(other);
        return date != nil && date.timeIntervalSinceReferenceDate() == m_seconds;
    }
    std::uint64_t hash() const override { return std::hash<double>()(m_seconds); }
    id copy() const override { return id::retain(const_cast<Body*>(this)); }

    // "2001-01-01 00:00:00 +0000", always of UTC.
    NSString description() const override {
        double const sinceEpoch = std::floor(m_seconds + NSTimeIntervalSince1970);
        tm parts{};
        // Beyond what a calendar can tell, the seconds alone.
        if (!(std::abs(sinceEpoch) < 1e15)) return NSString::stringWithFormat_("%f", m_seconds);
        auto const seconds = static_cast<std::time_t>(sinceEpoch);
        if (!::gmtime_r(&seconds, &parts)) return NSString::stringWithFormat_("%f", m_seconds);
        std::string text;
        appendNumber(text, parts.tm_year + 1900LL, 4);
        char separator = '-';
        for (int const part : {parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec}) {
            text += separator;
            appendNumber(text, part, 2);
            separator = text.size() < 8 ? '-' : text.size() < 11 ? ' ' : ':';
        }
        return NSString::stringWithUTF8String_(text + " +0000");
    }

    NSTimeInterval m_seconds;
};

ClassDescription NSDate::describeClass() {
    return {
        .name = "NSDate",
        .superclass = classOf<NSObject>(),
        .methods = {method<&NSDate::timeIntervalSinceReferenceDate>("timeIntervalSinceReferenceDate"),
                    method<&NSDate::timeIntervalSinceNow>("timeIntervalSinceNow"),
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

NSTimeInterval NSDate::timeIntervalSinceNow() const { return *this == nil ? 0 : bodyOf(*this)->m_seconds - secondsNow(); }

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
