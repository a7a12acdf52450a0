#include "benchmarks/StartUpRun.h"
#include "benchmarks/Timing.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

// How long after the start of its window's first painting the program shows the copies that its last search found, and
// how often they are in that very painting. The first program ends after a search, the second once its table has been
// painted with copies.
//
// usage: remembered_copies SEARCHING_PROGRAM PROGRAM [COPIES]

using namespace benchmarks;

namespace {

constexpr int Runs = 15;
constexpr int DefaultCopies = 200;
constexpr double Limit = 10;

void makeCopies(std::string const& home, int count) {
    for (int number = 0; number < count; ++number) {
        std::string const contents = home + "/Folder " + std::to_string(number) + "/Mirror Frame.app/Contents";
        std::filesystem::create_directories(contents);
        std::ofstream(contents + "/Info.plist")
            << "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>com.tidelark.mirrorframe</string>"
               "<key>CFBundleShortVersionString</key><string>2.0</string></dict></plist>\n";
    }
}

} // namespace

int main(int argc, char** argv) {
    int const count = argc > 3 ? std::atoi(argv[3]) : DefaultCopies;
    if (argc < 3 || count < 1) {
        std::fprintf(stderr, "usage: remembered_copies SEARCHING_PROGRAM PROGRAM [COPIES]\n");
        return 2;
    }
    std::string const home = useEmptyHome();
    ::unsetenv("XDG_CACHE_HOME");
    ::setenv("FRAMEKEEPER_OWN_INSTANCE", "1", 1);
    ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", home.c_str(), 1);
    makeCopies(home, count);
    startUp(argv[1]);
    std::string const memory = home + "/.cache/framekeeper/scanned-folders";
    bool const isRemembered = std::filesystem::exists(memory);
    std::vector<double> milliseconds;
    long inFirstPainting = 0;
    for (int run = 0; isRemembered && run < Runs; ++run) {
        StartUpRun const shown = startUp(argv[2]);
        milliseconds.push_back(static_cast<double>(shown.answer) / 1000);
        inFirstPainting += shown.secondAnswer;
    }
    std::filesystem::remove_all(home);
    if (!isRemembered) {
        std::fprintf(stderr, "the search was not remembered\n");
        return 1;
    }
    std::printf("%d copies: shown %.1f ms after the window, at most %.1f ms (%d runs; at most %.0f ms), "
                "in %ld of them in its first painting\n",
                count, median(milliseconds), std::ranges::max(milliseconds), Runs, Limit, inFirstPainting);
    return median(milliseconds) <= Limit ? 0 : 1;
}
