#pragma once

namespace mac::test {

// Runs the program's tests as its arguments ask for, with a temporary home folder and in the locale of the environment.
// Returns the program's exit status.
int runTests(int argc, char** argv);

} // namespace mac::test
