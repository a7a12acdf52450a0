#include "tests/support/CommandOutput.h"
#include "tests/support/Spawn.h"
#include <array>
#include <fcntl.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace mac::test {

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

} // namespace mac::test
