#include "benchmarks/Timing.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/processes/Processes.h"
#include "tests/support/ChildProcess.h"
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

// The walk through the processes with 100, 500 and 2,000 processes more than there are, against the plainest loop that
// reads the same from /proc, and against `ps -e`, which a user would run instead. Processor time, which does not depend
// on what else the computer does. Each round does all of them, one after the other; the ratios are of the medians.

namespace {

using namespace mac;
using namespace benchmarks;

constexpr int Rounds = 15;

double secondsIn(timeval const& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

double childrensSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    return secondsIn(usage.ru_utime) + secondsIn(usage.ru_stime);
}

double ownSeconds() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

double millisecondsOf(double (*clock)(), std::function<void()> const& function) {
    double const before = clock();
    function();
    return (clock() - before) * 1e3;
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

bool readsStart(int proc, std::string const& process) {
    std::array<char, 1024> line;
    int const file = ::openat(proc, (process + "/stat").c_str(), O_RDONLY | O_CLOEXEC);
    ssize_t const size = file < 0 ? -1 : ::read(file, line.data(), line.size());
    if (file >= 0) ::close(file);
    return size > 0;
}

// Lists /proc and reads the executable and the start of each process.
std::size_t plainLoop() {
    std::size_t count = 0;
    int const proc = ::open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    std::array<char, 32768> entries;
    std::array<char, 4096> executable;
    constexpr long lengthOffset = 16;
    constexpr long nameOffset = 19;
    long size = 0;
    while ((size = ::syscall(SYS_getdents64, proc, entries.data(), entries.size())) > 0) {
        std::uint16_t length = 0;
        for (long offset = 0; offset < size; offset += length) {
            std::memcpy(&length, entries.data() + offset + lengthOffset, sizeof length);
            char const* const name = entries.data() + offset + nameOffset;
            if (*name < '1' || *name > '9') continue;
            std::string const process = name;
            if (::readlinkat(proc, (process + "/exe").c_str(), executable.data(), executable.size()) > 0 &&
                readsStart(proc, process))
                ++count;
        }
    }
    ::close(proc);
    return count;
}

struct Times {
    std::vector<double> plain{};
    std::vector<double> serialNumbers{};
    std::vector<double> dictionaries{};
    std::vector<double> ps{};
};

void print(char const* what, std::vector<double> const& times, Times const& all) {
    double const time = median(times);
    std::printf("  %-26s %8.2f ms, %5.2f of the plain loop, %6.2f times faster than ps -e\n", what, time,
                time / median(all.plain), median(all.ps) / time);
}

// False if not all of the processes were found.
bool compare(int processes) {
    mac::test::ChildProcess const many({MANY_PROCESSES, std::to_string(processes)});
    if (many.readLine() != std::to_string(processes)) return false;
    Times times;
    std::size_t found = numbers();
    for (int round = 0; round < Rounds; ++round) {
        times.plain.push_back(millisecondsOf(&ownSeconds, [&] { found = std::min(found, plainLoop()); }));
        times.serialNumbers.push_back(millisecondsOf(&ownSeconds, [&] { found = std::min(found, numbers()); }));
        times.dictionaries.push_back(millisecondsOf(&ownSeconds, [&] { found = std::min(found, information()); }));
        times.ps.push_back(millisecondsOf(&childrensSeconds, [] { runProgram({"ps", "-e"}); }));
    }
    std::printf("%d processes more\n", processes);
    print("plain loop", times.plain, times);
    print("walk, serial numbers", times.serialNumbers, times);
    print("walk, information of each", times.dictionaries, times);
    return found >= static_cast<std::size_t>(processes);
}

} // namespace

int main() {
    // Tried out before there are processes that would be left behind.
    runProgram({"ps", "-e"});
    double const first = millisecondsOf(&ownSeconds, [] { numbers(); });
    double const plain = millisecondsOf(&ownSeconds, [] { plainLoop(); });
    std::printf("The first walk of all takes %.2f ms, the plain loop then %.2f ms\n", first, plain);
    for (int const processes : {100, 500, 2000}) {
        if (compare(processes)) continue;
        std::fprintf(stderr, "not all of %d processes were found\n", processes);
        return 1;
    }
    return 0;
}
