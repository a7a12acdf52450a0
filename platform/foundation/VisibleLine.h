#pragma once

#include <string>
#include <string_view>

namespace mac {

// The text as one line of UTF-8 for a log or a terminal: line breaks, what else drives a terminal or turns the text
// around, and bytes of a file's name that are no text are written as codes (\n, \x1b, \u202e). Any thread.
std::string visibleLine(std::u16string_view text);

} // namespace mac
