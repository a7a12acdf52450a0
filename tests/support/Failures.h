#pragma once

#include "platform/system/Result.h"
#include <functional>
#include <optional>

// Failures of the system: how tests provoke them, count the places for them and read their codes.

namespace mac::test {

// Runs the work on a thread of its own, on which the system refuses every call of that number (SYS_fsync) with that
// error; returns when the work has ended.
void withRefusedCall(long call, int errorNumber, std::function<void()> const& work);

// Makes the system refuse every call of that number on this thread, until the thread ends. For threads that a test
// starts itself.
void refuseCallOnThisThread(long call, int errorNumber);

// How many system calls the function makes, except those for memory, counted in a traced copy of this process: what it
// changes in memory is lost, and its files are those of the copy. The copy runs `before` first, whose calls are not
// counted. nullopt if tracing is not allowed, or if the copy ends by a signal.
std::optional<unsigned> systemCallsOf(
    std::function<void()> const& function, std::function<void()> const& before = [] {});

// The system's error number of a failure; 0 on success.
inline int codeOf(Result<void> const& result) { return result.isDone() ? 0 : result.problem().code; }

template <class T>
int codeOf(Result<T> const& result) {
    return result.hasValue() ? 0 : result.problem().code;
}

} // namespace mac::test
