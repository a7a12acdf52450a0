#include "benchmarks/Timing.h"
#include "platform/files/references/ItemReferences.h"
#include "scripting/FileReferences.h"
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

// A reference to a path, against merely asking the system for the item's status, with 256 other items held open. Time
// of the processor; each round does both, and the ratio is the median of the rounds' own.

using namespace mac;
using namespace benchmarks;

namespace {

constexpr unsigned Files = 2'000;
constexpr unsigned Repetitions = 20'000;
constexpr int Rounds = 31;

void askForStatus(std::string const& path) {
    struct statx status {};
    if (::statx(AT_FDCWD, path.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &status) != 0) std::abort();
}

void makeReference(NSString const& path) {
    FSRef reference{};
    if (!KRCPathGetFSRef_(path, &reference)) std::abort();
}

std::vector<NSString> texts(std::vector<std::string> const& paths) {
    std::vector<NSString> result;
    result.reserve(paths.size());
    for (std::string const& path : paths)
        result.push_back(NSString::stringWithFileSystemRepresentation_(path));
    return result;
}

void compare(char const* what, std::vector<std::string> const& paths) {
    std::vector<double> ratios;
    std::vector<double> seconds;
    std::vector<NSString> const names = texts(paths);
    for (int round = 0; round < Rounds; ++round) {
        double const statuses = processorSecondsOf([&] {
            for (std::string const& path : paths)
                askForStatus(path);
        });
        double const references = processorSecondsOf([&] {
            for (NSString const& name : names)
                makeReference(name);
        });
        ratios.push_back(references / statuses);
        seconds.push_back(references / static_cast<double>(paths.size()));
    }
    std::printf("%s: %.2f us, %.2f times a status (goal: 3)\n", what, 1e6 * median(seconds), median(ratios));
}

} // namespace

int main() {
    std::string pattern = "/tmp/framekeeper-references-XXXXXX";
    if (!::mkdtemp(pattern.data())) return 1;
    std::vector<std::string> paths;
    for (unsigned index = 0; index < Files; ++index) {
        paths.push_back(pattern + "/" + std::to_string(index));
        std::ofstream(paths.back()) << index;
    }
    for (unsigned index = 0; index < 256; ++index)
        makeReference(NSString::stringWithFileSystemRepresentation_(paths[index]));
    compare("an item that is held", std::vector<std::string>(Repetitions, paths[0]));
    // Each of them lets another one go.
    compare("an item that is not held", paths);
    std::filesystem::remove_all(pattern);
    return 0;
}
