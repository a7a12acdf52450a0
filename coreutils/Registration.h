#pragma once

namespace mac {

// Add this room's operations to the framework's classes, so that they can be sent by selector. A second call changes
// nothing. Called before main, see platform/Registration.h.
void registerCoreUtils();
// Adds the operations of DisclaimerAndViews.h, which need windows.
void registerDisclaimerAndViews();

} // namespace mac
