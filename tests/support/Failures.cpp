#include "tests/support/Failures.h"
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
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

// The memory allocator asks the system for memory when its own is used up, which depends on all that was done before.
bool isForMemory(std::uint64_t call) {
    switch (call) {
    case SYS_brk:
    case SYS_madvise:
    case SYS_mmap:
    case SYS_mprotect:
    case SYS_mremap:
    case SYS_munmap:
        return true;
    default:
        return false;
    }
}

// A call stops at its beginning and at its end; only the beginning is counted.
bool beginsCountedCall(pid_t process) {
    __ptrace_syscall_info information{};
    if (::ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof information, &information) <= 0) return false;
    return information.op == PTRACE_SYSCALL_INFO_ENTRY && !isForMemory(information.entry.nr);
}

std::optional<unsigned> callsUntilNextSignal(pid_t process) {
    for (unsigned calls = 0;;) {
        int status = 0;
        if (::ptrace(PTRACE_SYSCALL, process, nullptr, nullptr) != 0) return std::nullopt;
        if (::waitpid(process, &status, 0) != process || !WIFSTOPPED(status)) return std::nullopt;
        if (WSTOPSIG(status) == SIGSTOP) return calls;
        if (WSTOPSIG(status) != SystemCallStop) return std::nullopt;
        if (beginsCountedCall(process)) ++calls;
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
    std::optional<unsigned> const calls = callsUntilNextSignal(process);
    ::kill(process, SIGKILL);
    while (::waitpid(process, &status, 0) == process && !WIFEXITED(status) && !WIFSIGNALED(status)) {}
    return calls;
}

} // namespace

void refuseCallOnThisThread(long call, int errorNumber) {
    std::array<sock_filter, 4> program{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(errorNumber)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    sock_fprog const filter{program.size(), program.data()};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0)
        throw std::system_error(errno, std::generic_category(), "no call can be refused");
}

void withRefusedCall(long call, int errorNumber, std::function<void()> const& work) {
    std::thread([&] {
        refuseCallOnThisThread(call, errorNumber);
        work();
    }).join();
}

std::optional<unsigned> systemCallsOf(std::function<void()> const& function, std::function<void()> const& before) {
    std::optional<unsigned> const overhead = countedCalls(before);
    std::optional<unsigned> const all = countedCalls([&] {
        before();
        function();
    });
    if (!overhead || !all) return std::nullopt;
    return *all - *overhead;
}

} // namespace mac::test
