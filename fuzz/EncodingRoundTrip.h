#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// Reads the bytes behind the first one as text in the encoding that the first one chooses, as UTF-8, as a file name and
// as UTF-16 code units; each text must be the same after it was written and read again. What does not hold, or "".
std::string complaintAboutEncoding(std::string_view bytes);

} // namespace mac::fuzz
