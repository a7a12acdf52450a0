#include "benchmarks/Timing.h"
#include "platform/files/Trash.h"
#include "tests/support/TemporaryFolder.h"
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

// One file moved to the trash, against `gio trash`, by the clock on the wall: both wait for the disk. Each round does
// both, one after the other; the ratio is the median of the rounds' own. A second comparison has a folder.

namespace {

using namespace benchmarks;

constexpr int Rounds = 31;

// False if an item was not trashed.
bool compare(char const* what, mac::test::TemporaryFolder const& folder, std::string const& inner) {
    std::vector<double> ratios;
    std::vector<double> ours;
    for (int round = 0; round < Rounds; ++round) {
        std::string const name = std::string(what) + " " + std::to_string(round);
        std::string const path = folder.path(name);
        std::string const other = folder.path(name + " of gio");
        folder.makeFile(name + inner, "x");
        folder.makeFile(name + " of gio" + inner, "x");
        bool isTrashed = false;
        double const seconds = secondsOf([&] { isTrashed = mac::moveToTrash(path).hasValue(); });
        if (!isTrashed) return false;
        ours.push_back(seconds * 1e3);
        ratios.push_back(secondsOf([&] { runProgram({"gio", "trash", other}); }) / seconds);
    }
    std::printf("  one %-8s %7.3f ms, %6.1f times faster than gio trash\n", what, median(ours), median(ratios));
    return mac::trashedItems().size() >= Rounds;
}

} // namespace

int main() {
    mac::test::TemporaryFolder const folder;
    ::setenv("XDG_DATA_HOME", folder.path("data").c_str(), 1);
    if (compare("file", folder, "") && compare("folder", folder, "/file")) return 0;
    std::fprintf(stderr, "not all items were trashed\n");
    return 1;
}
