#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// Reads the two lines of the bytes as versions of bundles: a version that was trimmed must be the same version, and the
// order must be one. What does not hold, or "".
std::string complaintAboutVersion(std::string_view bytes);

} // namespace mac::fuzz
