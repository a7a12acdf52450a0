#include "platform/foundation/numbers/NSNumber.h"

#include "platform/foundation/numbers/NumberText.h"
#include "platform/foundation/objects/Method.h"

#include <cmath>
#include <limits>
#include <memory>

namespace mac {

// An integer up to the signed range is always of kind Signed, so that one value has one form.
class NSNumber::Body : public ObjectBody {
public:
    Body(Kind kind, std::uint64_t integer) : m_kind(kind), m_integer(integer) {}
    Body(double real, bool isFloat) : m_kind(Kind::Real), m_isFloat(isFloat), m_real(real) {}

    Kind kind() const { return m_kind; }
    bool isFloat() const { return m_isFloat; }
    std::uint64_t integer() const { return m_integer; }
    double real() const { return m_real; }

    bool isEqual(id const& other) const override;
    std::uint64_t hash() const override;
    NSString description() const override;
    id copy() const override { return id::retain(const_cast<Body*>(this)); }
    id mutableCopy() const override { return copy(); }

private:
    Kind m_kind;
    bool m_isFloat{false};
    std::uint64_t m_integer{0};
    double m_real{0};
};

namespace {

constexpr double twoTo63 = 9223372036854775808.0;
constexpr double twoTo64 = 18446744073709551616.0;

// The nearest value of the type, 0 for no number.
template <class T>
T saturated(double value, double lowest, double pastHighest) {
    if (std::isnan(value)) return 0;
    if (value <= lowest) return std::numeric_limits<T>::min();
    if (value >= pastHighest) return std::numeric_limits<T>::max();
    return static_cast<T>(value);
}

int order(auto const& first, auto const& second) { return first < second ? -1 : (second < first ? 1 : 0); }

int orderOfIntegers(NSNumber::Body const& first, NSNumber::Body const& second) {
    bool const firstIsLarge = first.kind() == NSNumber::Kind::Unsigned;
    bool const secondIsLarge = second.kind() == NSNumber::Kind::Unsigned;
    if (firstIsLarge != secondIsLarge) return firstIsLarge ? 1 : -1;
    if (firstIsLarge) return order(first.integer(), second.integer());
    return order(static_cast<std::int64_t>(first.integer()), static_cast<std::int64_t>(second.integer()));
}

// What is no number lies between the negative and the other reals, and is equal to itself, so that sorting and look-ups
// work with it.
int orderOfReals(double first, double second) {
    if (std::isnan(first)) return std::isnan(second) ? 0 : (second < 0 ? 1 : -1);
    if (std::isnan(second)) return first < 0 ? -1 : 1;
    return order(first, second);
}

// Exact: the real's whole part is compared as an integer, which a conversion of the integer to a real would round.
int orderOfIntegerAndReal(NSNumber::Body const& integer, double real) {
    bool const isLarge = integer.kind() == NSNumber::Kind::Unsigned;
    std::int64_t const signedInteger = static_cast<std::int64_t>(integer.integer());
    if (std::isnan(real)) return !isLarge && signedInteger < 0 ? -1 : 1;
    if (real >= twoTo64) return -1;
    if (real < -twoTo63) return 1;
    double const whole = std::trunc(real);
    int result = 0;
    if (isLarge)
        result = whole < twoTo63 ? 1 : order(integer.integer(), static_cast<std::uint64_t>(whole));
    else
        result = whole >= twoTo63 ? -1 : order(signedInteger, static_cast<std::int64_t>(whole));
    return result != 0 ? result : order(whole, real);
}

int orderOf(NSNumber::Body const& first, NSNumber::Body const& second) {
    bool const firstIsReal = first.kind() == NSNumber::Kind::Real;
    bool const secondIsReal = second.kind() == NSNumber::Kind::Real;
    if (firstIsReal && secondIsReal) return orderOfReals(first.real(), second.real());
    if (firstIsReal) return -orderOfIntegerAndReal(second, first.real());
    if (secondIsReal) return orderOfIntegerAndReal(first, second.real());
    return orderOfIntegers(first, second);
}

std::uint64_t mixedNumber(std::uint64_t value) {
    value *= 0x9E3779B97F4A7C15;
    return value ^ value >> 32;
}

NSNumber numberWithSigned(std::int64_t value) {
    return adopt<NSNumber>(NSNumber::Kind::Signed, static_cast<std::uint64_t>(value));
}

} // namespace

bool NSNumber::Body::isEqual(id const& other) const {
    if (other.body() == this) return true;
    NSNumber const number = as<NSNumber>(other);
    return number != nil && orderOf(*this, *bodyOf(number)) == 0;
}

std::uint64_t NSNumber::Body::hash() const {
    if (m_kind != Kind::Real) return mixedNumber(m_integer);
    if (std::isnan(m_real)) return mixedNumber(std::numeric_limits<std::uint64_t>::max());
    if (m_real == std::trunc(m_real) && m_real >= -twoTo63 && m_real < twoTo64)
        return mixedNumber(m_real < twoTo63 ? static_cast<std::uint64_t>(static_cast<std::int64_t>(m_real))
                                            : static_cast<std::uint64_t>(m_real));
    return mixedNumber(std::hash<double>()(m_real));
}

NSString NSNumber::Body::description() const {
    std::string text;
    if (m_kind == Kind::Real)
        text = m_isFloat ? generalText(static_cast<float>(m_real)) : generalText(m_real);
    else
        text =
            m_kind == Kind::Unsigned ? std::to_string(m_integer) : std::to_string(static_cast<std::int64_t>(m_integer));
    return NSString::stringWithUTF8String_(text);
}

ClassDescription NSNumber::describeClass() {
    ClassDescription description{.name = "NSNumber", .superclass = classOf<NSObject>()};
    description.methods = {
        method<&NSNumber::boolValue>("boolValue"),
        method<&NSNumber::intValue>("intValue"),
        method<&NSNumber::unsignedIntValue>("unsignedIntValue"),
        method<&NSNumber::integerValue>("integerValue"),
        method<&NSNumber::unsignedIntegerValue>("unsignedIntegerValue"),
        method<&NSNumber::longLongValue>("longLongValue"),
        method<&NSNumber::unsignedLongLongValue>("unsignedLongLongValue"),
        method<&NSNumber::doubleValue>("doubleValue"),
        method<&NSNumber::floatValue>("floatValue"),
        method<&NSNumber::stringValue>("stringValue"),
        method<&NSNumber::compare_>("compare:"),
        method<&NSNumber::isEqualToNumber_>("isEqualToNumber:"),
    };
    return description;
}

NSNumber NSNumber::numberWithBool_(BOOL value) {
    // Never destroyed: objects may ask for them until the program's last instruction.
    static NSNumber const& yes = *std::make_unique<NSNumber>(adopt<NSNumber>(Kind::Boolean, 1U)).release();
    static NSNumber const& no = *std::make_unique<NSNumber>(adopt<NSNumber>(Kind::Boolean, 0U)).release();
    return value ? yes : no;
}

NSNumber NSNumber::numberWithInt_(int value) { return numberWithSigned(value); }
NSNumber NSNumber::numberWithInteger_(NSInteger value) { return numberWithSigned(value); }
NSNumber NSNumber::numberWithUnsignedInt_(unsigned value) { return numberWithSigned(value); }
NSNumber NSNumber::numberWithUnsignedInteger_(NSUInteger value) { return numberWithSigned(value); }
NSNumber NSNumber::numberWithLongLong_(long long value) { return numberWithSigned(value); }

NSNumber NSNumber::numberWithUnsignedLongLong_(unsigned long long value) {
    if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
        return numberWithSigned(static_cast<std::int64_t>(value));
    return adopt<NSNumber>(Kind::Unsigned, value);
}

NSNumber NSNumber::numberWithDouble_(double value) { return adopt<NSNumber>(value, false); }
NSNumber NSNumber::numberWithFloat_(float value) { return adopt<NSNumber>(value, true); }

bool NSNumber::boolValue() const {
    Body const* const body = bodyOf(*this);
    if (!body) return false;
    return body->kind() == Kind::Real ? body->real() != 0 : body->integer() != 0;
}

int NSNumber::intValue() const {
    Body const* const body = bodyOf(*this);
    if (!body) return 0;
    if (body->kind() == Kind::Real) return saturated<int>(body->real(), -2147483648.0, 2147483648.0);
    return static_cast<int>(body->integer());
}

unsigned NSNumber::unsignedIntValue() const {
    Body const* const body = bodyOf(*this);
    if (!body) return 0;
    if (body->kind() == Kind::Real) return saturated<unsigned>(body->real(), 0, 4294967296.0);
    return static_cast<unsigned>(body->integer());
}

NSInteger NSNumber::integerValue() const { return intValue(); }
NSUInteger NSNumber::unsignedIntegerValue() const { return unsignedIntValue(); }

long long NSNumber::longLongValue() const {
    Body const* const body = bodyOf(*this);
    if (!body) return 0;
    if (body->kind() == Kind::Real) return saturated<long long>(body->real(), -twoTo63, twoTo63);
    return static_cast<long long>(body->integer());
}

unsigned long long NSNumber::unsignedLongLongValue() const {
    Body const* const body = bodyOf(*this);
    if (!body) return 0;
    if (body->kind() == Kind::Real) return saturated<unsigned long long>(body->real(), 0, twoTo64);
    return body->integer();
}

double NSNumber::doubleValue() const {
    Body const* const body = bodyOf(*this);
    if (!body) return 0;
    if (body->kind() == Kind::Real) return body->real();
    if (body->kind() == Kind::Unsigned) return static_cast<double>(body->integer());
    return static_cast<double>(static_cast<std::int64_t>(body->integer()));
}

float NSNumber::floatValue() const { return nearestFloat(doubleValue()); }

NSString NSNumber::stringValue() const {
    Body const* const body = bodyOf(*this);
    return body ? body->description() : NSString(nil);
}

bool NSNumber::isEqualToNumber_(NSNumber const& other) const { return isEqual_(other); }

NSComparisonResult NSNumber::compare_(NSNumber const& other) const {
    if (*this == nil) return NSOrderedSame;
    if (other == nil) return NSOrderedDescending;
    return static_cast<NSComparisonResult>(orderOf(*bodyOf(*this), *bodyOf(other)));
}

NSNumber::Kind NSNumber::kind() const {
    Body const* const body = bodyOf(*this);
    return body ? body->kind() : Kind::Signed;
}

} // namespace mac
