#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac::fuzz {

// Reads the bytes as a flat descriptor and makes a value of it; empty, or what does not hold of it.
std::string complaintAboutScriptDescriptor(std::span<std::byte const> bytes);

} // namespace mac::fuzz
