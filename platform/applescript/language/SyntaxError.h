#pragma once

#include "platform/applescript/language/SourceRange.h"
#include <string>

namespace mac::applescript {

// The first mistake in a source, thrown by the parser.
struct SyntaxError {
    std::int32_t number{0};
    std::u16string message{};
    SourceRange range{};
};

} // namespace mac::applescript
