// How long `framekeeper-cli list --json` takes beside the walk that finds the copies, and beside an empty program
// against the same libraries where there is nothing to find.
//
// usage: list_copies COMMAND EMPTY_PROGRAM FOLDER [COPIES]
//   FOLDER   on a tmpfs; the copies, 100,000 unless told otherwise, are made in it and deleted in the end
// Ratios are of the processor's time of whole processes, in which other programs play no part, and of the clock's.

#include "benchmarks/Timing.h"
#include "platform/system/walker/VolumeWalker.h"
#include "tests/support/Commands.h"
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <semaphore>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace benchmarks;

namespace {

constexpr int StartPairs = 41;
constexpr int ListPairs = 5;
constexpr double ListTarget = 1.5;
constexpr double StartTargetMilliseconds = 15;
constexpr int CopiesInFolder = 1000;

struct Cost {
    double processor = 0;
    double clock = 0;
};

double secondsIn(timeval const& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// Runs a program whose output goes to the file; ends this one if it fails.
Cost costOf(std::vector<std::string> const& words, char const* output) {
    int const file = ::open(output, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    int status = -1;
    rusage usage{};
    double const clock = secondsOf([&] {
        int const process = mac::test::spawn(words, -1, file);
        if (::wait4(process, &status, 0, &usage) < 0) status = -1;
    });
    ::close(file);
    if (status != 0) {
        std::fprintf(stderr, "%s failed\n", words[0].c_str());
        std::exit(1);
    }
    return {secondsIn(usage.ru_utime) + secondsIn(usage.ru_stime), clock};
}

int walk(char const* top) {
    std::binary_semaphore finished{0};
    mac::VolumeWalker* started = nullptr;
    mac::VolumeWalker walker({.roots = {top}, .packageSuffix = ".app", .names = {"Mirror Frame.app"}},
                             [&started, &finished] {
                                 if (started->progress().isFinished) finished.release();
                             });
    started = &walker;
    if (!walker.start()) return 1;
    finished.acquire();
    std::printf("%zu\n", walker.takeFound().size());
    return 0;
}

void makeCopies(std::filesystem::path const& folder, int copies) {
    for (int copy = 0; copy < copies; ++copy) {
        std::filesystem::path const contents =
            folder / std::to_string(copy / CopiesInFolder) / std::to_string(copy) / "Mirror Frame.app" / "Contents";
        std::filesystem::create_directories(contents);
        std::ofstream(contents / "Info.plist")
            << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
               "<key>CFBundleIdentifier</key><string>com.tidelark.mirrorframe</string>"
               "<key>CFBundleShortVersionString</key><string>1."
            << copy % 100 << "</string><key>CFBundleVersion</key><string>" << copy << "</string></dict></plist>\n";
    }
}

int lineCountWith(std::string const& file, std::string const& text) {
    std::ifstream stream(file);
    int count = 0;
    for (std::string line; std::getline(stream, line);)
        count += line.find(text) == std::string::npos ? 0 : 1;
    return count;
}

struct Ratios {
    std::vector<double> processor{};
    std::vector<double> clock{};
    std::vector<double> ours{};

    void add(Cost const& our, Cost const& other) {
        processor.push_back(our.processor / other.processor);
        clock.push_back(our.clock / other.clock);
        ours.push_back(our.clock * 1000);
    }
};

// Each run walks anew: what an earlier one remembers is deleted.
Ratios compareLists(char** arguments, std::filesystem::path const& work, int copies) {
    std::string const output = work / "output";
    std::string const tree = work / "tree";
    Ratios ratios;
    for (int pair = 0; pair < ListPairs; ++pair) {
        std::filesystem::remove_all(work / "home");
        std::filesystem::create_directory(work / "home");
        Cost const list = costOf({arguments[1], "list", "--json"}, output.c_str());
        // Copies that run elsewhere are listed as well.
        int const listed = lineCountWith(output, R"({"path": ")" + tree + "/");
        if (listed != copies) {
            std::fprintf(stderr, "%d of %d copies are listed\n", listed, copies);
            std::filesystem::remove_all(work);
            std::exit(1);
        }
        ratios.add(list, costOf({"/proc/self/exe", "--walk", tree}, output.c_str()));
    }
    return ratios;
}

Ratios compareStarts(char** arguments, std::filesystem::path const& work) {
    std::string const output = work / "output";
    Ratios ratios;
    for (int pair = 0; pair < StartPairs; ++pair) {
        Cost const list = costOf({arguments[1], "list"}, output.c_str());
        ratios.add(list, costOf({arguments[2]}, output.c_str()));
    }
    return ratios;
}

} // namespace

int main(int count, char** arguments) {
    if (count == 3 && std::strcmp(arguments[1], "--walk") == 0) return walk(arguments[2]);
    if (count != 4 && count != 5) {
        std::fputs("usage: list_copies COMMAND EMPTY_PROGRAM FOLDER [COPIES]\n", stderr);
        return 2;
    }
    int const copies = count == 5 ? std::atoi(arguments[4]) : 100'000;
    std::string pattern = std::string(arguments[3]) + "/list-copies-XXXXXX";
    if (!::mkdtemp(pattern.data())) return std::perror(pattern.c_str()), 1;
    std::filesystem::path const work = pattern;
    std::filesystem::create_directory(work / "tree");
    ::setenv("HOME", (work / "home").c_str(), 1);
    ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", (work / "tree").c_str(), 1);
    for (char const* name : {"XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "DBUS_SESSION_BUS_ADDRESS"})
        ::unsetenv(name);

    Ratios const starts = compareStarts(arguments, work);
    makeCopies(work / "tree", copies);
    Ratios const lists = compareLists(arguments, work, copies);
    std::filesystem::remove_all(work);
    std::printf(
        "list of nothing: %.1f ms by the clock (target %.0f), %.2f times an empty program, by the processor %.2f\n",
        median(starts.ours), StartTargetMilliseconds, median(starts.clock), median(starts.processor));
    std::printf("list --json of %d copies: %.2f times the walk by the clock (target %.1f), by the processor %.2f\n",
                copies, median(lists.clock), ListTarget, median(lists.processor));
    return median(lists.clock) <= ListTarget && median(starts.ours) <= StartTargetMilliseconds ? 0 : 1;
}
