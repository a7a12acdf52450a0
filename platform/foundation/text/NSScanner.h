#pragma once

#include "platform/foundation/text/NSCharacterSet.h"

namespace mac {

// Reads one thing after the other from a text. What does not match is left where it is, and the answer is NO; pointers
// for what was read may be null. Characters to be skipped, white space and newlines at first, are skipped before each
// thing. A nil string or set to scan for raises NSInvalidArgumentException; a nil scanner answers NO, 0 and nil, and is
// at its end. One thread at a time.
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
    // Whether nothing is left but what is skipped.
    bool isAtEnd() const;
    // Nil: none.
    NSCharacterSet charactersToBeSkipped() const;
    void setCharactersToBeSkipped_(NSCharacterSet const& characters) const;
    // NO at first.
    bool caseSensitive() const;
    void setCaseSensitive_(BOOL isCaseSensitive) const;

    // Saturating at the ends of their ranges.
    bool scanInt_(int* value) const;
    bool scanInteger_(NSInteger* value) const;
    bool scanLongLong_(long long* value) const;
    // With or without 0x.
    bool scanHexInt_(unsigned* value) const;
    // With a point, whatever the locale, and an exponent.
    bool scanFloat_(float* value) const;
    bool scanDouble_(double* value) const;

    bool scanString_intoString_(NSString const& string, NSString* value) const;
    // At least one character, up to the string or the end.
    bool scanUpToString_intoString_(NSString const& string, NSString* value) const;
    bool scanCharactersFromSet_intoString_(NSCharacterSet const& set, NSString* value) const;
    bool scanUpToCharactersFromSet_intoString_(NSCharacterSet const& set, NSString* value) const;
};

} // namespace mac
