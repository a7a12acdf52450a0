#include "app/AppController.h"
#include "benchmarks/Timing.h"
#include "pathutils/BundleVersions.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "platform/spotlight/NSMetadataQuery.h"
#include "platform/system/walker/WalkMemory.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <pthread.h>
#include <semaphore>
#include <string_view>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

// What the inventory of many copies costs: rebuilding it against one status call for each path, the longest time that
// the main thread is held while a scan finds them, how soon Stop ends such a scan, and reading their versions against
// Python's plistlib. Rounds take turns. Fails if no click on Stop was made while a scan ran.
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
// The number of clicks on Stop, each after another number of copies was reported.
constexpr std::size_t Clicks = 19;
// A search may end while the click is on its way; then another search is clicked at.
constexpr int MostSearchesOfAClick = 20;
// The seconds between two reports of the query, fewer than in the program: a search of few copies would tell of all of
// them at once, and there would be no moment in the midst of it.
constexpr double StopBatchSeconds = 0.002;

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

// A click on Stop: the seconds until the query was stopped, by the clock and of the main thread on the processor, and
// whether the search still ran then, with so many copies reported.
struct Click {
    double clock{0};
    double processor{0};
    bool hasHit{false};
    NSUInteger reported{0};
};

// Clicks as soon as a search that remembers nothing has reported so many copies. The click comes from another thread,
// in the middle of what the main thread does next, and waits for that.
Click clickAfter(NSUInteger reported, std::string const& memory) {
    ::unlink(memory.c_str());
    AppController const controller = AppController::alloc().init();
    controller.awakeFromNib();
    NSMetadataQuery const query = controller.query();
    query.setNotificationBatchingInterval_(StopBatchSeconds);
    clockid_t mainThread{};
    ::pthread_getcpuclockid(::pthread_self(), &mainThread);
    Click result;
    bool isOver = false;
    bool isAwaited = true;
    std::binary_semaphore moment(0);
    std::jthread const user([&] {
        moment.acquire();
        double const clock = secondsOfClock(CLOCK_MONOTONIC);
        double const processor = secondsOfClock(mainThread);
        performOnMainRunLoop([&, clock, processor] {
            result.hasHit = query.isGathering();
            result.reported = query.resultCount();
            controller.stopAction_(nil);
            result.clock = secondsOfClock(CLOCK_MONOTONIC) - clock;
            result.processor = secondsOfClock(mainThread) - processor;
            isOver = true;
        });
    });
    while (!isOver) {
        bool const isTime = query.resultCount() >= reported || !query.isGathering();
        if (isTime && std::exchange(isAwaited, false)) moment.release();
        NSRunLoop::currentRunLoop().runMode_beforeDate_("", NSDate::dateWithTimeIntervalSinceNow_(1));
    }
    return result;
}

// False if no click found a search that ran. On a machine that is busy otherwise some come late.
bool measureStop(std::string const& folder, std::size_t count) {
    ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", folder.c_str(), 1);
    ::unsetenv("XDG_CACHE_HOME");
    std::string const memory = folder + "/.cache/framekeeper/" + mac::WalkMemory::fileName;
    std::vector<double> clock;
    std::vector<double> processor;
    std::vector<NSUInteger> reported;
    int searches = 0;
    for (std::size_t click = 0; click < Clicks; ++click) {
        Click made;
        for (int tries = 0; tries < MostSearchesOfAClick && !made.hasHit; ++tries, ++searches)
            made = clickAfter(static_cast<NSUInteger>(count * click / Clicks), memory);
        if (!made.hasHit) continue;
        clock.push_back(made.clock * 1e3);
        processor.push_back(made.processor * 1e3);
        reported.push_back(made.reported);
    }
    std::printf("%zu copies: %zu of %zu clicks on Stop hit a search that ran, in %d searches\n", count, clock.size(),
                Clicks, searches);
    if (clock.empty()) return false;
    std::printf("%zu copies: Stop took %.1f ms, at most %.1f ms, by the processor %.1f and %.1f ms, with %u to %u "
                "copies reported\n",
                count, median(clock), std::ranges::max(clock), median(processor), std::ranges::max(processor),
                std::ranges::min(reported), std::ranges::max(reported));
    return true;
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
        mac::test::TemporaryFolder const ownFolder;
        std::vector<std::string> const paths = makeCopies(ownFolder, BundlesOfVersions);
        std::string list;
        for (std::string const& path : paths)
            list += path + "\n";
        std::string const listPath = ownFolder.makeFile("list", list);
        std::string const answer = ownFolder.makeFile("answer", "");
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
    bool const areClicksHits = !isAsked("stop") || measureStop(folder.path(), paths.size());
    if (isAsked("batches")) measureBatches(paths);
    return areClicksHits ? 0 : 1;
}
