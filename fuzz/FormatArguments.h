#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// The bytes are a line that chooses the arguments, and a format. What does not hold of them, or nothing.
std::string complaintAboutFormat(std::string_view bytes);

} // namespace mac::fuzz
