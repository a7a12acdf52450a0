#pragma once

namespace mac {

// Make the classes of this folder's libraries known by name. A second call changes nothing. Called before main, see
// platform/foundation/Registration.h.
void registerViews();
void registerArrangement();
void registerAppKit();
void registerWorkspace();

} // namespace mac
