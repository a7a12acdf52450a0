#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// What is wrong when the text is read as the system's list of mounts, written and read again, and when the volumes in
// it are listed; empty when nothing is. Lines of another form are right as long as they are left out.
std::string complaintAboutMounts(std::string_view text);

} // namespace mac::fuzz
