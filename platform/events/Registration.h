#pragma once

namespace mac {

// Makes this room's classes known by name, hands in its hooks and prepares the event endpoint. A second call changes
// nothing. Called before main, see platform/foundation/Registration.h.
void registerEvents();

} // namespace mac
