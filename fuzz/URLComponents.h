#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// The bytes are a base URL, a line feed and a URL (or path) relative to it. What does not hold of them, or nothing.
std::string complaintAboutURL(std::string_view bytes);

} // namespace mac::fuzz
