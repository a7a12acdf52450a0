#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac::fuzz {

// Reads the bytes as what a trash tells of an item and as its sizes, and what it writes of them once more; says what is
// wrong, or nothing.
std::string complaintAboutTrashInformation(std::span<std::byte const> bytes);

} // namespace mac::fuzz
