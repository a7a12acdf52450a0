#pragma once

#include "platform/system/Result.h"
#include <string_view>

// A command's standard streams, and the signals that ask it to end. Main thread.

namespace mac {

enum class StandardStream { Input, Output, Errors };

bool isTerminal(StandardStream stream);

// Writes all of the bytes, as they are. A full disk and a closed pipe are problems (see prepareStandardStreams).
Result<void> writeTo(StandardStream stream, std::string_view bytes);

// Opens each stream that the process was started without, so that using it fails; otherwise the next file opened would
// take its number.
void openMissingStreams();
// Does what openMissingStreams does. From now on, writing to a pipe without reader fails instead of ending the process.
void prepareStandardStreams();

// From now on the signals INT, TERM and HUP do not end the process but are remembered, so that a running operation is
// finished first.
void holdInterruptions();
// The number of the last signal that was held; 0 if there was none.
int heldInterruption();

} // namespace mac
