#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// The bytes are a number format, a line feed and a text to read numbers from. What does not hold of them, or nothing.
std::string complaintAboutNumbers(std::string_view bytes);

} // namespace mac::fuzz
