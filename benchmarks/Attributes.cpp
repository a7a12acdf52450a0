#include "benchmarks/Timing.h"
#include "platform/files/ExtendedAttributes.h"
#include "tests/support/TemporaryFolder.h"
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <sys/resource.h>
#include <vector>

// Names and values of the attributes of 10,000 files, each asked for its length first, as the path operations do,
// against `getfattr -d` of the same files. Processor time. Each round does both, one after the other; the ratio is the
// median of the rounds' own.

namespace {

using namespace benchmarks;

constexpr int Rounds = 15;
constexpr int Files = 10'000;

double childrensMilliseconds() {
    rusage usage{};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    auto const milliseconds = [](timeval const& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

double ownMilliseconds() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// The bytes of the values.
std::size_t readValue(char const* path, char const* name) {
    std::ptrdiff_t const length = mac::getxattr(path, name, nullptr, 0, 0, 0);
    std::string value(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    std::ptrdiff_t const read = mac::getxattr(path, name, value.data(), value.size(), 0, 0);
    return read == length ? value.size() : 0;
}

std::size_t readAll(char const* path) {
    std::ptrdiff_t const length = mac::listxattr(path, nullptr, 0, 0);
    if (length < 1) return 0;
    std::string names(static_cast<std::size_t>(length), '\0');
    if (mac::listxattr(path, names.data(), names.size(), 0) != length) return 0;
    std::size_t bytes = 0;
    for (std::size_t place = 0; place < names.size(); place = names.find('\0', place) + 1)
        bytes += readValue(path, names.c_str() + place);
    return bytes;
}

// False if a value was not read.
bool compare(char const* what, std::vector<std::string> const& paths, std::size_t bytesOfEach) {
    std::vector<std::string> command{"getfattr", "-d", "--absolute-names"};
    command.insert(command.end(), paths.begin(), paths.end());
    std::vector<double> ratios;
    std::vector<double> ours;
    std::size_t bytes = 0;
    for (int round = 0; round < Rounds; ++round) {
        double const before = ownMilliseconds();
        for (std::string const& path : paths)
            bytes += readAll(path.c_str());
        ours.push_back(ownMilliseconds() - before);
        double const childrenBefore = childrensMilliseconds();
        runProgram(command);
        ratios.push_back(ours.back() / (childrensMilliseconds() - childrenBefore));
    }
    std::printf("  %-28s %8.2f ms, %5.2f times getfattr -d\n", what, median(ours), median(ratios));
    return bytes == paths.size() * bytesOfEach * Rounds;
}

void require(bool isTrue, char const* what) {
    if (isTrue) return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

} // namespace

int main() {
    mac::test::TemporaryFolder const folder;
    std::vector<std::string> paths;
    paths.reserve(Files);
    for (int number = 0; number < Files; ++number)
        paths.push_back(folder.makeFile("file " + std::to_string(number), ""));
    std::printf("%d files\n", Files);
    require(compare("without attributes", paths, 0), "there are attributes already");
    std::string const value(40, 'v');
    for (std::size_t attributes = 1; attributes <= 5; attributes += 4) {
        for (std::string const& path : paths) {
            for (std::size_t number = 0; number < attributes; ++number) {
                std::string const name = "com.example.attribute " + std::to_string(number);
                require(mac::setxattr(path.c_str(), name.c_str(), value.data(), value.size(), 0, 0) == 0,
                        "an attribute cannot be written");
            }
        }
        std::string const what = std::to_string(attributes) + (attributes == 1 ? " attribute" : " attributes");
        require(compare(what.c_str(), paths, attributes * value.size()), "not all of the values were read");
    }
    return 0;
}
