#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// Reads the text as a process's line and as the name in one. Answers what did not hold; an empty text when all did.
std::string complaintAboutProcessStatus(std::string_view text);

} // namespace mac::fuzz
