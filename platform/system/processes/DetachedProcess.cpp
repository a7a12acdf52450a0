#include "platform/system/processes/DetachedProcess.h"
#include "platform/system/FileDescriptor.h"
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mac {

namespace {

// What the started process reports to its starter: its ID, or the error code of its failure.
struct Report {
    std::int32_t pid{0};
    int errorNumber{0};
};

// Runs between fork and exec, so it makes async-signal-safe calls only.
[[noreturn]] void run(char const* file, char* const* words, char const* folder, int reportTo) {
    ::setsid();
    pid_t const last = ::fork();
    if (last > 0) ::_exit(0);
    Report report{0, errno};
    if (last == 0) {
        sigset_t none;
        ::sigemptyset(&none);
        ::sigprocmask(SIG_SETMASK, &none, nullptr);
        // A folder that is gone does not keep the program from starting.
        [[maybe_unused]] int const hasChanged = *folder ? ::chdir(folder) : 0;
        int const nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
        for (int const stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            ::dup2(nowhere, stream);
        Report const started{::getpid(), 0};
        [[maybe_unused]] ssize_t const told = ::write(reportTo, &started, sizeof started);
        ::execv(file, words);
        report = {0, errno};
    }
    [[maybe_unused]] ssize_t const told = ::write(reportTo, &report, sizeof report);
    ::_exit(1);
}

bool readReport(int from, Report& report) {
    ssize_t count = 0;
    do {
        count = ::read(from, &report, sizeof report);
    } while (count < 0 && errno == EINTR);
    return count == sizeof report;
}

} // namespace

Result<std::int32_t> startDetached(std::string const& file, std::vector<std::string> const& words,
                                   std::string const& folder) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string const& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) return lastSystemError("pipe", file);
    FileDescriptor const from(ends[0]);
    FileDescriptor to(ends[1]);
    pid_t const child = ::fork();
    if (child < 0) return lastSystemError("fork", file);
    if (child == 0) run(file.c_str(), arguments.data(), folder.c_str(), to.number());
    to = FileDescriptor();
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR)
        ;
    // exec closes the process's end of the pipe; a report that comes before that is a failure.
    Report started;
    Report failed;
    if (!readReport(from.number(), started)) return SystemError{.code = EPIPE, .operation = "fork", .item = file};
    if (started.pid == 0) return SystemError{.code = started.errorNumber, .operation = "fork", .item = file};
    if (readReport(from.number(), failed))
        return SystemError{.code = failed.errorNumber, .operation = "exec", .item = file};
    return started.pid;
}

} // namespace mac
