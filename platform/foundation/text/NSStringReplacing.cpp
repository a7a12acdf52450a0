#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/StringBody.h"
#include "platform/foundation/text/TextSearch.h"
#include <algorithm>

namespace mac {

std::u16string withPlacesReplaced(std::u16string_view text, std::vector<TextPlace> const& places,
                                  std::u16string_view replacement) {
    std::size_t replaced = 0;
    for (TextPlace const& place : places)
        replaced += place.end - place.start;
    std::u16string result;
    result.reserve(text.size() - replaced + places.size() * replacement.size());
    std::size_t copied = 0;
    auto const append = [&](TextPlace const& place) {
        result.append(text.substr(copied, place.start - copied)).append(replacement);
        copied = place.end;
    };
    bool const isBackwards = places.size() > 1 && places.back().start < places.front().start;
    if (isBackwards)
        std::for_each(places.rbegin(), places.rend(), append);
    else
        std::ranges::for_each(places, append);
    return result.append(text.substr(copied));
}

NSString NSString::stringByReplacingOccurrencesOfString_withString_(NSString const& target,
                                                                    NSString const& replacement) const {
    return stringByReplacingOccurrencesOfString_withString_options_range_(target, replacement, 0, {0, length()});
}

NSString NSString::stringByReplacingOccurrencesOfString_withString_options_range_(NSString const& target,
                                                                                  NSString const& replacement,
                                                                                  NSUInteger options,
                                                                                  NSRange range) const {
    if (*this == nil) return nil;
    NSMutableString const text = NSMutableString::stringWithString_(*this);
    text.replaceOccurrencesOfString_withString_options_range_(target, replacement, options, range);
    return uncheckedCast<NSString>(text.copy());
}

NSString NSString::stringByReplacingCharactersInRange_withString_(NSRange range, NSString const& replacement) const {
    if (*this == nil) return nil;
    requireArgument(replacement, "stringByReplacingCharactersInRange:withString:");
    std::u16string_view const text = codeUnits();
    checkRange(range, text.size(), "stringByReplacingCharactersInRange:withString:");
    return makeString(withPlacesReplaced(text, {{range.location, std::size_t{range.location} + range.length}},
                                         replacement.codeUnits()));
}

NSUInteger NSMutableString::replaceOccurrencesOfString_withString_options_range_(NSString const& target,
                                                                                 NSString const& replacement,
                                                                                 NSUInteger options,
                                                                                 NSRange range) const {
    constexpr char const* message = "replaceOccurrencesOfString:withString:options:range:";
    if (*this == nil) return 0;
    requireArgument(target, message);
    requireArgument(replacement, message);
    checkRange(range, codeUnits().size(), message);
    std::u16string_view const part = codeUnits().substr(range.location, range.length);
    std::vector<TextPlace> const places = placesOfText(part, target.codeUnits(), options);
    // Made before the text changes: the replacement may be this very text.
    std::u16string const result = withPlacesReplaced(part, places, replacement.codeUnits());
    bodyOf(*this)->mutableUnits().replace(range.location, range.length, result);
    return static_cast<NSUInteger>(places.size());
}

} // namespace mac
