#pragma once

#include <functional>

namespace mac::test {

// Runs the work on a thread of its own, which ends with it; there the system refuses every call of that number
// (SYS_fsync) with that error.
void withRefusedCall(long call, int errorNumber, std::function<void()> const& work);

// From now on the system refuses every call of that number on this thread, until the thread ends. For threads that a
// test starts itself.
void refuseCallOnThisThread(long call, int errorNumber);

} // namespace mac::test
