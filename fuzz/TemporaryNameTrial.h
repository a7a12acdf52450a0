#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// Reads the bytes as the name of an unfinished file: names of another form must be refused, and the state of the owner
// that a name tells must be known at once. What does not hold, or "".
std::string complaintAboutTemporaryName(std::string_view bytes);

} // namespace mac::fuzz
