#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac::fuzz {

// Reads the bytes as the file of a remembered walk, whatever their checksum, and as an index of folders alone, and goes
// through all that is in them. Answers what did not hold; an empty text when all did.
std::string complaintAboutRememberedWalk(std::span<std::byte const> bytes);

} // namespace mac::fuzz
