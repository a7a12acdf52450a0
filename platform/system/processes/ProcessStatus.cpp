#include "platform/system/processes/ProcessStatus.h"
#include <charconv>

namespace mac {

// The fields behind the name, which may hold anything, also parentheses: state, then numbers. The start is the
// twentieth of them.
std::optional<std::uint64_t> startTimeIn(std::string_view status) {
    std::size_t const name = status.rfind(") ");
    if (name == std::string_view::npos || name + 2 >= status.size()) return std::nullopt;
    std::string_view fields = status.substr(name + 2);
    if (fields.front() == 'Z' || fields.front() == 'X') return std::nullopt;
    constexpr int fieldsBefore = 19;
    for (int field = 0; field < fieldsBefore; ++field) {
        std::size_t const blank = fields.find(' ');
        if (blank == std::string_view::npos) return std::nullopt;
        fields.remove_prefix(blank + 1);
    }
    std::uint64_t start = 0;
    auto const [end, error] = std::from_chars(fields.data(), fields.data() + fields.size(), start);
    // A number that goes on, or is cut off, is another one.
    bool const isWhole = end != fields.data() + fields.size() && (*end == ' ' || *end == '\n');
    return error == std::errc() && isWhole ? std::optional(start) : std::nullopt;
}

} // namespace mac
