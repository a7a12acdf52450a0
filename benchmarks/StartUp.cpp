#include "benchmarks/StartUpRun.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

using namespace benchmarks;

// From the start of the program to its window's first painting, offscreen, compared with a bare window that holds a
// table: pairs of runs, in turn. Prints the medians and their ratio, of the time and of the memory held.
//
// usage: start_up BARE_PROGRAM PROGRAM

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: start_up BARE_PROGRAM PROGRAM\n");
        return 2;
    }
    constexpr int pairs = 25;
    char const* const home = useEmptyHome();
    // Nothing to search: the walk has a benchmark of its own.
    ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", home, 1);
    startUp(argv[1]);
    startUp(argv[2]);
    StartUpMedians bare;
    StartUpMedians program;
    for (int pair = 0; pair < pairs; ++pair) {
        bare.add(startUp(argv[1]));
        program.add(startUp(argv[2]));
    }
    ::rmdir(home);
    std::printf("start to window: bare %.1f ms, program %.1f ms, ratio %.2f (at most 1.2)\n", bare.milliseconds(),
                program.milliseconds(), program.milliseconds() / bare.milliseconds());
    std::printf("memory then:     bare %.1f MB, program %.1f MB, ratio %.2f (at most 1.3)\n", bare.megabytes(),
                program.megabytes(), program.megabytes() / bare.megabytes());
}
