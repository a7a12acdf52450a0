#pragma once

#include <string>
#include <string_view>

namespace mac {

// The text as one line of UTF-8 for a log or a terminal: line breaks, what else drives a terminal or turns the text
// around, marks of the writing direction too, and bytes of a file's name that are no text are written as a backslash
// and a code, as in C. A backslash of the text stays as it is: the line is for reading, not for making the text again
// from it. Any thread.
std::string visibleLine(std::u16string_view text);

} // namespace mac
