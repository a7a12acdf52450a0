#include "tests/support/ChildProcess.h"
#include "tests/support/Commands.h"
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace mac::test {

namespace {

[[noreturn]] void fail(int number, std::string const& what) {
    throw std::system_error(number, std::generic_category(), what);
}

std::array<int, 2> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) fail(errno, "pipe");
    return ends;
}

} // namespace

ChildProcess::ChildProcess(std::vector<std::string> arguments) {
    std::array<int, 2> const input = makePipe();
    std::array<int, 2> const output = makePipe();
    m_pid = spawn(std::move(arguments), input[0], output[1]);
    ::close(input[0]);
    ::close(output[1]);
    m_input = input[1];
    m_output = output[0];
}

ChildProcess::~ChildProcess() {
    if (!m_isWaitedFor) {
        sendSignal(SIGKILL);
        wait();
    }
    ::close(m_input);
    ::close(m_output);
}

std::string ChildProcess::readLine() const {
    std::string line;
    char character = 0;
    for (;;) {
        ssize_t const count = ::read(m_output, &character, 1);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0 || character == '\n') return line;
        line.push_back(character);
    }
}

void ChildProcess::writeLine(std::string const& line) const {
    std::string const bytes = line + "\n";
    if (::write(m_input, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) fail(errno, "write");
}

void ChildProcess::sendSignal(int signal) const {
    ::kill(m_pid, signal);
    if (signal != SIGSTOP) return;
    // Its threads stop one after another, and one of them could still answer what is sent now.
    siginfo_t information{};
    while (::waitid(P_PID, static_cast<id_t>(m_pid), &information, WSTOPPED | WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {}
}

void ChildProcess::waitUntilEnded() const {
    siginfo_t information{};
    ::waitid(P_PID, static_cast<id_t>(m_pid), &information, WEXITED | WNOWAIT);
}

int ChildProcess::wait() {
    int status = 0;
    // The process is a child of this one, so that only a signal can interrupt the wait.
    while (::waitpid(m_pid, &status, 0) < 0 && errno == EINTR) {}
    m_isWaitedFor = true;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

std::vector<std::string> endingWithThisProcess(std::vector<std::string> const& command, std::string const& signal) {
    std::vector<std::string> words{"/usr/bin/setpriv", "--pdeathsig", signal};
    words.insert(words.end(), command.begin(), command.end());
    return words;
}

} // namespace mac::test
