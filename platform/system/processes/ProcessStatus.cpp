#include "platform/system/processes/ProcessStatus.h"
#include <charconv>

namespace mac {

// Behind the name, which may hold any bytes, also parentheses, the fields are the state, then numbers. The start is the
// twentieth of these fields.
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
    // Only a blank or the line end shows that the number is complete.
    bool const isWhole = end != fields.data() + fields.size() && (*end == ' ' || *end == '\n');
    return error == std::errc() && isWhole ? std::optional(start) : std::nullopt;
}

} // namespace mac
