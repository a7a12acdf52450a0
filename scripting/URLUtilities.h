#pragma once

#include "platform/foundation/NSURL.h"

namespace mac {

// The components of a URL as it was written, without its base, by their numbers: 1 scheme, 2 net location, 3 path,
// 4 resource specifier, 5 user, 6 password, 7 user info, 8 host, 9 port, 10 parameter string, 11 query, 12 fragment.
// Any thread. A nil receiver answers nil and logs nothing.

// The component without what separates it, with its percent escapes; an empty path is the empty string. Nil where the
// URL has no such component, and for a number that is none.
NSString pxComponent_(NSURL receiver, std::int32_t component);
// The same, with a log line that shows it with and without what separates it; for one that is absent or empty nil, and
// a line that says so. A number that is none raises NSRangeException.
NSString pxDisplayComponent_(NSURL receiver, std::int32_t component);
// Logs what the URL answers for each of its parts, a line each.
void pxDisplayComponents(NSURL receiver);

} // namespace mac
