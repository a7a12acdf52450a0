#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// Reads the bytes as an autostart entry, as its command line and as a shell's text. Answers what is wrong with the
// outcome; empty if nothing is.
std::string complaintAboutAutostart(std::string_view bytes);

} // namespace mac::fuzz
