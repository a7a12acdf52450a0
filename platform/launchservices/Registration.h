#pragma once

namespace mac {

// Hands this room's hooks to the rooms below. A second call changes nothing. Called before main, see
// platform/foundation/Registration.h.
void registerLaunchServices();

} // namespace mac
