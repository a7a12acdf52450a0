#include "benchmarks/Timing.h"
#include "pathutils/FileOperations.h"
#include "platform/files/Trash.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <cstdio>
#include <cstdlib>

// Prints what it costs to move one file to the trash by the library's operation, which runs a script, against
// `gio trash`, and how much of that is the script. The three are measured in turns; the medians count.

namespace {

using namespace benchmarks;

constexpr int Rounds = 51;

void require(bool isDone, char const* what) {
    if (isDone) return;
    std::fprintf(stderr, "%s failed\n", what);
    std::exit(1);
}

} // namespace

int main() {
    mac::test::TemporaryFolder const folder;
    mac::test::EnvironmentVariable const data("XDG_DATA_HOME", folder.makeFolder("data"));
    std::vector<double> operation;
    std::vector<double> withoutScript;
    std::vector<double> gio;
    for (int round = 0; round < Rounds; ++round) {
        std::string const name = "file " + std::to_string(round);
        std::string const first = folder.makeFile(name + " a", "contents");
        std::string const second = folder.makeFile(name + " b", "contents");
        std::string const third = folder.makeFile(name + " c", "contents");
        operation.push_back(
            secondsOf([&] { require(!(mac::pxMoveToTrash(mac::test::path(first)) == mac::nil), "pxMoveToTrash"); }));
        withoutScript.push_back(secondsOf([&] { require(mac::moveToTrash(second).hasValue(), "moveToTrash"); }));
        gio.push_back(secondsOf([&] { runProgram({"gio", "trash", third}); }));
    }
    double const all = median(operation);
    double const trash = median(withoutScript);
    std::printf("one file to the trash: %.2f ms, %.1f times faster than gio trash (%.2f ms)\n", all * 1e3,
                median(gio) / all, median(gio) * 1e3);
    std::printf("of that the script: %.2f ms; the trash alone: %.2f ms\n", (all - trash) * 1e3, trash * 1e3);
    return 0;
}
