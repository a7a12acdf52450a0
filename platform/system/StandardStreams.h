#pragma once

#include "platform/system/Result.h"
#include <string_view>

// A command's standard streams, and the signals that ask it to end. Main thread.

namespace mac {

enum class StandardStream { Input, Output, Errors };

bool isTerminal(StandardStream stream);

// Writes all of the bytes, as they are. A full disk and a closed pipe are problems (see prepareStandardStreams).
Result<void> writeTo(StandardStream stream, std::string_view bytes);

// From now on writing into a pipe that nobody reads fails instead of ending the process. A stream that the process was
// started without is opened so that using it fails, since the next file opened would take its number otherwise.
void prepareStandardStreams();

// From now on the signals INT, TERM and HUP end nothing, but are remembered: what is under way is done first.
void holdInterruptions();
// The number of the last signal that was held; 0 if there was none.
int heldInterruption();

} // namespace mac
