#include "platform/files/TrashNames.h"
#include <algorithm>

namespace mac {

namespace {

constexpr std::size_t LongestExtension = 16;

// With its dot. What holds a blank or no letter is rather a part of the name: "Notes v1.2", "Dr. No".
std::string_view extensionOf(std::string_view name) {
    std::size_t const dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return {};
    std::string_view const extension = name.substr(dot);
    bool const hasLetter = std::ranges::any_of(
        extension, [](char letter) { return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z'); });
    bool const isOne = extension.size() <= LongestExtension && hasLetter && extension.find(' ') == extension.npos;
    return isOne ? extension : std::string_view();
}

bool isInsideCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

std::string_view shortened(std::string_view text, std::size_t size) {
    if (text.size() <= size) return text;
    constexpr std::size_t longestCharacter = 4;
    for (std::size_t end = size; end > 0 && size - end < longestCharacter; --end) {
        if (!isInsideCharacter(text[end])) return text.substr(0, end);
    }
    // It is not UTF-8.
    return text.substr(0, size);
}

} // namespace

TrashNames::TrashNames(std::string_view name, std::string_view timeOfDay, std::size_t longest)
    : m_extension(extensionOf(name)), m_timeOfDay(timeOfDay), m_longest(longest) {
    m_base = name.substr(0, name.size() - m_extension.size());
}

std::string TrashNames::name(unsigned number) const {
    std::string end;
    if (number > 0) end = " " + m_timeOfDay;
    if (number > 1) end += " " + std::to_string(number);
    end += m_extension;
    std::string_view const base = shortened(m_base, m_longest - std::min(m_longest, end.size()));
    return std::string(base) + end;
}

} // namespace mac
