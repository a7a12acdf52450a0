#pragma once

namespace mac {

// Adds this room's operations to the framework's classes, so that they can be sent by selector. A second call changes
// nothing. Called before main, see platform/Registration.h.
void registerPathUtils();

} // namespace mac
