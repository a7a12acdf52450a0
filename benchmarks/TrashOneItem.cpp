#include "benchmarks/Timing.h"
#include "pathutils/FileOperations.h"
#include "platform/files/trash/Trash.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <cstdio>
#include <cstdlib>

// What it costs to move one file to the trash by the library's operation, which runs a script, against `gio trash`: in
// this process, as the program does it, and as a process of its own, as `gio` is one. And how much of that is the trash
// without the script, and the one flush of its record. All are measured in turns; the ratios are the medians of the
// rounds' own. The files lie in the folder for temporary files.
//
// usage: trash_one_item [FILE]
//
// With a file it does nothing but trash that.

namespace {

using namespace benchmarks;

constexpr int Rounds = 101;

void require(bool isDone, char const* what) {
    if (isDone) return;
    std::fprintf(stderr, "%s failed\n", what);
    std::exit(1);
}

void trashByScript(std::string const& path) {
    require(!(mac::pxMoveToTrash(mac::test::path(path)) == mac::nil), "pxMoveToTrash");
}

// The time of each round's parts.
struct Times {
    std::vector<double> operation{};
    std::vector<double> process{};
    std::vector<double> trash{};
    std::vector<double> gio{};
};

double medianRatio(std::vector<double> const& theirs, std::vector<double> const& ours) {
    std::vector<double> ratios;
    for (std::size_t round = 0; round < ours.size(); ++round)
        ratios.push_back(theirs[round] / ours[round]);
    return median(ratios);
}

} // namespace

int main(int count, char** arguments) {
    if (count > 1) {
        trashByScript(arguments[1]);
        return 0;
    }
    mac::test::TemporaryFolder const folder;
    mac::test::EnvironmentVariable const data("XDG_DATA_HOME", folder.makeFolder("data"));
    Times times;
    for (int round = 0; round < Rounds; ++round) {
        std::string const name = "file " + std::to_string(round);
        std::string const first = folder.makeFile(name + " a", "contents");
        std::string const second = folder.makeFile(name + " b", "contents");
        std::string const third = folder.makeFile(name + " c", "contents");
        std::string const fourth = folder.makeFile(name + " d", "contents");
        times.operation.push_back(secondsOf([&] { trashByScript(first); }));
        times.gio.push_back(secondsOf([&] { runProgram({"gio", "trash", third}); }));
        times.trash.push_back(secondsOf([&] { require(mac::moveToTrash(second).hasValue(), "moveToTrash"); }));
        times.process.push_back(secondsOf([&] { runProgram({"/proc/self/exe", fourth}); }));
    }
    std::printf("one file to the trash: %.2f ms, %.2f times faster than gio trash, %.2f ms (goal: 5)\n",
                median(times.operation) * 1e3, medianRatio(times.gio, times.operation), median(times.gio) * 1e3);
    std::printf("the same in a process of its own: %.2f ms, %.2f times faster than gio trash\n",
                median(times.process) * 1e3, medianRatio(times.gio, times.process));
    std::printf("the trash without the script: %.2f ms\n", median(times.trash) * 1e3);
    return 0;
}
