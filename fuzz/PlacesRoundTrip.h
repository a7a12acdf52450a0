#pragma once

#include "platform/desktop/places/PlacesFormat.h"
#include <string>
#include <string_view>

namespace mac::fuzz {

// Reads the text as a file of places, takes entries out, puts them back and adds one; answers what is wrong, or an
// empty text.
std::string complaintAboutPlaces(PlacesFormat const& format, std::string_view text);

} // namespace mac::fuzz
