#pragma once

#include <vector>

// Programs that tell a figure of themselves and end, and what starts them.

namespace benchmarks {

// For the probe in a program: writes how much memory this process holds, in KiB, to standard output and ends it at
// once.
[[noreturn]] void tellMemoryAndEnd();

// One start of a program that holds a probe: how long until the probe told its figure, and the figure.
struct StartUpRun {
    double seconds = 0;
    // The number that the program's probe printed.
    long answer = 0;
    // A second number behind it; 0 if the probe printed one only.
    long secondAnswer = 0;
};

// Starts the program, which holds a probe, and waits for its figure. Ends this program with a message when the other
// tells nothing.
StartUpRun startUp(char const* program);

class StartUpMedians {
public:
    void add(StartUpRun const& run);
    double milliseconds() const;
    double megabytes() const;

private:
    std::vector<double> m_seconds;
    std::vector<double> m_kilobytes;
};

// Makes a folder of its own the home, and windows go nowhere. Answers the folder.
char const* useEmptyHome();

} // namespace benchmarks
