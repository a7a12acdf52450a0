#pragma once

#include "platform/foundation/text/LinearSearch.h"
#include <optional>
#include <span>
#include <string_view>

namespace mac {

// The places of a text in others, code unit by code unit, in time that grows with the length of what is searched alone.
// For implementations. The text sought must outlive it.
class UnitSearch {
public:
    explicit UnitSearch(std::u16string_view sought, SearchDirection direction = SearchDirection::Forwards)
        : m_sought(sought), m_direction(direction) {
        constexpr std::size_t shortText = 8;
        if (sought.size() > shortText) m_search.emplace(std::span(sought.data(), sought.size()), direction);
    }

    // The first place in the order of the search, npos when there is none or the text sought is empty.
    std::size_t findIn(std::u16string_view text) const {
        if (m_sought.empty()) return std::u16string_view::npos;
        if (!m_search) return m_direction == SearchDirection::Backwards ? text.rfind(m_sought) : text.find(m_sought);
        std::size_t found = std::u16string_view::npos;
        m_search->forEachIn({text.data(), text.size()}, [&](std::size_t place) {
            found = place;
            return false;
        });
        return found;
    }

    // Calls with each place in the order of the search; places do not overlap.
    template <class Action>
    void forEachIn(std::u16string_view text, Action const& action) const {
        bool const isBackwards = m_direction == SearchDirection::Backwards;
        std::size_t start = 0;
        for (std::size_t place = findIn(text); place != std::u16string_view::npos; place = findIn(text.substr(start))) {
            action(start + place);
            if (isBackwards)
                text = text.substr(0, place);
            else
                start += place + m_sought.size();
        }
    }

private:
    std::u16string_view m_sought;
    SearchDirection m_direction;
    // nullopt for a short text, which is compared at every place.
    std::optional<LinearSearch<char16_t>> m_search;
};

} // namespace mac
