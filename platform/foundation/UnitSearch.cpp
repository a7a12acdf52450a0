#include "platform/foundation/UnitSearch.h"

namespace mac {

namespace {

constexpr std::size_t ShortText = 8;

} // namespace

UnitSearch::UnitSearch(std::u16string_view sought) : m_sought(sought) {
    if (sought.size() <= ShortText) return;
    m_fallback.resize(sought.size() + 1);
    for (std::size_t end = 1, matched = 0; end < sought.size(); ++end) {
        while (matched > 0 && sought[end] != sought[matched])
            matched = m_fallback[matched];
        if (sought[end] == sought[matched]) ++matched;
        m_fallback[end + 1] = matched;
    }
}

std::size_t UnitSearch::findIn(std::u16string_view text, std::size_t start) const {
    if (m_sought.empty()) return std::u16string_view::npos;
    if (m_fallback.empty()) return text.find(m_sought, start);
    for (std::size_t index = start, matched = 0; index < text.size(); ++index) {
        while (matched > 0 && text[index] != m_sought[matched])
            matched = m_fallback[matched];
        if (text[index] == m_sought[matched]) ++matched;
        if (matched == m_sought.size()) return index + 1 - matched;
    }
    return std::u16string_view::npos;
}

} // namespace mac
