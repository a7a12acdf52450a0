#include "tests/support/Spawn.h"
#include <spawn.h>
#include <system_error>
#include <unistd.h>

namespace mac::test {

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
    return process;
}

} // namespace mac::test
