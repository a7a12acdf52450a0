#include "platform/system/StandardStreams.h"
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace mac {

namespace {

volatile std::sig_atomic_t lastInterruption = 0;

int descriptorOf(StandardStream stream) {
    if (stream == StandardStream::Input) return STDIN_FILENO;
    return stream == StandardStream::Output ? STDOUT_FILENO : STDERR_FILENO;
}

char const* nameOf(StandardStream stream) {
    if (stream == StandardStream::Input) return "standard input";
    return stream == StandardStream::Output ? "standard output" : "standard error";
}

void holdSignal(int number) {
    struct sigaction action {};
    // A signal that was ignored when the process was started (nohup) stays ignored.
    if (::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) return;
    action = {};
    action.sa_handler = [](int held) { lastInterruption = held; };
    ::sigemptyset(&action.sa_mask);
    // A system call that a signal interrupts is restarted: the operation is finished first.
    action.sa_flags = SA_RESTART;
    ::sigaction(number, &action, nullptr);
}

// Waits until a stream that does not block takes more, or fails.
Result<void> waitToWrite(StandardStream stream) {
    pollfd waited{.fd = descriptorOf(stream), .events = POLLOUT, .revents = 0};
    if (::poll(&waited, 1, -1) >= 0) return {};
    SystemError error = lastSystemError("poll", nameOf(stream));
    return error.is(EINTR) ? Result<void>() : error;
}

} // namespace

bool isTerminal(StandardStream stream) { return ::isatty(descriptorOf(stream)) == 1; }

Result<void> writeTo(StandardStream stream, std::string_view bytes) {
    while (!bytes.empty()) {
        ssize_t const count = ::write(descriptorOf(stream), bytes.data(), bytes.size());
        if (count < 0) {
            SystemError error = lastSystemError("write", nameOf(stream));
            if (error.is(EINTR)) continue;
            if (!error.is(EAGAIN)) return error;
            if (Result<void> const waited = waitToWrite(stream); !waited.isDone()) return waited;
            continue;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return {};
}

void openMissingStreams() {
    // The lowest free number is taken, so each open fills the gap that the loop has come to.
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) >= 0) continue;
        [[maybe_unused]] int const opened = ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

void prepareStandardStreams() {
    openMissingStreams();
    // Unlike an ignored signal, one with a handler is not passed on to programs that are started.
    struct sigaction action {};
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(SIGPIPE, &action, nullptr);
}

void holdInterruptions() {
    for (int const number : {SIGINT, SIGTERM, SIGHUP})
        holdSignal(number);
}

int heldInterruption() { return lastInterruption; }

} // namespace mac
