#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac::fuzz {

// Reads the bytes as a value of each class that files hold, the first byte chooses which; empty, or what does not hold
// of it.
std::string complaintAboutStoredValue(std::span<std::byte const> bytes);

} // namespace mac::fuzz
