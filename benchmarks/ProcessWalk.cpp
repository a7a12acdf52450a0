#include "platform/foundation/NSDictionary.h"
#include "platform/processes/Processes.h"
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// The walk through the processes against `ps -e`, which a user would run instead, with 2,000 processes more than there
// are. Each round does both, one after the other; the ratios are of the medians.

namespace {

using namespace mac;

constexpr int Processes = 2000;
constexpr int Rounds = 9;

pid_t spawned(std::vector<std::string> words, bool isSilent) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    if (isSilent) ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", 1, 0);
    pid_t child = -1;
    if (::posix_spawnp(&child, pointers[0], &actions, nullptr, pointers.data(), environ) != 0) child = -1;
    ::posix_spawn_file_actions_destroy(&actions);
    return child;
}

template <class Function>
double milliseconds(Function const& function) {
    auto const start = std::chrono::steady_clock::now();
    function();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

void runPS() {
    pid_t const child = spawned({"ps", "-e"}, true);
    int status = -1;
    if (child < 0 || ::waitpid(child, &status, 0) < 0 || status != 0) {
        std::fputs("ps cannot be run\n", stderr);
        std::exit(1);
    }
}

std::size_t numbers() {
    std::size_t count = 0;
    ProcessSerialNumber psn{0, kNoProcess};
    while (GetNextProcess(&psn) == noErr)
        ++count;
    return count;
}

std::size_t information() {
    std::size_t count = 0;
    ProcessSerialNumber psn{0, kNoProcess};
    while (GetNextProcess(&psn) == noErr) {
        if (ProcessInformationCopyDictionary(&psn, kProcessDictionaryIncludeAllInformationMask) != nil) ++count;
    }
    return count;
}

} // namespace

int main() {
    std::vector<pid_t> children;
    children.reserve(Processes);
    for (int index = 0; index < Processes; ++index)
        children.push_back(spawned({"sleep", "3600"}, true));

    std::size_t found = 0;
    double const first = milliseconds([&] { found = information(); });
    std::vector<double> ps;
    std::vector<double> serialNumbers;
    std::vector<double> dictionaries;
    for (int round = 0; round < Rounds; ++round) {
        ps.push_back(milliseconds([] { runPS(); }));
        serialNumbers.push_back(milliseconds([&] { found = std::min(found, numbers()); }));
        dictionaries.push_back(milliseconds([&] { found = std::min(found, information()); }));
    }
    for (pid_t const child : children) {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }

    if (found < Processes) {
        std::fprintf(stderr, "only %zu processes were found\n", found);
        return 1;
    }
    double const program = median(ps);
    std::printf("ps -e                                  %8.2f ms\n", program);
    std::printf("walk, serial numbers                   %8.2f ms, %5.2f times faster\n", median(serialNumbers),
                program / median(serialNumbers));
    std::printf("walk, information of each              %8.2f ms, %5.2f times faster\n", median(dictionaries),
                program / median(dictionaries));
    std::printf("the same for the first time            %8.2f ms, %5.2f times faster\n", first, program / first);
    return 0;
}
