#include "benchmarks/Timing.h"
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace benchmarks {

int startProgram(std::vector<std::string> words) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = -1;
    int const failure = ::posix_spawnp(&child, pointers[0], &actions, nullptr, pointers.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (failure == 0) return child;
    std::fprintf(stderr, "%s cannot be started\n", words[0].c_str());
    std::exit(1);
}

void runProgram(std::vector<std::string> const& words) {
    int status = -1;
    if (::waitpid(startProgram(words), &status, 0) >= 0 && status == 0) return;
    std::fprintf(stderr, "%s failed\n", words[0].c_str());
    std::exit(1);
}

} // namespace benchmarks
