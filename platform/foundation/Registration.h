#pragma once

namespace mac {

// Makes this room's classes known by name and prepares the main run loop. A second call changes nothing. Every program
// calls it once before main, in the source that CMake writes for it (cmake/Registration.cmake).
void registerFoundation();

} // namespace mac
