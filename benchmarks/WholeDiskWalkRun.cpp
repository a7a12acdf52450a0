#include "benchmarks/WholeDiskWalkRun.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

namespace benchmarks {

namespace {

std::string contentOf(int descriptor) {
    std::string content;
    std::array<char, 65'536> buffer;
    ::lseek(descriptor, 0, SEEK_SET);
    for (ssize_t count; (count = ::read(descriptor, buffer.data(), buffer.size())) > 0;)
        content.append(buffer.data(), static_cast<std::size_t>(count));
    ::close(descriptor);
    return content;
}

std::vector<std::string> sortedLines(std::string const& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    return lines;
}

// A number of this process's status, in KiB.
long statusValue(std::string const& key) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(key + ":")) return std::strtol(line.c_str() + key.size() + 1, nullptr, 10);
    return 0;
}

// The seconds all cores were at work since the machine started.
double busySeconds() {
    std::ifstream statistics("/proc/stat");
    std::string name;
    double user = 0, nice = 0, system = 0, idle = 0, waiting = 0, interrupts = 0, softInterrupts = 0;
    statistics >> name >> user >> nice >> system >> idle >> waiting >> interrupts >> softInterrupts;
    return (user + nice + system + interrupts + softInterrupts) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

double childrenSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    auto const seconds = [](timeval const& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

} // namespace

std::optional<Run> run(std::vector<std::string> const& command) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string const& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    int const output = ::memfd_create("output", MFD_CLOEXEC);
    int const errors = ::memfd_create("errors", MFD_CLOEXEC);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);

    double const foreignBefore = busySeconds() - childrenSeconds();
    auto const start = std::chrono::steady_clock::now();
    pid_t process = 0;
    bool const started = ::posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ) == 0;
    int status = 0;
    if (started) ::waitpid(process, &status, 0);
    std::chrono::duration<double> const time = std::chrono::steady_clock::now() - start;
    double const foreign = busySeconds() - childrenSeconds() - foreignBefore;

    ::posix_spawn_file_actions_destroy(&actions);
    Run result{.seconds = time.count(),
               .foreignLoad = std::max(0.0, foreign / (time.count() * std::thread::hardware_concurrency())),
               .status = WIFEXITED(status) ? WEXITSTATUS(status) : -1,
               .outputLines = sortedLines(contentOf(output)),
               .errorText = contentOf(errors)};
    if (!started) return std::nullopt;
    return result;
}

bool waitUntilQuiet(double foreignLoad, std::chrono::seconds time) {
    constexpr std::chrono::milliseconds sample{500};
    auto const end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {
        double const before = busySeconds();
        std::this_thread::sleep_for(sample);
        double const cores = (busySeconds() - before) / std::chrono::duration<double>(sample).count();
        if (cores <= foreignLoad * std::thread::hardware_concurrency()) return true;
    }
    return false;
}

bool dropCaches() {
    ::sync();
    std::ofstream control("/proc/sys/vm/drop_caches");
    control << "3" << std::flush;
    return control.good();
}

long directoryEntriesInMemory() {
    std::ifstream state("/proc/sys/fs/dentry-state");
    long count = 0;
    state >> count;
    return count;
}

long memoryNow() { return statusValue("VmRSS"); }
long memoryPeak() { return statusValue("VmHWM"); }

} // namespace benchmarks
