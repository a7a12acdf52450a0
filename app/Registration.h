#pragma once

namespace framekeeper {

// Makes the program's classes known by name, by which the main interface file finds the controller, and gives the
// controller its outlets of the window (Outlets.h). A second call changes nothing. Called before main, see
// platform/Registration.h.
void registerApp();

} // namespace framekeeper
