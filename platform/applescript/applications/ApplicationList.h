#pragma once

#include "platform/applescript/runtime/Application.h"

namespace mac::applescript {

// The applications that this engine itself is; each one object.
Application& finderApplication();
Application& systemEventsApplication();
Application& systemPreferencesApplication();

// A program of this computer by name or identifier; null if no such program is installed. Answered anew each time, and
// the same object for the same program.
Application* programNamed(std::u16string_view name);
Application* programIdentified(std::u16string_view identifier);

} // namespace mac::applescript
