#pragma once

namespace mac {

// Makes this room's classes known by name. Every program calls it once before main (cmake/Registration.cmake).
void registerPreferences();

} // namespace mac
