#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac::fuzz {

// Reads the bytes as an alias record, as they are and with the checksum that they ought to have, and writes what was
// read; says what is wrong, or nothing.
std::string complaintAboutAlias(std::span<std::byte const> bytes);

} // namespace mac::fuzz
