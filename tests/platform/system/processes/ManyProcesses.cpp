#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// Starts as many processes as it is told, says how many there are, and ends them and itself at the next line of input.
int main(int argc, char** argv) {
    int const wanted = argc > 1 ? std::atoi(argv[1]) : 0;
    std::vector<pid_t> children;
    while (children.size() < static_cast<std::size_t>(wanted)) {
        pid_t const child = ::fork();
        if (child < 0) break;
        if (child > 0) {
            children.push_back(child);
            continue;
        }
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (;;)
            ::pause();
    }
    std::printf("%zu\n", children.size());
    std::fflush(stdout);
    char byte = 0;
    [[maybe_unused]] ssize_t const count = ::read(STDIN_FILENO, &byte, 1);
    for (pid_t const child : children)
        ::kill(child, SIGKILL);
    for (pid_t const child : children)
        ::waitpid(child, nullptr, 0);
    return 0;
}
