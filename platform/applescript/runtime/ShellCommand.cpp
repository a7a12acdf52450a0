#include "platform/applescript/runtime/ShellCommand.h"
#include "platform/applescript/runtime/RunLimits.h"
#include "platform/applescript/runtime/ScriptError.h"
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mac::applescript {

namespace {

constexpr std::string_view ShellPath = "PATH=/usr/bin:/bin:/usr/sbin:/sbin";
constexpr int LongestWait = 50;

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{-1, -1};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw plainError(errors::OutOfMemory);
        read = FileDescriptor(ends[0]);
        write = FileDescriptor(ends[1]);
    }
    FileDescriptor read{};
    FileDescriptor write{};
};

std::vector<char*> shellEnvironment() {
    static std::string path(ShellPath);
    std::vector<char*> environment{path.data()};
    for (char** entry = environ; entry && *entry; ++entry)
        if (!std::string_view(*entry).starts_with("PATH=")) environment.push_back(*entry);
    environment.push_back(nullptr);
    return environment;
}

} // namespace

ShellCommand::ShellCommand(std::vector<std::string> words, FileDescriptor const& handed) {
    Pipe output;
    Pipe complaints;
    // The file's own number may be that number already, which would keep it closed in the program.
    FileDescriptor const copy(handed.isOpen() ? ::fcntl(handed.number(), F_DUPFD_CLOEXEC, HandedDescriptor + 1) : -1);
    if (handed.isOpen() && !copy.isOpen()) throw plainError(errors::OutOfMemory);
    posix_spawn_file_actions_t actions{};
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, output.write.number(), STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, complaints.write.number(), STDERR_FILENO);
    if (copy.isOpen()) ::posix_spawn_file_actions_adddup2(&actions, copy.number(), HandedDescriptor);
    posix_spawnattr_t attributes{};
    ::posix_spawnattr_init(&attributes);
    // A group of its own, so that all of it can be stopped.
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::vector<char*> const environment = shellEnvironment();
    int const failure =
        ::posix_spawn(&m_process, arguments.front(), &actions, &attributes, arguments.data(), environment.data());
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) throw plainError(failure == E2BIG ? errors::ValueTooLarge : errors::OutOfMemory);
    m_channels[0].read = std::move(output.read);
    m_channels[1].read = std::move(complaints.read);
}

ShellCommand::~ShellCommand() {
    if (m_process <= 0) return;
    // A command with more rights than this process cannot be signalled, and is not waited for.
    bool const isEnding = ::kill(-m_process, SIGKILL) == 0;
    ::waitpid(m_process, nullptr, isEnding ? 0 : WNOHANG);
}

void ShellCommand::collect(std::size_t most) {
    while (m_channels[0].read.isOpen() || m_channels[1].read.isOpen()) {
        stopRunIfAsked();
        std::array<pollfd, 2> waiting{pollfd{.fd = m_channels[0].read.number(), .events = POLLIN, .revents = 0},
                                      pollfd{.fd = m_channels[1].read.number(), .events = POLLIN, .revents = 0}};
        if (::poll(waiting.data(), waiting.size(), LongestWait) < 0 && errno != EINTR) break;
        for (std::size_t index = 0; index < waiting.size(); ++index)
            if (waiting.at(index).revents != 0) readFrom(m_channels.at(index), most);
    }
}

int ShellCommand::status() {
    constexpr int signalled = 128;
    int status = 0;
    // The number is the process's own until it has been waited for.
    FileDescriptor const process(static_cast<int>(::syscall(SYS_pidfd_open, m_process, 0)));
    while (::waitpid(m_process, &status, WNOHANG) == 0) {
        stopRunIfAsked();
        pollfd ended{.fd = process.number(), .events = POLLIN, .revents = 0};
        ::poll(&ended, 1, LongestWait);
    }
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : signalled + WTERMSIG(status);
}

void ShellCommand::readFrom(Channel& channel, std::size_t most) {
    std::array<char, 65536> buffer{};
    ssize_t const count = ::read(channel.read.number(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) return;
    if (count <= 0) {
        channel.read = FileDescriptor();
        return;
    }
    channel.said.append(buffer.data(), static_cast<std::size_t>(count));
    if (channel.said.size() > most) throw plainError(errors::ValueTooLarge);
}

} // namespace mac::applescript
