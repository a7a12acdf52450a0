#pragma once

#include <cstdint>

namespace mac::applescript {

// A place in a source or another text, in UTF-16 code units; the end is the first one after.
struct SourceRange {
    std::uint32_t start{0};
    std::uint32_t end{0};
};

} // namespace mac::applescript
