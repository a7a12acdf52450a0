#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac::fuzz {

// The bytes are put into an attribute of the file and read as a property list. A list that is read must be written into
// another attribute and be the same there. Answers what did not hold; empty when all did.
std::string complaintAboutAttributeList(std::string const& file, std::span<std::byte const> bytes);

} // namespace mac::fuzz
