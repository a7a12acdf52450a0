#pragma once

namespace framekeeper {

// Makes the program's classes known by name: the main interface file finds the controller so; and gives the
// controller its outlets of the window (Outlets.h). A second call changes nothing. Called before main, see
// platform/Registration.h.
void registerApp();

} // namespace framekeeper
