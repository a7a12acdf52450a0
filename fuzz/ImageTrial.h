#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac::fuzz {

// What is wrong when the bytes are taken for the contents of an image file, and for a family of icons; empty when
// nothing is.
std::string complaintAboutImage(std::span<std::byte const> bytes);

// What is wrong when the bytes are taken for an archived colour; empty when nothing is.
std::string complaintAboutArchivedColor(std::span<std::byte const> bytes);

} // namespace mac::fuzz
