#pragma once

#include "platform/foundation/text/NSString.h"

namespace mac {

class NSData;

using UTF32Char = char32_t;

// A set of characters: of UTF-16 code units, and of characters that take two. Immutable; any thread. The named sets are
// Unicode's categories. Where nothing else is said, nil for an argument raises NSInvalidArgumentException; a nil
// receiver has no members and answers nil.
class NSCharacterSet : public Handle<NSCharacterSet, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Two halves that make a character count as that character alone.
    static NSCharacterSet characterSetWithCharactersInString_(NSString const& characters);
    // Raises NSInvalidArgumentException where the range leaves the characters.
    static NSCharacterSet characterSetWithRange_(NSRange range);
    // 8,192 bytes of bits for the first plane, the lowest bit of a byte first, then for each further plane its number
    // as a byte and its bits. What is missing at the end is 0.
    static NSCharacterSet characterSetWithBitmapRepresentation_(NSData const& data);

    static NSCharacterSet alphanumericCharacterSet();
    static NSCharacterSet capitalizedLetterCharacterSet();
    static NSCharacterSet controlCharacterSet();
    static NSCharacterSet decimalDigitCharacterSet();
    static NSCharacterSet decomposableCharacterSet();
    static NSCharacterSet illegalCharacterSet();
    static NSCharacterSet letterCharacterSet();
    static NSCharacterSet lowercaseLetterCharacterSet();
    static NSCharacterSet newlineCharacterSet();
    static NSCharacterSet nonBaseCharacterSet();
    static NSCharacterSet punctuationCharacterSet();
    static NSCharacterSet symbolCharacterSet();
    static NSCharacterSet uppercaseLetterCharacterSet();
    static NSCharacterSet whitespaceCharacterSet();
    static NSCharacterSet whitespaceAndNewlineCharacterSet();

    // A half of a pair is a member only by itself.
    bool characterIsMember_(unichar character) const;
    bool longCharacterIsMember_(UTF32Char character) const;
    bool hasMemberInPlane_(std::uint8_t plane) const;
    // Every set is one of a nil set.
    bool isSupersetOfSet_(NSCharacterSet const& other) const;
    NSCharacterSet invertedSet() const;
    NSData bitmapRepresentation() const;
};

// A set that can be changed in place. One thread at a time. A range that leaves the characters raises
// NSInvalidArgumentException, as nil does.
class NSMutableCharacterSet : public Handle<NSMutableCharacterSet, NSCharacterSet> {
public:
    using Handle::Handle;

    static ClassDescription describeClass();

    void addCharactersInRange_(NSRange range) const;
    void removeCharactersInRange_(NSRange range) const;
    void addCharactersInString_(NSString const& characters) const;
    void removeCharactersInString_(NSString const& characters) const;
    void formUnionWithCharacterSet_(NSCharacterSet const& other) const;
    void formIntersectionWithCharacterSet_(NSCharacterSet const& other) const;
    void invert() const;
};

} // namespace mac
