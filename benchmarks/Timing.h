#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace benchmarks {

// By the clock on the wall.
template <class Function>
double secondsOf(Function const& function) {
    auto const start = std::chrono::steady_clock::now();
    function();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// By the time that this process has spent on the processors, in which other programs play no part.
double processorSecondsOf(std::function<void()> const& function);

// There must be at least one value.
inline double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

// Starts the program, which is looked for in PATH, with its output discarded, and returns its process ID. Ends this
// program with a message if it cannot be started: without it there is nothing to compare with.
int startProgram(std::vector<std::string> const& words);

// Runs the program to its end as startProgram() starts it; ends this program with a message also if it fails.
void runProgram(std::vector<std::string> const& words);

} // namespace benchmarks
