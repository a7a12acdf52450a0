#pragma once

namespace mac {

// Makes this room's classes known by name. A second call changes nothing. Called before main, see
// platform/foundation/Registration.h.
void registerSpotlight();

} // namespace mac
