#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// Reads the bytes as dates, as people and as other programs write them: a date that is written and read again must be
// the same. What does not hold, or "".
std::string complaintAboutDateText(std::string_view bytes);

} // namespace mac::fuzz
