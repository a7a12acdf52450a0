#pragma once

#include <string_view>
#include <vector>

namespace mac {

// The places of a text in others, code unit by code unit, in time that grows with the length of what is searched alone.
// For implementations. The text sought must outlive it.
class UnitSearch {
public:
    explicit UnitSearch(std::u16string_view sought);

    // The first place at or behind the start, npos when there is none or the text sought is empty.
    std::size_t findIn(std::u16string_view text, std::size_t start) const;

    // Calls with each place from left to right; places do not overlap.
    template <class Action>
    void forEachIn(std::u16string_view text, Action const& action) const {
        for (std::size_t place = findIn(text, 0); place != std::u16string_view::npos;
             place = findIn(text, place + m_sought.size()))
            action(place);
    }

private:
    std::u16string_view m_sought;
    // For each length of a beginning that was found: the longest shorter one that it ends with. Empty for a short text,
    // which is compared at every place.
    std::vector<std::size_t> m_fallback;
};

} // namespace mac
