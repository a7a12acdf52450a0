#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/NSCharacterSet.h"
#include "platform/foundation/text/StringBody.h"

namespace mac {

namespace {

// The code units of the character at the front, or at the end; two for a pair.
std::size_t unitsOfFirst(std::u16string_view text) { return unitCount(codePointAt(text, 0)); }

std::size_t unitsOfLast(std::u16string_view text) {
    bool const isPair = text.size() > 1 && isLowSurrogate(text.back()) && isHighSurrogate(text[text.size() - 2]);
    return isPair ? 2 : 1;
}

bool beginsWithMember(std::u16string_view text, NSCharacterSet const& set) {
    return set.longCharacterIsMember_(codePointAt(text, 0));
}

bool endsWithMember(std::u16string_view text, NSCharacterSet const& set) {
    return beginsWithMember(text.substr(text.size() - unitsOfLast(text)), set);
}

NSRange rangeOfUnits(std::size_t location, std::size_t length) {
    return {static_cast<NSUInteger>(location), static_cast<NSUInteger>(length)};
}

// The first, or last, member in the text.
NSRange findMember(std::u16string_view text, NSCharacterSet const& set, NSUInteger options) {
    bool const isAnchored = (options & NSAnchoredSearch) != 0;
    if ((options & NSBackwardsSearch) != 0) {
        while (!text.empty() && !endsWithMember(text, set) && !isAnchored)
            text.remove_suffix(unitsOfLast(text));
        if (text.empty() || !endsWithMember(text, set)) return {NSNotFound, 0};
        std::size_t const length = unitsOfLast(text);
        return rangeOfUnits(text.size() - length, length);
    }
    std::u16string_view rest = text;
    while (!rest.empty() && !beginsWithMember(rest, set) && !isAnchored)
        rest.remove_prefix(unitsOfFirst(rest));
    if (rest.empty() || !beginsWithMember(rest, set)) return {NSNotFound, 0};
    return rangeOfUnits(text.size() - rest.size(), unitsOfFirst(rest));
}

} // namespace

NSRange NSString::rangeOfCharacterFromSet_(NSCharacterSet const& set) const {
    return rangeOfCharacterFromSet_options_range_(set, 0, {0, length()});
}

NSRange NSString::rangeOfCharacterFromSet_options_(NSCharacterSet const& set, NSUInteger options) const {
    return rangeOfCharacterFromSet_options_range_(set, options, {0, length()});
}

NSRange NSString::rangeOfCharacterFromSet_options_range_(NSCharacterSet const& set, NSUInteger options,
                                                         NSRange range) const {
    if (*this == nil) return {};
    requireArgument(set, "rangeOfCharacterFromSet:options:range:");
    checkRange(range, codeUnits().size(), "rangeOfCharacterFromSet:options:range:");
    NSRange const found = findMember(codeUnits().substr(range.location, range.length), set, options);
    if (found.location == NSNotFound) return found;
    return {range.location + found.location, found.length};
}

NSArray NSString::componentsSeparatedByCharactersInSet_(NSCharacterSet const& set) const {
    if (*this == nil) return nil;
    requireArgument(set, "componentsSeparatedByCharactersInSet:");
    std::vector<id> components;
    std::u16string_view rest = codeUnits();
    for (std::size_t end = 0; end < rest.size();) {
        std::size_t const length = unitsOfFirst(rest.substr(end));
        if (!beginsWithMember(rest.substr(end), set)) {
            end += length;
            continue;
        }
        components.push_back(stringWithCodeUnits(rest.substr(0, end)));
        rest.remove_prefix(end + length);
        end = 0;
    }
    components.push_back(stringWithCodeUnits(rest));
    return NSArray::arrayWithVector(std::move(components));
}

NSString NSString::stringByTrimmingCharactersInSet_(NSCharacterSet const& set) const {
    if (*this == nil) return nil;
    requireArgument(set, "stringByTrimmingCharactersInSet:");
    std::u16string_view text = codeUnits();
    while (!text.empty() && beginsWithMember(text, set))
        text.remove_prefix(unitsOfFirst(text));
    while (!text.empty() && endsWithMember(text, set))
        text.remove_suffix(unitsOfLast(text));
    return stringWithCodeUnits(text);
}

} // namespace mac
