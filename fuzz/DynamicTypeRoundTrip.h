#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// Reads the bytes as a dynamic type identifier, and makes one from them as a tag: both must come back as they were.
// What does not hold, or "".
std::string complaintAboutDynamicType(std::string_view bytes);

} // namespace mac::fuzz
