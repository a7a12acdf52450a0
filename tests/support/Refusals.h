#pragma once

#include <functional>

namespace mac::test {

// Each runs the work on a thread of its own, which ends with it.

// The system refuses every call of that number (SYS_fsync) with that error there.
void withRefusedCall(long call, int errorNumber, std::function<void()> const& work);

// Without the rights of root; as the user that it is where it is not root.
void withoutPrivileges(std::function<void()> const& work);

} // namespace mac::test
