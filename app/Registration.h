#pragma once

namespace framekeeper {

// Both make the program's classes known by name: the main interface file finds the controller so. A second call changes
// nothing. Called before main, see platform/foundation/Registration.h.
//
// For a program without windows.
void registerController();
// For one with a window: the controller has its outlets as well (Outlets.h).
void registerApp();

} // namespace framekeeper
