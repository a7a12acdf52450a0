#include "platform/processes/ProgramStart.h"
#include "platform/foundation/FileDescriptor.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mac {

namespace {

bool isProgram(std::string const& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

// In the child, between fork and exec: nothing but system calls.
[[noreturn]] void becomeProgram(char const* path, char* const* words, int report) {
    ::setsid();
    // The child's own child belongs to nobody who would have to wait for it.
    pid_t const inner = ::fork();
    if (inner > 0) ::_exit(0);
    if (inner == 0) {
        int const nothing = ::open("/dev/null", O_RDWR);
        for (int const standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            if (nothing >= 0) ::dup2(nothing, standard);
        ::execv(path, words);
    }
    int const reason = errno;
    [[maybe_unused]] ssize_t const written = ::write(report, &reason, sizeof reason);
    ::_exit(1);
}

} // namespace

std::optional<std::string> programFile(std::string const& name) {
    if (name.find('/') != std::string::npos) return isProgram(name) ? std::optional(name) : std::nullopt;
    char const* const set = std::getenv("PATH");
    std::string_view folders = set ? set : "/usr/local/bin:/usr/bin:/bin";
    while (!name.empty() && !folders.empty()) {
        std::string_view const folder = folders.substr(0, folders.find(':'));
        folders.remove_prefix(std::min(folder.size() + 1, folders.size()));
        std::string path(folder);
        path.append("/").append(name);
        if (!folder.empty() && isProgram(path)) return path;
    }
    return std::nullopt;
}

bool startProgram(std::vector<std::string> const& words) {
    std::optional<std::string> const path = words.empty() ? std::nullopt : programFile(words.front());
    if (!path) {
        errno = ENOENT;
        return false;
    }
    std::vector<std::string> copies = words;
    std::vector<char*> arguments;
    arguments.reserve(copies.size() + 1);
    for (std::string& word : copies)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) return false;
    FileDescriptor const reading(ends[0]);
    FileDescriptor writing(ends[1]);
    pid_t const child = ::fork();
    if (child < 0) return false;
    if (child == 0) becomeProgram(path->c_str(), arguments.data(), writing.number());
    writing = FileDescriptor();
    int reason = 0;
    // The pipe ends without a word when the program has begun.
    ssize_t count = 0;
    do
        count = ::read(reading.number(), &reason, sizeof reason);
    while (count < 0 && errno == EINTR);
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {}
    errno = reason;
    return count == 0;
}

} // namespace mac
