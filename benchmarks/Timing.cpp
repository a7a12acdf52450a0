#include "benchmarks/Timing.h"
#include "tests/support/Commands.h"
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace benchmarks {

double processorSecondsOf(std::function<void()> const& function) {
    auto const now = [] {
        timespec time{};
        ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    };
    double const before = now();
    function();
    return now() - before;
}

int startProgram(std::vector<std::string> const& words) {
    int const nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    try {
        int const process = mac::test::spawn(words, -1, nowhere);
        ::close(nowhere);
        return process;
    } catch (std::system_error const& error) {
        std::fprintf(stderr, "%s\n", error.what());
        std::exit(1);
    }
}

void runProgram(std::vector<std::string> const& words) {
    int status = -1;
    if (::waitpid(startProgram(words), &status, 0) >= 0 && status == 0) return;
    std::fprintf(stderr, "%s failed\n", words[0].c_str());
    std::exit(1);
}

} // namespace benchmarks
