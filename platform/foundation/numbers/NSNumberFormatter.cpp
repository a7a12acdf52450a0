#include "platform/foundation/numbers/NSNumberFormatter.h"
#include "platform/foundation/numbers/NumberPattern.h"
#include "platform/foundation/numbers/NumberText.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/StringBody.h"
#include <QLocale>
#include <charconv>
#include <cmath>

namespace mac {

class NSNumberFormatter::Body : public ObjectBody {
public:
    NumberSeparators separators() const;
    // With thousands set apart or not, as has been asked for.
    NumberPattern pattern(NSString const& format) const;

    NSString m_positive{"0"};
    // Nil: the positive one behind a minus sign.
    NSString m_negative;
    // Nil: as a positive number.
    NSString m_zero;
    bool m_localizesFormat{false};
    NSString m_decimalSeparator;
    NSString m_thousandSeparator;
    std::optional<bool> m_hasThousandSeparators;
    NSString m_nilSymbol{""};
    NSString m_notANumberSymbol{"NaN"};
};

namespace {

std::u16string unitsOf(QString const& text) { return text.toStdU16String(); }

NSString copyOf(NSString const& string, char const* message) {
    requireArgument(string, message);
    return uncheckedCast<NSString>(string.copy());
}

std::vector<NSString> partsOf(NSString const& format) {
    std::vector<NSString> parts;
    std::u16string_view rest = format.codeUnits();
    for (std::size_t end = rest.find(u';'); end != std::u16string_view::npos && parts.size() < 2;
         end = rest.find(u';')) {
        parts.push_back(NSString::stringWithCodeUnits(rest.substr(0, end)));
        rest.remove_prefix(end + 1);
    }
    parts.push_back(NSString::stringWithCodeUnits(rest));
    return parts;
}

NSString behindMinusSign(NSString const& format) { return NSString("-").stringByAppendingString_(format); }

NSNumber numberOf(std::string const& digits, bool isNegative) {
    std::string const text = (isNegative ? "-" : "") + digits;
    char const* const end = text.data() + text.size();
    long long integer = 0;
    auto const [integerEnd, error] = std::from_chars(text.data(), end, integer);
    if (error == std::errc() && integerEnd == end) return NSNumber::numberWithLongLong_(integer);
    unsigned long long large = 0;
    auto const [largeEnd, largeError] = std::from_chars(text.data(), end, large);
    if (largeError == std::errc() && largeEnd == end) return NSNumber::numberWithUnsignedLongLong_(large);
    // Saturating, which reading characters alone is not.
    return NSNumber::numberWithDouble_(NSString::stringWithUTF8String_(text).doubleValue());
}

} // namespace

NumberSeparators NSNumberFormatter::Body::separators() const {
    NumberSeparators separators{u".", u","};
    if (m_localizesFormat) {
        QLocale const locale;
        separators = {unitsOf(locale.decimalPoint()), unitsOf(locale.groupSeparator())};
    }
    if (m_decimalSeparator != nil) separators.decimal = m_decimalSeparator.codeUnits();
    if (m_thousandSeparator != nil) separators.thousand = m_thousandSeparator.codeUnits();
    return separators;
}

NumberPattern NSNumberFormatter::Body::pattern(NSString const& format) const {
    NumberPattern pattern(format.codeUnits());
    if (m_hasThousandSeparators) pattern.setHasThousandSeparators(*m_hasThousandSeparators);
    return pattern;
}

ClassDescription NSNumberFormatter::describeClass() {
    ClassDescription description{.name = "NSNumberFormatter", .superclass = classOf<NSObject>()};
    description.makeBody = makeEmptyBody<NSNumberFormatter>;
    description.methods = {
        method<&NSNumberFormatter::init>("init"),
        method<&NSNumberFormatter::format>("format"),
        method<&NSNumberFormatter::setFormat_>("setFormat:"),
        method<&NSNumberFormatter::positiveFormat>("positiveFormat"),
        method<&NSNumberFormatter::setPositiveFormat_>("setPositiveFormat:"),
        method<&NSNumberFormatter::negativeFormat>("negativeFormat"),
        method<&NSNumberFormatter::setNegativeFormat_>("setNegativeFormat:"),
        method<&NSNumberFormatter::localizesFormat>("localizesFormat"),
        method<&NSNumberFormatter::setLocalizesFormat_>("setLocalizesFormat:"),
        method<&NSNumberFormatter::stringFromNumber_>("stringFromNumber:"),
        method<&NSNumberFormatter::stringForObjectValue_>("stringForObjectValue:"),
        method<&NSNumberFormatter::numberFromString_>("numberFromString:"),
    };
    return description;
}

NSNumberFormatter NSNumberFormatter::init() const { return *this; }

NSString NSNumberFormatter::format() const {
    if (*this == nil) return nil;
    Body const& body = *bodyOf(*this);
    NSString const zero = body.m_zero == nil ? body.m_positive : body.m_zero;
    return NSString::stringWithFormat_("%@;%@;%@", body.m_positive, zero, negativeFormat());
}

void NSNumberFormatter::setFormat_(NSString const& format) const {
    if (*this == nil) return;
    std::vector<NSString> const parts = partsOf(copyOf(format, "setFormat:"));
    Body& body = *bodyOf(*this);
    body.m_positive = parts.front();
    body.m_zero = parts.size() > 2 ? parts[1] : NSString(nil);
    body.m_negative = parts.size() > 1 ? parts.back() : NSString(nil);
}

NSString NSNumberFormatter::positiveFormat() const { return *this == nil ? NSString(nil) : bodyOf(*this)->m_positive; }

void NSNumberFormatter::setPositiveFormat_(NSString const& format) const {
    if (*this != nil) bodyOf(*this)->m_positive = copyOf(format, "setPositiveFormat:");
}

NSString NSNumberFormatter::negativeFormat() const {
    if (*this == nil) return nil;
    Body const& body = *bodyOf(*this);
    return body.m_negative == nil ? behindMinusSign(body.m_positive) : body.m_negative;
}

void NSNumberFormatter::setNegativeFormat_(NSString const& format) const {
    if (*this != nil) bodyOf(*this)->m_negative = copyOf(format, "setNegativeFormat:");
}

bool NSNumberFormatter::localizesFormat() const { return *this != nil && bodyOf(*this)->m_localizesFormat; }

void NSNumberFormatter::setLocalizesFormat_(BOOL localizes) const {
    if (*this != nil) bodyOf(*this)->m_localizesFormat = static_cast<bool>(localizes);
}

NSString NSNumberFormatter::decimalSeparator() const {
    return *this == nil ? NSString(nil) : makeString(bodyOf(*this)->separators().decimal);
}

void NSNumberFormatter::setDecimalSeparator_(NSString const& separator) const {
    if (*this != nil) bodyOf(*this)->m_decimalSeparator = copyOf(separator, "setDecimalSeparator:");
}

NSString NSNumberFormatter::thousandSeparator() const {
    return *this == nil ? NSString(nil) : makeString(bodyOf(*this)->separators().thousand);
}

void NSNumberFormatter::setThousandSeparator_(NSString const& separator) const {
    if (*this != nil) bodyOf(*this)->m_thousandSeparator = copyOf(separator, "setThousandSeparator:");
}

bool NSNumberFormatter::hasThousandSeparators() const {
    return *this != nil && bodyOf(*this)->pattern(positiveFormat()).hasThousandSeparators();
}

void NSNumberFormatter::setHasThousandSeparators_(BOOL hasSeparators) const {
    if (*this != nil) bodyOf(*this)->m_hasThousandSeparators = static_cast<bool>(hasSeparators);
}

NSString NSNumberFormatter::nilSymbol() const { return *this == nil ? NSString(nil) : bodyOf(*this)->m_nilSymbol; }

void NSNumberFormatter::setNilSymbol_(NSString const& symbol) const {
    if (*this != nil) bodyOf(*this)->m_nilSymbol = copyOf(symbol, "setNilSymbol:");
}

NSString NSNumberFormatter::notANumberSymbol() const {
    return *this == nil ? NSString(nil) : bodyOf(*this)->m_notANumberSymbol;
}

void NSNumberFormatter::setNotANumberSymbol_(NSString const& symbol) const {
    if (*this != nil) bodyOf(*this)->m_notANumberSymbol = copyOf(symbol, "setNotANumberSymbol:");
}

NSString NSNumberFormatter::stringFromNumber_(NSNumber const& number) const {
    if (*this == nil) return nil;
    if (number == nil) return nilSymbol();
    Body const& body = *bodyOf(*this);
    double const value = number.doubleValue();
    if (std::isnan(value)) return body.m_notANumberSymbol;
    if (std::isinf(value)) return value < 0 ? "-∞" : "+∞";
    // The fewest digits: 9.95 is a tie, though the double lies below it.
    std::string text = number.kind() == NSNumber::Kind::Real ? shortestText(value) : number.stringValue().UTF8String();
    bool const isNegative = text.starts_with('-') && value != 0;
    text.erase(0, text.starts_with('-') ? 1 : 0);
    NSString const forZero = body.m_zero == nil ? body.m_positive : body.m_zero;
    NSString const format = isNegative ? negativeFormat() : value == 0 ? forZero : body.m_positive;
    return makeString(body.pattern(format).apply(DecimalNumber::fromText(text), body.separators()));
}

NSString NSNumberFormatter::stringForObjectValue_(id const& object) const {
    NSNumber const number = as<NSNumber>(object);
    return number == nil && object != nil ? NSString(nil) : stringFromNumber_(number);
}

NSNumber NSNumberFormatter::numberFromString_(NSString const& string) const {
    if (*this == nil || string == nil) return nil;
    Body const& body = *bodyOf(*this);
    NumberSeparators const separators = body.separators();
    std::u16string_view const text = string.codeUnits();
    auto const digitsBy = [&](NSString const& format) { return body.pattern(format).digitsIn(text, separators); };
    if (std::optional<std::string> const digits = digitsBy(body.m_positive)) return numberOf(*digits, false);
    if (std::optional<std::string> const digits = digitsBy(negativeFormat())) return numberOf(*digits, true);
    if (body.m_zero == nil || !digitsBy(body.m_zero)) return nil;
    return NSNumber::numberWithInt_(0);
}

} // namespace mac
