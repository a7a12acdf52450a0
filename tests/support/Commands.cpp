#include "tests/support/Commands.h"
#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace mac::test {

namespace {

bool hasEnded(pid_t child) {
    siginfo_t information{};
    return ::waitid(P_PID, static_cast<id_t>(child), &information, WEXITED | WNOHANG | WNOWAIT) != 0 ||
           information.si_pid == child;
}

// posix_spawn returns when the child has given up its parent's memory. Only a little later the kernel tells the words
// and the environment it was started with; until then both are empty. No program is without words.
void waitUntilTold(pid_t child) {
    std::string const words = "/proc/" + std::to_string(child) + "/cmdline";
    while (std::ifstream(words).get() == std::ifstream::traits_type::eof() && !hasEnded(child))
        std::this_thread::sleep_for(std::chrono::microseconds(100));
}

// A thread's status begins with its number and its name in parentheses, which may contain any byte; its state is next.
bool isStopped(std::filesystem::path const& thread) {
    std::ostringstream status;
    status << std::ifstream(thread / "stat").rdbuf();
    std::size_t const name = status.str().rfind(')');
    return name == std::string::npos || std::string_view("TZX").find(status.str()[name + 2]) != std::string_view::npos;
}

bool areThreadsStopped(int process) {
    std::error_code ended;
    std::filesystem::directory_iterator threads("/proc/" + std::to_string(process) + "/task", ended);
    // At an error, as when the process has ended, there are no more.
    for (; threads != std::filesystem::directory_iterator(); threads.increment(ended)) {
        if (!isStopped(threads->path())) return false;
    }
    return true;
}

} // namespace

void sendSignalTo(int process, int signal) {
    if (::kill(process, signal) != 0 || signal != SIGSTOP) return;
    while (!areThreadsStopped(process))
        std::this_thread::sleep_for(std::chrono::microseconds(100));
}

int spawn(std::vector<std::string> words, int input, int output) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    if (input >= 0) ::posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    if (output >= 0) ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t process = -1;
    int const failure = ::posix_spawnp(&process, pointers[0], &actions, nullptr, pointers.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) throw std::system_error(failure, std::generic_category(), words[0]);
    waitUntilTold(process);
    return process;
}

std::string outputOf(std::vector<std::string> const& command) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    int const process = spawn(command, -1, ends[1]);
    ::close(ends[1]);
    std::string output;
    std::array<char, 4096> buffer;
    for (ssize_t count; (count = ::read(ends[0], buffer.data(), buffer.size())) > 0;)
        output.append(buffer.data(), static_cast<std::size_t>(count));
    ::close(ends[0]);
    int status = 0;
    if (::waitpid(process, &status, 0) != process || status != 0) throw std::runtime_error(command.front() + " failed");
    return output;
}

std::string gio(std::vector<std::string> const& arguments) {
    std::vector<std::string> command{"dbus-run-session", "--", "gio"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return outputOf(command);
}

bool gioKnowsTrash() {
    try {
        gio({"list", "trash:///"});
        return true;
    } catch (std::runtime_error const&) {
        return false;
    }
}

} // namespace mac::test
