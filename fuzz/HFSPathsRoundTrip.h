#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// What is wrong when the bytes are taken for a path of either kind, on a few volumes, and made one of the other kind
// and back; empty when nothing is.
std::string complaintAboutPaths(std::string_view bytes);

} // namespace mac::fuzz
