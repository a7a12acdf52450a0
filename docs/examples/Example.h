#pragma once

#include "platform/foundation/text/NSString.h"
#include <source_location>

// What the examples of the library's reference share: each is a function for one topic, which a test runs.

namespace examples {

// Writes the place to standard error and ends the program with status 1 if the condition does not hold.
void expect(bool condition, std::source_location const& place = std::source_location::current());

// For an empty folder that may be filled.
void showPathUtils(mac::NSString const& folder);
void showScripting(mac::NSString const& folder);
void showCoreUtils(mac::NSString const& folder);

} // namespace examples
