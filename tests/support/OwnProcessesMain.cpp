#include "tests/support/TestRun.h"
#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

// The main function of test programs that list or quit processes: it starts the program a second time through
// tests/support/with-own-processes, so that processes outside of the tests change no outcome, however it was run.

namespace {

// Returns only if the program cannot be started.
void startAmongOwnProcesses(int argc, char** argv) {
    std::string wrapper = WITH_OWN_PROCESSES;
    std::string program = std::filesystem::read_symlink("/proc/self/exe");
    std::vector<char*> words{wrapper.data(), program.data()};
    words.insert(words.end(), argv + 1, argv + argc);
    words.push_back(nullptr);
    ::execv(wrapper.c_str(), words.data());
    std::perror(wrapper.c_str());
}

} // namespace

int main(int argc, char** argv) {
    if (!mac::test::wereOwnProcessesAskedFor()) {
        startAmongOwnProcesses(argc, argv);
        return 1;
    }
    return mac::test::runTests(argc, argv);
}
