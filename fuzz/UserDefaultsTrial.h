#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac::fuzz {

// What is wrong when the bytes are the file of a domain of user defaults, and when they are arguments with NUL between
// them; empty if nothing is. A file that can be read keeps all its values when another one is added; any other file
// stays as it is.
std::string complaintAboutUserDefaults(std::span<std::byte const> bytes);

} // namespace mac::fuzz
