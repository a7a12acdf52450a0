#pragma once

#include <functional>
#include <optional>

namespace mac::test {

// How many system calls the function makes, those for memory apart, counted in a traced copy of this process: what it
// changes in memory is lost, and its files are those of the copy. The copy runs `before` first, whose calls are not
// counted. nullopt where tracing is not allowed, or if the copy ends by a signal.
std::optional<unsigned> systemCallsOf(
    std::function<void()> const& function, std::function<void()> const& before = [] {});

} // namespace mac::test
