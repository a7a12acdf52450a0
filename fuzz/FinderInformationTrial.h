#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac::fuzz {

// What is wrong when the bytes are taken for Finder information, for a resource fork with an icon in it, and for an
// icon; empty when nothing is.
std::string complaintAboutFinderInformation(std::span<std::byte const> bytes);

} // namespace mac::fuzz
