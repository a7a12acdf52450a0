#include "benchmarks/Timing.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/processes/Processes.h"
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <sys/wait.h>
#include <vector>

// The walk through the processes against `ps -e`, which a user would run instead, with 2,000 processes more than there
// are. Each round does both, one after the other; the ratios are of the medians.

namespace {

using namespace mac;
using namespace benchmarks;

constexpr int Processes = 2000;
constexpr int Rounds = 9;

template <class Function>
double milliseconds(Function const& function) {
    return secondsOf(function) * 1e3;
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
    // Tried out before there are processes that would be left behind.
    runProgram({"ps", "-e"});
    std::vector<int> children;
    children.reserve(Processes);
    for (int index = 0; index < Processes; ++index)
        children.push_back(startProgram({"sleep", "3600"}));

    std::size_t found = 0;
    double const first = milliseconds([&] { found = information(); });
    std::vector<double> ps;
    std::vector<double> serialNumbers;
    std::vector<double> dictionaries;
    for (int round = 0; round < Rounds; ++round) {
        ps.push_back(milliseconds([] { runProgram({"ps", "-e"}); }));
        serialNumbers.push_back(milliseconds([&] { found = std::min(found, numbers()); }));
        dictionaries.push_back(milliseconds([&] { found = std::min(found, information()); }));
    }
    for (int const child : children) {
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
