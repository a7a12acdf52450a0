#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac::fuzz {

// What is wrong when the first line is a file's name and the rest its contents, a type identifier, a MIME type or a
// desktop entry; empty when nothing is.
std::string complaintAboutContentType(std::span<std::byte const> bytes);

} // namespace mac::fuzz
