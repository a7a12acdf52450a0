#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace mac::applescript {

// Comparisons of text as `considering` and `ignoring` say; the bits are those of Considerations.
// Linux: the order is that of the root collation, so that a script's outcome does not change with the locale.

bool isEqualText(std::u16string_view one, std::u16string_view other, unsigned considered);
// Below, at or above 0.
int compareText(std::u16string_view one, std::u16string_view other, unsigned considered);

struct TextMatch {
    std::size_t start{0};
    std::size_t end{0};
};
// The first place from `from` on; whole characters only. Empty text is found nowhere.
std::optional<TextMatch> findText(std::u16string_view text, std::u16string_view sought, std::size_t from,
                                  unsigned considered);
// Empty text begins and ends every text, and every text contains it.
bool containsText(std::u16string_view text, std::u16string_view sought, unsigned considered);
bool beginsWithText(std::u16string_view text, std::u16string_view sought, unsigned considered);
bool endsWithText(std::u16string_view text, std::u16string_view sought, unsigned considered);

} // namespace mac::applescript
