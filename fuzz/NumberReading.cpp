#include "fuzz/Trials.h"
#include "platform/foundation/numbers/NSNumberFormatter.h"
#include <algorithm>
#include <cmath>
#include <limits>

namespace mac::fuzz {

namespace {

std::string complaintAboutText(NSString const& text) {
    long long const integer = text.longLongValue();
    using Limits = std::numeric_limits<int>;
    if (text.intValue() != std::clamp<long long>(integer, Limits::min(), Limits::max()))
        return "an int is not the long long at the ends of its range";
    if (NSString::stringWithFormat_("%lld", integer).longLongValue() != integer) return "an integer changes on its way";
    double const real = text.doubleValue();
    if (std::isnan(real)) return "a text is no number";
    // A number's own text has 16 digits, one less than it would take to tell all reals apart.
    NSString const exact = NSString::stringWithFormat_("%.17g", real);
    NSString const written = NSNumber::numberWithDouble_(real).stringValue();
    if (std::isfinite(real) && exact.doubleValue() != real) return "a real changes on its way";
    if (std::abs(real) < 1e307 && std::abs(written.doubleValue() - real) > std::abs(real) * 1e-15)
        return "a number's text is another number";
    if (std::isfinite(text.floatValue()) && text.floatValue() != static_cast<float>(real)) return "a float is another";
    // Text that does not begin as an integer does not begin as a real either, except with a point.
    if (integer != 0 && std::abs(real) < 1 && text.UTF8String().find_first_of("eE") == std::string::npos)
        return "an integer without a real";
    text.boolValue();
    return {};
}

std::string complaintAboutFormatter(NSString const& format, NSString const& text) {
    NSNumberFormatter const formatter = NSNumberFormatter::alloc().init();
    formatter.setFormat_(format);
    NSNumber const number = formatter.numberFromString_(text);
    if (number == nil) return {};
    NSString const printed = formatter.stringFromNumber_(number);
    if (printed == nil) return "a number that was read is not printed";
    for (double const value : {0.0, -1.5, 1e300, 5e-324, 0.05, 99.5})
        formatter.stringFromNumber_(NSNumber::numberWithDouble_(value));
    return {};
}

} // namespace

std::string complaintAboutNumbers(std::string_view bytes) {
    std::size_t const end = std::min(bytes.find('\n'), bytes.size());
    NSString const format = NSString::stringWithFileSystemRepresentation_(bytes.substr(0, end));
    NSString const text = NSString::stringWithFileSystemRepresentation_(bytes.substr(std::min(end + 1, bytes.size())));
    std::string const complaint = complaintAboutText(text);
    return complaint.empty() ? complaintAboutFormatter(format, text) : complaint;
}

} // namespace mac::fuzz
