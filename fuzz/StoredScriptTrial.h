#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac::fuzz {

// Reads the bytes as a stored script; empty, or what does not hold of it.
std::string complaintAboutStoredScript(std::span<std::byte const> bytes);

} // namespace mac::fuzz
