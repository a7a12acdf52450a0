#pragma once

#include <functional>
#include <span>
#include <vector>

namespace mac {

enum class SearchDirection { Forwards, Backwards };

// The places of a sequence in others, in time that grows with the length of what is searched alone: no element is
// looked at again. For implementations. REQUIRES: the sequence sought outlives the search and is not empty.
template <class Element, class Same = std::equal_to<>>
class LinearSearch {
public:
    explicit LinearSearch(std::span<Element const> sought, SearchDirection direction = SearchDirection::Forwards,
                          Same same = {})
        : m_sought(sought), m_direction(direction), m_same(std::move(same)), m_fallback(sought.size() + 1) {
        for (std::size_t end = 1, matched = 0; end < sought.size(); ++end) {
            matched = continued(matched, in(sought, end));
            m_fallback[end + 1] = matched;
        }
    }

    // Calls with each place in the order of the search, with those that overlap, until the action answers false.
    template <class Action>
    void forEachIn(std::span<Element const> text, Action const& action) const {
        std::size_t matched = 0;
        for (std::size_t step = 0; step < text.size(); ++step) {
            matched = continued(matched, in(text, step));
            if (matched < m_sought.size()) continue;
            std::size_t const reached = step + 1;
            bool const isBackwards = m_direction == SearchDirection::Backwards;
            if (!action(isBackwards ? text.size() - reached : reached - matched)) return;
            matched = m_fallback[matched];
        }
    }

private:
    Element const& in(std::span<Element const> text, std::size_t step) const {
        return text[m_direction == SearchDirection::Backwards ? text.size() - 1 - step : step];
    }

    // How much of the beginning is matched when the element follows.
    std::size_t continued(std::size_t matched, Element const& next) const {
        while (!m_same(next, in(m_sought, matched))) {
            if (matched == 0) return 0;
            matched = m_fallback[matched];
        }
        return matched + 1;
    }

    std::span<Element const> m_sought;
    SearchDirection m_direction;
    Same m_same;
    // For each length of a beginning that was found: the longest shorter one that it ends with.
    std::vector<std::size_t> m_fallback;
};

} // namespace mac
