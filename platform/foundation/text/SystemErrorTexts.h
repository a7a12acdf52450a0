#pragma once

#include "platform/foundation/text/NSString.h"
#include "platform/system/SystemError.h"

namespace mac {

// Errors of the system for people, in the language of the loaded catalogue. What logs, scripts and other programs read
// is textOfSystemError, which is in English everywhere. Any thread.

// "Permission denied"; in English if no catalogue is loaded or the catalogue lacks it.
NSString localizedSystemError(int code);
// What was tried, on what, and why it failed, as SystemError::text() has it.
NSString localizedSystemError(SystemError const& error);

} // namespace mac
