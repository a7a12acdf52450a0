#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac::fuzz {

// Each reads the bytes in one form. What is read must be the same in every mutability, and survive being written and
// read in both forms that can be written. Answers what did not hold; an empty text when all did, or when the bytes are
// no list of the form and the reader says why.
std::string complaintAboutXML(std::span<std::byte const> bytes);
std::string complaintAboutBinary(std::span<std::byte const> bytes);
std::string complaintAboutOldStyle(std::span<std::byte const> bytes);

} // namespace mac::fuzz
