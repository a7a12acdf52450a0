#include "fuzz/Trials.h"
#include "platform/system/processes/ProcessStatus.h"

namespace mac::fuzz {

std::string complaintAboutProcessStatus(std::string_view text) {
    std::optional<std::uint64_t> const start = startTimeIn(text);
    if (start && text.find(std::to_string(*start)) == std::string_view::npos) return "a start that the line lacks";
    std::string line = "12 (";
    line.append(text).append(") S 1 12 12 0 -1 4194560 7 0 0 0 1 2 0 0 20 0 1 0 4711 2994176\n");
    return startTimeIn(line) == 4711 ? "" : "a name decides what the start is";
}

} // namespace mac::fuzz
