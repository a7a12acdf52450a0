#pragma once

#include "platform/foundation/text/NSCharacterSet.h"

namespace mac {

// Reads numbers and strings one after the other from a text. A message that finds no match answers NO and leaves the
// location as it is; pointers for results may be null. Characters to be skipped, white space and newlines at first, are
// skipped before each read. A nil string or set to scan for raises NSInvalidArgumentException; a nil scanner answers
// NO, 0 and nil, and is at its end. One thread at a time.
class NSScanner : public Handle<NSScanner, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // A scanner of a copy of the string, at its start.
    static NSScanner scannerWithString_(NSString const& string);

    NSString string() const;
    // Raises NSRangeException past the end.
    void setScanLocation_(NSUInteger location) const;
    NSUInteger scanLocation() const;
    // Whether nothing is left but characters to be skipped.
    bool isAtEnd() const;
    // Nil if no characters are skipped.
    NSCharacterSet charactersToBeSkipped() const;
    void setCharactersToBeSkipped_(NSCharacterSet const& characters) const;
    // Whether strings to scan for are compared with regard to case; NO at first.
    bool caseSensitive() const;
    void setCaseSensitive_(BOOL isCaseSensitive) const;

    // Read a decimal integer with an optional sign; a value beyond the range becomes the range's nearer end.
    bool scanInt_(int* value) const;
    bool scanInteger_(NSInteger* value) const;
    bool scanLongLong_(long long* value) const;
    // Reads a hexadecimal integer with or without 0x before it; a value beyond 32 bits becomes 0xFFFFFFFF.
    bool scanHexInt_(unsigned* value) const;
    // Read a real with an optional fraction, behind a point whatever the locale, and an optional exponent.
    bool scanFloat_(float* value) const;
    bool scanDouble_(double* value) const;

    // Reads the string, if it comes next.
    bool scanString_intoString_(NSString const& string, NSString* value) const;
    // Reads at least one character, up to the string or the end.
    bool scanUpToString_intoString_(NSString const& string, NSString* value) const;
    // Reads at least one character, all of the set that come next.
    bool scanCharactersFromSet_intoString_(NSCharacterSet const& set, NSString* value) const;
    // Reads at least one character, up to one of the set or the end.
    bool scanUpToCharactersFromSet_intoString_(NSCharacterSet const& set, NSString* value) const;
};

} // namespace mac
