#include "tests/spotlight/Walk.h"
#include <algorithm>
#include <array>
#include <fcntl.h>
#include <semaphore>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace mac::test {

WalkResult walk(VolumeWalkRequest const& request) {
    std::binary_semaphore finished{0};
    VolumeWalker* started = nullptr;
    VolumeWalker walker(request, [&started, &finished] {
        if (started->progress().isFinished) finished.release();
    });
    started = &walker;
    if (!walker.start()) throw std::runtime_error("the walk did not start");
    finished.acquire();
    WalkResult result{.paths = walker.takeFound(), .progress = walker.progress()};
    std::sort(result.paths.begin(), result.paths.end());
    return result;
}

std::vector<std::string> pathsOfWalk(VolumeWalkRequest const& request) { return walk(request).paths; }

std::vector<std::string> packagesByFind(std::string const& folder) {
    std::string const output = outputOf({"find", folder, "-type", "d", "-name", "?*.app", "-prune", "-print0"});
    std::vector<std::string> paths;
    for (std::size_t start = 0; start < output.size(); start = output.find('\0', start) + 1)
        paths.emplace_back(output.c_str() + start);
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::string outputOf(std::vector<std::string> const& command) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string const& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    pid_t process = 0;
    int const failure = ::posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    std::string output;
    std::array<char, 4096> buffer;
    for (ssize_t count; (count = ::read(ends[0], buffer.data(), buffer.size())) > 0;)
        output.append(buffer.data(), static_cast<std::size_t>(count));
    ::close(ends[0]);
    int status = 0;
    if (failure != 0 || ::waitpid(process, &status, 0) != process || status != 0)
        throw std::runtime_error(command.front() + " failed");
    return output;
}

} // namespace mac::test
