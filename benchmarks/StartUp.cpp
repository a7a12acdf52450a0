#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// From the start of the program to its window's first painting, offscreen, compared with a bare window that holds a
// table: pairs of runs, in turn. Prints the medians and their ratio, of the time and of the memory held.
//
// usage: start_up BARE_PROGRAM PROGRAM

namespace {

struct Run {
    double seconds;
    long kilobytes;
};

Run startUp(char const* program) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) std::exit(1);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_addclose(&actions, ends[0]);
    std::string name = program;
    std::array<char*, 2> arguments{name.data(), nullptr};
    auto const start = std::chrono::steady_clock::now();
    pid_t child = 0;
    if (::posix_spawn(&child, program, &actions, nullptr, arguments.data(), ::environ) != 0) {
        std::perror(program);
        std::exit(1);
    }
    ::close(ends[1]);
    std::array<char, 32> answer{};
    ssize_t const length = ::read(ends[0], answer.data(), answer.size() - 1);
    std::chrono::duration<double> const time = std::chrono::steady_clock::now() - start;
    ::close(ends[0]);
    ::waitpid(child, nullptr, 0);
    ::posix_spawn_file_actions_destroy(&actions);
    if (length <= 0) {
        std::fprintf(stderr, "%s showed no window\n", program);
        std::exit(1);
    }
    return {time.count(), std::atol(answer.data())};
}

template <class Value>
Value median(std::vector<Value> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

struct Medians {
    std::vector<double> seconds;
    std::vector<long> kilobytes;

    void add(Run const& run) {
        seconds.push_back(run.seconds);
        kilobytes.push_back(run.kilobytes);
    }
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: start_up BARE_PROGRAM PROGRAM\n");
        return 2;
    }
    constexpr int pairs = 25;
    // Nothing to search: the walk has a benchmark of its own.
    std::string folder = "/tmp/framekeeper-start-up-XXXXXX";
    if (!::mkdtemp(folder.data())) return 1;
    for (char const* const name : {"HOME", "FRAMEKEEPER_LOCAL_COMPUTER"})
        ::setenv(name, folder.c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    startUp(argv[1]);
    startUp(argv[2]);
    Medians bare;
    Medians program;
    for (int pair = 0; pair < pairs; ++pair) {
        bare.add(startUp(argv[1]));
        program.add(startUp(argv[2]));
    }
    ::rmdir(folder.c_str());
    std::printf("start to window: bare %.1f ms, program %.1f ms, ratio %.2f (at most 1.5)\n",
                1000 * median(bare.seconds), 1000 * median(program.seconds),
                median(program.seconds) / median(bare.seconds));
    std::printf("memory then:     bare %.1f MB, program %.1f MB, ratio %.2f (at most 1.5)\n",
                static_cast<double>(median(bare.kilobytes)) / 1024,
                static_cast<double>(median(program.kilobytes)) / 1024,
                static_cast<double>(median(program.kilobytes)) / static_cast<double>(median(bare.kilobytes)));
}
