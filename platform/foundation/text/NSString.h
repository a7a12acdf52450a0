#pragma once

#include "platform/foundation/objects/Object.h"
#include "platform/foundation/text/Format.h"
#include <optional>
#include <string>
#include <string_view>

namespace mac {

class NSArray;
class NSCharacterSet;
class NSData;
class NSMutableString;

// Options of comparisons and searches; the values are the framework's own.
enum NSStringCompareOptions : NSUInteger {
    NSCaseInsensitiveSearch = 1,
    NSLiteralSearch = 2,
    NSBackwardsSearch = 4,
    NSAnchoredSearch = 8,
    NSNumericSearch = 64,
    NSDiacriticInsensitiveSearch = 128,
    NSWidthInsensitiveSearch = 256,
    NSForcedOrderingSearch = 512,
};

enum NSStringEncoding : NSUInteger {
    NSASCIIStringEncoding = 1,
    NSNEXTSTEPStringEncoding = 2,
    NSUTF8StringEncoding = 4,
    NSISOLatin1StringEncoding = 5,
    NSISOLatin2StringEncoding = 9,
    NSUnicodeStringEncoding = 10,
    NSUTF16StringEncoding = NSUnicodeStringEncoding,
    NSWindowsCP1252StringEncoding = 12,
    NSMacOSRomanStringEncoding = 30,
    NSUTF16BigEndianStringEncoding = 0x90000100,
    NSUTF16LittleEndianStringEncoding = 0x94000100,
    NSUTF32StringEncoding = 0x8C000100,
    NSUTF32BigEndianStringEncoding = 0x98000100,
    NSUTF32LittleEndianStringEncoding = 0x9C000100,
};

// Text as UTF-16 code units; also a path. A byte of a file name that is not UTF-8 is held as the lone surrogate
// U+DC00 + byte, so that every name on the disk can be told and found again. Immutable; any thread.
//
// Where nothing else is said, a nil argument raises NSInvalidArgumentException, an index or range past the end
// NSRangeException, and a nil receiver answers nil, 0, NO or an empty value before either.
class NSString : public Handle<NSString, NSObject> {
public:
    class Body;
    using Handle::Handle;

    template <std::size_t N>
    NSString(char const (&literal)[N]) : NSString(uncheckedCast<NSString>(id(literal))) {}
    template <std::size_t N>
    NSString(char (&)[N]) = delete;

    static ClassDescription describeClass();

    static NSString string();
    // Invalid UTF-8 answers nil.
    static NSString stringWithUTF8String_(std::string_view utf8);
    // Any bytes: those that are not UTF-8 become lone surrogates, see above.
    static NSString stringWithFileSystemRepresentation_(std::string_view bytes);
    static NSString stringWithCodeUnits(std::u16string_view units);
    // A copy. Null raises NSInvalidArgumentException unless the length is 0.
    static NSString stringWithCharacters_length_(unichar const* characters, NSUInteger length);
    static NSString stringWithString_(NSString const& other);
    // Reads the characters where they lie, which therefore have to stay as long as the string. Null as above.
    static NSString stringWithCharactersNoCopy_length_(unichar const* characters, NSUInteger length);
    // Bytes that the encoding cannot hold answer nil; so do nil data and an encoding that is not in NSStringEncoding.
    static NSString stringWithData_encoding_(NSData const& data, NSStringEncoding encoding);
    // Format.h says what a format may hold. A missing argument prints "(null)".
    template <class... Arguments>
    static NSString stringWithFormat_(NSString const& format, Arguments const&... arguments) {
        if constexpr (sizeof...(arguments) == 0) {
            return formatString(format, {});
        } else {
            FormatArgument const list[]{FormatArgument(arguments)...};
            return formatString(format, list);
        }
    }

    NSUInteger length() const;
    unichar characterAtIndex_(NSUInteger index) const;
    // The text itself, for implementations; valid while an unchanged string lives.
    std::u16string_view codeUnits() const;
    // Linux: by value. What has no UTF-8 (a lone surrogate) becomes U+FFFD. Empty for nil.
    std::string UTF8String() const;
    // The bytes of the path as the file system names it; nothing for nil, an empty string, a NUL character or lone
    // surrogates that do not stand for such bytes: no two strings name one file.
    std::optional<std::string> fileSystemRepresentation() const;
    // Nil for text that the encoding cannot hold, and for an encoding that is not in NSStringEncoding. UTF-16 and
    // UTF-32 without an order in their name begin with a byte order mark, in the order of the machine.
    NSData dataUsingEncoding_(NSStringEncoding encoding) const;
    // With loss, what cannot be held goes without its marks, else as what looks like it, else as a question mark.
    NSData dataUsingEncoding_allowLossyConversion_(NSStringEncoding encoding, BOOL isLossy) const;
    bool canBeConvertedToEncoding_(NSStringEncoding encoding) const;
    // The buffer has room for all.
    void getCharacters_(unichar* buffer) const;
    void getCharacters_range_(unichar* buffer, NSRange range) const;

