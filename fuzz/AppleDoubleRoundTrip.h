#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac::fuzz {

// What is wrong when the bytes are read as an AppleDouble file, written and read again; empty when nothing is. Bytes
// that are no such file are right as long as the reader says so.
std::string complaintAboutAppleDouble(std::span<std::byte const> bytes);

} // namespace mac::fuzz
