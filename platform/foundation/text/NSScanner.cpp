#include "platform/foundation/text/NSScanner.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/StringBody.h"
#include "platform/foundation/text/TextSearch.h"
#include "platform/foundation/urls/URLParts.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <limits>

namespace mac {

class NSScanner::Body : public ObjectBody {
public:
    explicit Body(NSString string) : m_string(std::move(string)) {}

    std::u16string_view rest() const { return m_string.codeUnits().substr(m_location); }
    // What is left behind what is skipped.
    std::u16string_view restBehindSkipped() const {
        std::u16string_view text = rest();
        while (!text.empty() && m_skipped.longCharacterIsMember_(codePointAt(text, 0)))
            text.remove_prefix(unitCount(codePointAt(text, 0)));
        return text;
    }
    // Everything up to the front of what is left has been read.
    void goTo(std::u16string_view left) { m_location = m_string.codeUnits().size() - left.size(); }

    NSString m_string;
    std::size_t m_location{0};
    NSCharacterSet m_skipped{NSCharacterSet::whitespaceAndNewlineCharacterSet()};
    bool m_isCaseSensitive{false};
};

namespace {

std::size_t leadingDigitCount(std::u16string_view text) {
    return static_cast<std::size_t>(std::ranges::find_if_not(text, isASCIIDigit) - text.begin());
}

std::size_t signCount(std::u16string_view text) { return text.starts_with(u'-') || text.starts_with(u'+') ? 1 : 0; }

// The code units of the number at the front of the text; 0 for none.
std::size_t integerLength(std::u16string_view text) {
    std::size_t const sign = signCount(text);
    std::size_t const digits = leadingDigitCount(text.substr(sign));
    return digits == 0 ? 0 : sign + digits;
}

std::size_t realLength(std::u16string_view text) {
    std::size_t length = signCount(text);
    std::size_t const whole = leadingDigitCount(text.substr(length));
    length += whole;
    std::size_t fraction = 0;
    if (text.substr(length).starts_with(u'.')) {
        fraction = leadingDigitCount(text.substr(length + 1));
        length += 1 + fraction;
    }
    if (whole + fraction == 0) return 0;
    std::u16string_view const exponent = text.substr(length);
    if (!exponent.starts_with(u'e') && !exponent.starts_with(u'E')) return length;
    std::size_t const exponentLength = integerLength(exponent.substr(1));
    return exponentLength == 0 ? length : length + 1 + exponentLength;
}

// Reads the number at the front by the string's own method.
template <class Number, class Read>
bool scanNumber(NSScanner::Body* body, Number* value, std::size_t (*lengthOf)(std::u16string_view), Read const& read) {
    if (!body) return false;
    std::u16string_view const text = body->restBehindSkipped();
    std::size_t const length = lengthOf(text);
    if (length == 0) return false;
    if (value) *value = read(NSString::stringWithCodeUnits(text.substr(0, length)));
    body->goTo(text.substr(length));
    return true;
}

// What has been read: the front of the text.
bool take(NSScanner::Body& body, std::u16string_view text, std::size_t length, NSString* value) {
    if (length == 0) return false;
    if (value) *value = NSString::stringWithCodeUnits(text.substr(0, length));
    body.goTo(text.substr(length));
    return true;
}

// The code units at the front whose characters belong to the set, or do not.
std::size_t spanOf(std::u16string_view text, NSCharacterSet const& set, bool belong) {
    std::size_t length = 0;
    while (length < text.size() && set.longCharacterIsMember_(codePointAt(text, length)) == belong)
        length += unitCount(codePointAt(text, length));
    return length;
}

NSUInteger searchOptions(NSScanner::Body const& body) {
    return body.m_isCaseSensitive ? NSUInteger{0} : NSUInteger{NSCaseInsensitiveSearch};
}

} // namespace

ClassDescription NSScanner::describeClass() {
    return {
        .name = "NSScanner",
        .superclass = classOf<NSObject>(),
        .methods = {method<&NSScanner::string>("string"), method<&NSScanner::scanLocation>("scanLocation"),
                    method<&NSScanner::isAtEnd>("isAtEnd")},
    };
}

NSScanner NSScanner::scannerWithString_(NSString const& string) {
    requireArgument(string, "scannerWithString:");
    return adopt<NSScanner>(uncheckedCast<NSString>(string.copy()));
}

NSString NSScanner::string() const { return *this == nil ? NSString(nil) : bodyOf(*this)->m_string; }

void NSScanner::setScanLocation_(NSUInteger location) const {
    if (*this == nil) return;
    checkRange({location, 0}, bodyOf(*this)->m_string.length(), "setScanLocation:");
    bodyOf(*this)->m_location = location;
}

NSUInteger NSScanner::scanLocation() const {
    return *this == nil ? 0 : static_cast<NSUInteger>(bodyOf(*this)->m_location);
}

bool NSScanner::isAtEnd() const { return *this == nil || bodyOf(*this)->restBehindSkipped().empty(); }

NSCharacterSet NSScanner::charactersToBeSkipped() const {
    return *this == nil ? NSCharacterSet(nil) : bodyOf(*this)->m_skipped;
}

void NSScanner::setCharactersToBeSkipped_(NSCharacterSet const& characters) const {
    if (*this != nil) bodyOf(*this)->m_skipped = uncheckedCast<NSCharacterSet>(characters.copy());
}

bool NSScanner::caseSensitive() const { return *this != nil && bodyOf(*this)->m_isCaseSensitive; }

void NSScanner::setCaseSensitive_(BOOL isCaseSensitive) const {
    if (*this != nil) bodyOf(*this)->m_isCaseSensitive = static_cast<bool>(isCaseSensitive);
}

bool NSScanner::scanInt_(int* value) const {
    return scanNumber(bodyOf(*this), value, integerLength, [](NSString const& text) { return text.intValue(); });
}

bool NSScanner::scanInteger_(NSInteger* value) const {
    return scanNumber(bodyOf(*this), value, integerLength, [](NSString const& text) { return text.integerValue(); });
}

bool NSScanner::scanLongLong_(long long* value) const {
    return scanNumber(bodyOf(*this), value, integerLength, [](NSString const& text) { return text.longLongValue(); });
}

bool NSScanner::scanHexInt_(unsigned* value) const {
    if (*this == nil) return false;
    std::u16string_view text = bodyOf(*this)->restBehindSkipped();
    bool const hasPrefix = text.starts_with(u"0x") || text.starts_with(u"0X");
    if (hasPrefix && text.size() > 2 && hexadecimalValue(text[2])) text.remove_prefix(2);
    std::uint64_t number = 0;
    std::size_t length = 0;
    for (; length < text.size() && hexadecimalValue(text[length]); ++length)
        number = std::min<std::uint64_t>(number * 16 + *hexadecimalValue(text[length]), UINT32_MAX);
    if (length == 0) return false;
    if (value) *value = static_cast<unsigned>(number);
    bodyOf(*this)->goTo(text.substr(length));
    return true;
}

bool NSScanner::scanFloat_(float* value) const {
    return scanNumber(bodyOf(*this), value, realLength, [](NSString const& text) { return text.floatValue(); });
}

bool NSScanner::scanDouble_(double* value) const {
    return scanNumber(bodyOf(*this), value, realLength, [](NSString const& text) { return text.doubleValue(); });
}

bool NSScanner::scanString_intoString_(NSString const& string, NSString* value) const {
    if (*this == nil) return false;
    requireArgument(string, "scanString:intoString:");
    Body& body = *bodyOf(*this);
    std::u16string_view const text = body.restBehindSkipped();
    std::optional<TextPlace> const found =
        placeOfText(text, string.codeUnits(), searchOptions(body) | NSAnchoredSearch);
    return take(body, text, found ? found->end : 0, value);
}

bool NSScanner::scanUpToString_intoString_(NSString const& string, NSString* value) const {
    if (*this == nil) return false;
    requireArgument(string, "scanUpToString:intoString:");
    Body& body = *bodyOf(*this);
    std::u16string_view const text = body.restBehindSkipped();
    std::optional<TextPlace> const found = placeOfText(text, string.codeUnits(), searchOptions(body));
    return take(body, text, found ? found->start : text.size(), value);
}

bool NSScanner::scanCharactersFromSet_intoString_(NSCharacterSet const& set, NSString* value) const {
    if (*this == nil) return false;
    requireArgument(set, "scanCharactersFromSet:intoString:");
    std::u16string_view const text = bodyOf(*this)->restBehindSkipped();
    return take(*bodyOf(*this), text, spanOf(text, set, true), value);
}

bool NSScanner::scanUpToCharactersFromSet_intoString_(NSCharacterSet const& set, NSString* value) const {
    if (*this == nil) return false;
    requireArgument(set, "scanUpToCharactersFromSet:intoString:");
    std::u16string_view const text = bodyOf(*this)->restBehindSkipped();
    return take(*bodyOf(*this), text, spanOf(text, set, false), value);
}

} // namespace mac
