#include "app/AppController.h"
#include "benchmarks/Timing.h"
#include "pathutils/BundleVersions.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <pthread.h>
#include <string_view>
#include <sys/stat.h>
#include <thread>
#include <vector>

// What the inventory of many copies costs: rebuilding it against one status call for each path, the longest time that
// the main thread is held while a scan finds them, how soon Stop ends such a scan, and reading their versions against
// Python's plistlib. Rounds take turns.
//
// usage: inventory [COPIES [versions|scan|stop|batches]]

using namespace framekeeper;
using benchmarks::median;
using benchmarks::processorSecondsOf;
using benchmarks::secondsOf;

namespace {

constexpr int Rounds = 7;
constexpr int DefaultCopies = 10'000;
constexpr int BundlesOfVersions = 1'000;
constexpr int CopiesInFolder = 100;
// Clicks on Stop, each at another moment of a scan.
constexpr int Clicks = 19;

// Information files as applications have them hold some dozens of keys.
std::string informationFile(int number) {
    std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n<dict>\n";
    auto const add = [&text](std::string const& key, std::string const& value) {
        text += "\t<key>" + key + "</key>\n\t<string>" + value + "</string>\n";
    };
    add("CFBundleIdentifier", CompanionIdentifier);
    add("CFBundleShortVersionString", "2." + std::to_string(number % 50));
    add("CFBundleVersion", std::to_string(200 + number % 50));
    for (int key = 0; key < 20; ++key)
        add("CFBundleKey" + std::to_string(key), "A value of the usual length");
    return text + "</dict>\n</plist>\n";
}

std::vector<std::string> makeCopies(mac::test::TemporaryFolder const& folder, int count) {
    std::vector<std::string> paths;
    for (int number = 0; number < count; ++number) {
        std::string const relative = "Folder " + std::to_string(number / CopiesInFolder) + "/Backup " +
                                     std::to_string(number) + "/Mirror Frame.app";
        folder.makeFile(relative + "/Contents/Info.plist", informationFile(number));
        paths.push_back(folder.path(relative));
        // Old enough to be believed.
        timespec const times[2]{{1'000'000'000, 0}, {1'000'000'000, 0}};
        ::utimensat(AT_FDCWD, (paths.back() + "/Contents/Info.plist").c_str(), times, 0);
    }
    return paths;
}

void statEach(std::vector<std::string> const& paths) {
    struct statx status {};
    for (std::string const& path : paths)
        ::statx(AT_FDCWD, path.c_str(), 0, STATX_BASIC_STATS, &status);
}

void measureBatches(std::vector<std::string> const& paths) {
    AppController const controller = AppController::alloc().init();
    NSMutableSet const found = NSMutableSet::set();
    std::vector<std::string> files;
    for (std::string const& path : paths) {
        found.addObject_(NSString::stringWithFileSystemRepresentation_(path));
        files.push_back(path + "/Contents/Info.plist");
    }
    controller.setIsOnHarddiskPaths_(found);
    double const first = processorSecondsOf([&] { controller.reSync(); });
    std::vector<double> ratios;
    std::vector<double> times;
    for (int round = 0; round < Rounds; ++round) {
        double const calls = processorSecondsOf([&] { statEach(files); });
        times.push_back(processorSecondsOf([&] { controller.reSync(); }));
        ratios.push_back(times.back() / calls);
    }
    std::printf("%zu copies: the first batch %.1f ms, each further one %.1f ms, %.2f times a status call for each path "
                "(median of %d pairs)\n",
                paths.size(), first * 1e3, median(times) * 1e3, median(ratios), Rounds);
}

double secondsOfClock(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// The thread's own time on the processor, in which other programs play no part.
double processorSeconds() { return secondsOfClock(CLOCK_THREAD_CPUTIME_ID); }

// The whole scan, as the program does it without its window.
void measureHolds(std::string const& folder, std::size_t count) {
    ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", folder.c_str(), 1);
    AppController const controller = AppController::alloc().init();
    controller.awakeFromNib();
    double longest = 0;
    double const whole = secondsOf([&] {
        while (controller.query().isGathering() || controller.paths().count() < count) {
            double const start = processorSeconds();
            NSRunLoop::currentRunLoop().runMode_beforeDate_("", NSDate::date());
            longest = std::max(longest, processorSeconds() - start);
        }
    });
    controller.query().stopQuery();
    std::printf("%zu copies: found and listed after %.2f s, the main thread was held for at most %.1f ms\n", count,
                whole, longest * 1e3);
}

struct StopTime {
    double clock{0};
    double processor{0};
};

// From the click, so long after the scan's begin, until the query is stopped: by the clock, and what the main thread
// took of the processor meanwhile. The click waits for what the run loop is doing.
StopTime timeToStop(AppController const& controller, double delay) {
    controller.scanAction_(nil);
    clockid_t mainThread{};
    ::pthread_getcpuclockid(::pthread_self(), &mainThread);
    StopTime result;
    bool isOver = false;
    std::jthread const user([&] {
        std::this_thread::sleep_for(std::chrono::duration<double>(delay));
        double const clock = secondsOfClock(CLOCK_MONOTONIC);
        double const processor = secondsOfClock(mainThread);
        performOnMainRunLoop([&, clock, processor] {
            controller.stopAction_(nil);
            result = {secondsOfClock(CLOCK_MONOTONIC) - clock, secondsOfClock(mainThread) - processor};
            isOver = true;
        });
    });
    while (!isOver)
        NSRunLoop::currentRunLoop().runMode_beforeDate_("", NSDate::dateWithTimeIntervalSinceNow_(1));
    return result;
}

void measureStop(std::string const& folder, std::size_t count) {
    ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", folder.c_str(), 1);
    AppController const controller = AppController::alloc().init();
    double const whole = secondsOf([&] {
        controller.awakeFromNib();
        while (controller.query().isGathering() || controller.paths().count() < count)
            NSRunLoop::currentRunLoop().runMode_beforeDate_("", NSDate::dateWithTimeIntervalSinceNow_(1));
    });
    std::vector<double> clock;
    std::vector<double> processor;
    for (int click = 0; click < Clicks; ++click) {
        StopTime const time = timeToStop(controller, whole * click / Clicks);
        clock.push_back(time.clock * 1e3);
        processor.push_back(time.processor * 1e3);
    }
    std::printf("%zu copies: Stop took %.1f ms, at most %.1f ms, by the processor %.1f and %.1f ms (%d clicks)\n",
                count, median(clock), std::ranges::max(clock), median(processor), std::ranges::max(processor), Clicks);
}

void measureVersions(mac::test::TemporaryFolder const& folder) {
    std::string const script = folder.makeFile(
        "versions.py", "import plistlib, sys, time\nstart = time.perf_counter()\nfor line in open(sys.argv[1]):\n"
                       "    with open(line[:-1] + '/Contents/Info.plist', 'rb') as file:\n"
                       "        plistlib.load(file)['CFBundleVersion']\n"
                       "open(sys.argv[2], 'w').write(str(time.perf_counter() - start))\n");
    std::vector<double> ratios;
    for (int round = 0; round < Rounds; ++round) {
        // New ones in each round: the first pass is what is compared.
        mac::test::TemporaryFolder const round_folder;
        std::vector<std::string> const paths = makeCopies(round_folder, BundlesOfVersions);
        std::string list;
        for (std::string const& path : paths)
            list += path + "\n";
        std::string const listPath = round_folder.makeFile("list", list);
        std::string const answer = round_folder.makeFile("answer", "");
        benchmarks::runProgram({"python3", script, listPath, answer});
        double theirs = 0;
        if (std::FILE* const file = std::fopen(answer.c_str(), "r")) {
            if (std::fscanf(file, "%lf", &theirs) != 1) theirs = 0;
            std::fclose(file);
        }
        double const ours = secondsOf([&] {
            for (std::string const& path : paths)
                pxVersionOfPath(NSString::stringWithFileSystemRepresentation_(path));
        });
        ratios.push_back(ours / theirs);
    }
    std::printf("%d versions: %.2f times plistlib's time (median of %d pairs, first passes)\n", BundlesOfVersions,
                median(ratios), Rounds);
}

} // namespace

int main(int argc, char** argv) {
    int const count = argc > 1 ? std::atoi(argv[1]) : DefaultCopies;
    std::string_view const part = argc > 2 ? argv[2] : "";
    if (count < 1) {
        std::fprintf(stderr, "usage: inventory [COPIES [versions|scan|stop|batches]]\n");
        return 2;
    }
    auto const isAsked = [&part](std::string_view name) { return part.empty() || part == name; };
    mac::test::TemporaryFolder const folder;
    ::setenv("HOME", folder.path().c_str(), 1);
    std::vector<std::string> const paths = makeCopies(folder, count);
    if (isAsked("versions")) measureVersions(folder);
    if (isAsked("scan")) measureHolds(folder.path(), paths.size());
    if (isAsked("stop")) measureStop(folder.path(), paths.size());
    if (isAsked("batches")) measureBatches(paths);
}
