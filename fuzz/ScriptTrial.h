#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// Compiles and runs the script as far as it only computes, within bounds. Answers what is wrong with how it ended;
// nothing when it has a value or a proper error.
std::string complaintAboutScript(std::string_view bytes);

} // namespace mac::fuzz