    // Whether the code units are equal, without normalisation or folding. NO for nil.
    bool isEqualToString_(NSString const& other) const;
    // Canonically equivalent text is equal; nil other counts as the empty string.
    NSComparisonResult compare_(NSString const& other) const;
    NSComparisonResult compare_options_(NSString const& other, NSUInteger options) const;
    // Compares that range of the receiver; nil other counts as the empty string.
    NSComparisonResult compare_options_range_(NSString const& other, NSUInteger options, NSRange range) const;
    // Full folding: ß equals ss. The locale plays no part. Nil counts as empty.
    NSComparisonResult caseInsensitiveCompare_(NSString const& other) const;
    // In the order of the user's language.
    NSComparisonResult localizedCompare_(NSString const& other) const;
    NSComparisonResult localizedCaseInsensitiveCompare_(NSString const& other) const;
    // The beginning of this text that is equal to a beginning of the other; NSCaseInsensitiveSearch and NSLiteralSearch
    // count.
    NSString commonPrefixWithString_options_(NSString const& other, NSUInteger options) const;
    // Whether rangeOfString_ finds the text at the start or end; so no text begins or ends with the empty string.
    bool hasPrefix_(NSString const& prefix) const;
    bool hasSuffix_(NSString const& suffix) const;
    // {NSNotFound, 0} when there is none; nothing ever contains the empty string. Canonically equivalent text is found,
    // and only whole characters with all their marks, unless the options have NSLiteralSearch. The time grows with what
    // is looked through.
    NSRange rangeOfString_(NSString const& other) const;
    NSRange rangeOfString_options_(NSString const& other, NSUInteger options) const;
    NSRange rangeOfString_options_range_(NSString const& other, NSUInteger options, NSRange range) const;
    // The first, or with NSBackwardsSearch the last, character of the set: two code units where it takes two.
    NSRange rangeOfCharacterFromSet_(NSCharacterSet const& set) const;
    NSRange rangeOfCharacterFromSet_options_(NSCharacterSet const& set, NSUInteger options) const;
    NSRange rangeOfCharacterFromSet_options_range_(NSCharacterSet const& set, NSUInteger options, NSRange range) const;

    // The character at the index with its marks, and whatever else people see as one.
    NSRange rangeOfComposedCharacterSequenceAtIndex_(NSUInteger index) const;
    NSRange rangeOfComposedCharacterSequencesForRange_(NSRange range) const;
    // The lines that the range touches, with their ends: LF, CR, CR LF, U+0085, U+2028, U+2029. The pointers may be
    // null; contentsEnd is the place of the last line's end.
    NSRange lineRangeForRange_(NSRange range) const;
    void getLineStart_end_contentsEnd_forRange_(NSUInteger* start, NSUInteger* end, NSUInteger* contentsEnd,
                                                NSRange range) const;

    NSString substringFromIndex_(NSUInteger index) const;
    NSString substringToIndex_(NSUInteger index) const;
    NSString substringWithRange_(NSRange range) const;
    NSString stringByAppendingString_(NSString const& other) const;
    template <class... Arguments>
    NSString stringByAppendingFormat_(NSString const& format, Arguments const&... arguments) const {
        return stringByAppendingString_(stringWithFormat_(format, arguments...));
    }
    // Literal, left to right; the whole text for an empty separator.
    NSArray componentsSeparatedByString_(NSString const& separator) const;
    // Each character of the set ends a component; between two that follow each other lies an empty one.
    NSArray componentsSeparatedByCharactersInSet_(NSCharacterSet const& set) const;
    NSString stringByTrimmingCharactersInSet_(NSCharacterSet const& set) const;
    // Cut to the length, or filled with the padding from its index on, again and again. Raises
    // NSInvalidArgumentException for a nil or empty padding and NSRangeException for an index past its end, both only
    // where it is needed.
    NSString stringByPaddingToLength_withString_startingAtIndex_(NSUInteger length, NSString const& padding,
                                                                 NSUInteger index) const;
    // Replaces what rangeOfString_ finds, without overlaps.
    NSString stringByReplacingOccurrencesOfString_withString_(NSString const& target,
                                                              NSString const& replacement) const;
    NSString stringByReplacingOccurrencesOfString_withString_options_range_(NSString const& target,
                                                                            NSString const& replacement,
                                                                            NSUInteger options, NSRange range) const;
    NSString stringByReplacingCharactersInRange_withString_(NSRange range, NSString const& replacement) const;
    NSString lowercaseString() const;
    NSString uppercaseString() const;
    // Each word, which is a run of letters and apostrophes, with a capital at its start and small letters behind.
    NSString capitalizedString() const;
    // Unicode's normal forms D, C, KD and KC.
    NSString decomposedStringWithCanonicalMapping() const;
    NSString precomposedStringWithCanonicalMapping() const;
    NSString decomposedStringWithCompatibilityMapping() const;
    NSString precomposedStringWithCompatibilityMapping() const;

