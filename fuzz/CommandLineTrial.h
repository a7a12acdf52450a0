#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// Takes the bytes for the words that a process was called with, each ending with NUL, the first being its program: the
// script must be one of the words, and a bundle a part of its path. What does not hold, or "".
std::string complaintAboutCommandLine(std::string_view bytes);

} // namespace mac::fuzz
