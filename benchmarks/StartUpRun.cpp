#include "benchmarks/StartUpRun.h"
#include "benchmarks/Timing.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace benchmarks {

StartUpRun startUp(char const* program) {
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
        std::fprintf(stderr, "%s ended before its probe could tell\n", program);
        std::exit(1);
    }
    char* rest = nullptr;
    long const first = std::strtol(answer.data(), &rest, 10);
    return {.seconds = time.count(), .answer = first, .secondAnswer = std::strtol(rest, nullptr, 10)};
}

void StartUpMedians::add(StartUpRun const& run) {
    m_seconds.push_back(run.seconds);
    m_kilobytes.push_back(static_cast<double>(run.answer));
}

double StartUpMedians::milliseconds() const { return median(m_seconds) * 1000; }

double StartUpMedians::megabytes() const { return median(m_kilobytes) / 1024; }

char const* useEmptyHome() {
    static std::string folder = "/tmp/framekeeper-start-up-XXXXXX";
    if (!::mkdtemp(folder.data())) std::exit(1);
    ::setenv("HOME", folder.c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    return folder.c_str();
}

} // namespace benchmarks
