#include "benchmarks/StartUpRun.h"

#include <cstdio>
#include <cstdlib>

namespace benchmarks {

void tellMemoryAndEnd() {
    long resident = 0;
    if (std::FILE* const file = std::fopen("/proc/self/smaps_rollup", "r")) {
        char line[256];
        while (std::fgets(line, sizeof line, file))
            std::sscanf(line, "Rss: %ld", &resident);
        std::fclose(file);
    }
    std::printf("%ld\n", resident);
    std::fflush(stdout);
    std::_Exit(0);
}

} // namespace benchmarks
