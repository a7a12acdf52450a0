#pragma once

#include "platform/foundation/numbers/NSNumber.h"

namespace mac {

// Writes numbers by a format and reads them: "positive", "positive;negative" or "positive;zero;negative", where 0 is a
// digit that is always there, # one where it is needed, a comma says that thousands are set apart, and what stands
// around is printed as it is. Without a format numbers are whole. Ties are rounded to the even digit. One thread at a
// time.
class NSNumberFormatter : public Handle<NSNumberFormatter, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    NSNumberFormatter init() const;

    // All three parts; nil raises NSInvalidArgumentException.
    NSString format() const;
    void setFormat_(NSString const& format) const;
    NSString positiveFormat() const;
    void setPositiveFormat_(NSString const& format) const;
    NSString negativeFormat() const;
    void setNegativeFormat_(NSString const& format) const;

    // Whether the separators are those of the user's locale, unless they have been set.
    bool localizesFormat() const;
    void setLocalizesFormat_(BOOL localizes) const;
    // "." and ",", the locale's, or what has been set.
    NSString decimalSeparator() const;
    void setDecimalSeparator_(NSString const& separator) const;
    NSString thousandSeparator() const;
    void setThousandSeparator_(NSString const& separator) const;
    // Follows the format until it is set.
    bool hasThousandSeparators() const;
    void setHasThousandSeparators_(BOOL hasSeparators) const;

    // The texts for nil and for a value that is not a number (NaN); "" and "NaN" initially.
    NSString nilSymbol() const;
    void setNilSymbol_(NSString const& symbol) const;
    NSString notANumberSymbol() const;
    void setNotANumberSymbol_(NSString const& symbol) const;

    // Infinities are "+∞" and "-∞".
    NSString stringFromNumber_(NSNumber const& number) const;
    // The number's text; nil for an object that is not a number.
    NSString stringForObjectValue_(id const& object) const;
    // Whole numbers are integers where they can be; a real too large is infinite, one too small 0. Nil for a text that
    // the format would not print.
    NSNumber numberFromString_(NSString const& string) const;
};

} // namespace mac
