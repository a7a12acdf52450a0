#pragma once

#include "platform/foundation/objects/Types.h"
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace mac {

// A place in a text; for implementations.
struct TextPlace {
    std::size_t start;
    std::size_t end;
};

// The first place of the text sought in the order of the search, as NSStringCompareOptions ask for; what lies far
// behind it is not looked at.
std::optional<TextPlace> placeOfText(std::u16string_view text, std::u16string_view sought, NSUInteger options);

// All places of the text sought in the order of the search, as NSStringCompareOptions ask for; they do not overlap.
// An anchored search goes on where the last place ended.
std::vector<TextPlace> placesOfText(std::u16string_view text, std::u16string_view sought, NSUInteger options);

// The text with those places replaced.
std::u16string withPlacesReplaced(std::u16string_view text, std::vector<TextPlace> const& places,
                                  std::u16string_view replacement);

} // namespace mac
