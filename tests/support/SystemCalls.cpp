#include "tests/support/SystemCalls.h"
#include <csignal>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mac::test {

namespace {

constexpr int SystemCallStop = SIGTRAP | 0x80;

[[noreturn]] void runTraced(std::function<void()> const& function) {
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(1);
    ::raise(SIGSTOP);
    function();
    // Tells the end of what is counted.
    ::raise(SIGSTOP);
    ::_exit(0);
}

// Every call stops at its beginning and at its end.
std::optional<unsigned> stopsUntilNextSignal(pid_t process) {
    for (unsigned stops = 0;;) {
        int status = 0;
        if (::ptrace(PTRACE_SYSCALL, process, nullptr, nullptr) != 0) return std::nullopt;
        if (::waitpid(process, &status, 0) != process || !WIFSTOPPED(status)) return std::nullopt;
        if (WSTOPSIG(status) == SIGSTOP) return stops;
        if (WSTOPSIG(status) != SystemCallStop) return std::nullopt;
        ++stops;
    }
}

std::optional<unsigned> countedCalls(std::function<void()> const& function) {
    pid_t const process = ::fork();
    if (process < 0) return std::nullopt;
    if (process == 0) runTraced(function);
    int status = 0;
    bool const isStopped = ::waitpid(process, &status, 0) == process && WIFSTOPPED(status);
    if (!isStopped) return std::nullopt;
    ::ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    std::optional<unsigned> const stops = stopsUntilNextSignal(process);
    ::kill(process, SIGKILL);
    while (::waitpid(process, &status, 0) == process && !WIFEXITED(status) && !WIFSIGNALED(status)) {}
    if (!stops) return std::nullopt;
    return *stops / 2;
}

} // namespace

std::optional<unsigned> systemCallsOf(std::function<void()> const& function) {
    std::optional<unsigned> const overhead = countedCalls([] {});
    std::optional<unsigned> const all = countedCalls(function);
    if (!overhead || !all) return std::nullopt;
    return *all - *overhead;
}

} // namespace mac::test
