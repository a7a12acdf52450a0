#include "benchmarks/StartUpRun.h"
#include "benchmarks/WholeDiskWalkRun.h"
#include "benchmarks/WholeDiskWalkTree.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

using namespace benchmarks;

// The memory that the program holds when it has searched a tree of a million entries and shows the 200 copies in it,
// compared with a bare window that holds an empty table. Prints the medians and their ratio; ends with 0 when it is
// within the limit. The tree is made in FOLDER (4 GB free is plenty) and deleted in the end.
//
// usage: scan_memory BARE_PROGRAM PROGRAM FOLDER

namespace {

constexpr std::uint64_t seed = 20;
constexpr std::uint64_t entries = 1'000'000;
constexpr int pairs = 5;
constexpr double limit = 1.5;

// Without this file they would be found, but be no copies.
void makeCopies(WholeDiskWalkTree const& tree, std::string const& top) {
    for (std::string const& package : tree.wantedPackagesBelow(top))
        std::ofstream(package + "/Contents/Info.plist")
            << "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>com.tidelark.mirrorframe</string>"
               "<key>CFBundleShortVersionString</key><string>2.0</string></dict></plist>\n";
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: scan_memory BARE_PROGRAM PROGRAM FOLDER\n");
        return 2;
    }
    std::string const top = std::string(argv[3]) + "/scan-memory-tree";
    WholeDiskWalkTree const tree(seed, entries);
    run({"rm", "-rf", "--", top});
    std::printf("building the tree\n");
    std::fflush(stdout);
    tree.build(top);
    makeCopies(tree, top);
    char const* const home = useEmptyHome();
    ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", top.c_str(), 1);
    StartUpMedians bare;
    StartUpMedians program;
    for (int pair = 0; pair < pairs; ++pair) {
        bare.add(startUp(argv[1]));
        program.add(startUp(argv[2]));
    }
    run({"rm", "-rf", "--", top, home});
    double const ratio = program.megabytes() / bare.megabytes();
    std::printf("memory after the search: bare %.1f MB, program %.1f MB, ratio %.2f (at most %.1f)\n", bare.megabytes(),
                program.megabytes(), ratio, limit);
    std::printf("start to that:           bare %.0f ms, program %.0f ms\n", bare.milliseconds(),
                program.milliseconds());
    return ratio <= limit ? 0 : 1;
}
