#pragma once

#include <chrono>
#include <string_view>

namespace mac {

// Whether the message bus at the address greets a client in time. The toolkit's own connecting knows no time-out of the
// caller's, and holds up all its other connections while a stopped bus keeps silent. True where that cannot be told:
// for an address that is no local socket, and without one that can be connected to, which fails at once. Any thread.
bool doesBusAnswer(std::string_view address, std::chrono::milliseconds longest);

} // namespace mac
