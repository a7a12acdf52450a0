#pragma once

#include <vector>

namespace benchmarks {

// One start of a program that holds a probe: how long until the probe told its figure, and the figure.
struct StartUpRun {
    double seconds = 0;
    // The number that the program's probe printed.
    long answer = 0;
};

// Ends this program with a message when the other tells nothing.
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
