#include "platform/foundation/text/UnitSearch.h"

namespace mac {

UnitSearch::UnitSearch(std::u16string_view sought, SearchDirection direction)
    : m_sought(sought), m_direction(direction) {
    constexpr std::size_t shortText = 8;
    if (sought.size() > shortText) m_search.emplace(std::span(sought.data(), sought.size()), direction);
}

std::size_t UnitSearch::findIn(std::u16string_view text) const {
    if (m_sought.empty()) return std::u16string_view::npos;
    if (!m_search) return m_direction == SearchDirection::Backwards ? text.rfind(m_sought) : text.find(m_sought);
    std::size_t found = std::u16string_view::npos;
    m_search->forEachIn({text.data(), text.size()}, [&](std::size_t place) {
        found = place;
        return false;
    });
    return found;
}

} // namespace mac