    // Each character that no URL may have as an escape of its bytes in the encoding; also % and #. Nil for what the
    // encoding cannot hold. In UTF-8 a byte of a file name that is no text goes as its escape.
    NSString stringByAddingPercentEscapesUsingEncoding_(NSStringEncoding encoding) const;
    // Nil for a % without two hexadecimal digits, and for bytes that are no text in the encoding.
    NSString stringByReplacingPercentEscapesUsingEncoding_(NSStringEncoding encoding) const;

    // Numbers at the start of the text: white space, a sign, digits; 0 when there are none; saturating. Reals have a
    // point, whatever the locale.
    int intValue() const;
    NSInteger integerValue() const;
    long long longLongValue() const;
    double doubleValue() const;
    float floatValue() const;
    // True for Y, y, T, t and 1 to 9 behind white space, a sign and zeros.
    bool boolValue() const;

    // Paths. Unicode is not normalised; only where said is the disk looked at. Appending and deleting leave single
    // slashes and none at the end. The components joined by slashes; elements that are not strings are left out. Nil
    // for nil.
    static NSString pathWithComponents_(NSArray const& components);
    // A path that begins with a tilde counts as absolute.
    bool isAbsolutePath() const;
    // "/" is a component at the start and, where the path ends with it, at the end.
    NSArray pathComponents() const;
    NSString lastPathComponent() const;
    NSString pathExtension() const;
    // Nil counts as the empty string.
    NSString stringByAppendingPathComponent_(NSString const& component) const;
    // Nil for an empty path, for "/" and for an extension that begins with a slash. A nil extension counts as empty.
    NSString stringByAppendingPathExtension_(NSString const& extension) const;
    NSString stringByDeletingLastPathComponent() const;
    NSString stringByDeletingPathExtension() const;
    // ~ is NSHomeDirectory(), ~name the folder of the user database; an unknown user stays as it is.
    NSString stringByExpandingTildeInPath() const;
    NSString stringByAbbreviatingWithTildeInPath() const;
    // Expands the tilde, removes empty and "." components, resolves ".." of absolute paths by name, and drops a leading
    // "/private" when what remains exists.
    NSString stringByStandardizingPath() const;
    // stringByStandardizingPath, with symbolic links of absolute paths followed as far as they exist.
    NSString stringByResolvingSymlinksInPath() const;
};

// Text that can be changed in place. One thread at a time. Nil arguments and places past the end raise as above, and
// then nothing has changed.
class NSMutableString : public Handle<NSMutableString, NSString> {
public:
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSMutableString string();
    static NSMutableString stringWithString_(NSString const& other);

    void appendString_(NSString const& other) const;
    template <class... Arguments>
    void appendFormat_(NSString const& format, Arguments const&... arguments) const {
        appendString_(NSString::stringWithFormat_(format, arguments...));
    }
    void setString_(NSString const& other) const;
    void insertString_atIndex_(NSString const& other, NSUInteger index) const;
    void deleteCharactersInRange_(NSRange range) const;
    void replaceCharactersInRange_withString_(NSRange range, NSString const& other) const;
    // The number of replacements.
    NSUInteger replaceOccurrencesOfString_withString_options_range_(NSString const& target, NSString const& replacement,
                                                                    NSUInteger options, NSRange range) const;
};

// The user's home folder without a slash at its end: HOME where it is an absolute path, else the user database's; "/"
// when neither tells.
NSString NSHomeDirectory();
// The name in the user database, else the user's number.
NSString NSUserName();

}
