#include "app/AppController.h"
#include "benchmarks/Timing.h"
#include "coreutils/ArrayLookups.h"
#include "platform/foundation/numbers/NSNumber.h"
#include <cstdio>
#include <vector>

// How the rebuilding of the inventory grows with the number of paths, and how it compares with a look-up through each
// source's whole list for each path.

using namespace framekeeper;
using namespace benchmarks;

namespace {

NSString pathOf(int source, int index) {
    return NSString::stringWithFormat_("/nowhere/%d/%d/Mirror Frame.app", source, index);
}

NSSet membershipEntries(int source, int count, NSString const& key) {
    NSMutableSet const entries = NSMutableSet::set();
    for (int index = 0; index < count; ++index)
        entries.addObject_(NSDictionary::dictionaryWithObjectsAndKeys_(
            {pathOf(source, index), "path", NSNumber::numberWithInt_(index), key}));
    return entries;
}

AppController controllerWithPaths(int total) {
    AppController const controller = AppController::alloc().init();
    int const each = total / 4;
    NSMutableSet const onDisk = NSMutableSet::set();
    for (int index = 0; index < each; ++index)
        onDisk.addObject_(pathOf(0, index));
    controller.setIsOnHarddiskPaths_(onDisk);
    controller.setIsRunningPaths_(membershipEntries(1, each, "psn"));
    controller.setIsAutolaunchedPaths_(membershipEntries(2, each, "autolaunchItem"));
    controller.setIsInToolbarPaths_(membershipEntries(3, each, "toolbarItem"));
    return controller;
}

} // namespace

int main() {
    AppController const small = controllerWithPaths(10'000);
    AppController const large = controllerWithPaths(100'000);
    std::vector<double> ratios;
    std::vector<double> times;
    for (int round = 0; round < 7; ++round) {
        double const smallTime = secondsOf([&] { small.reSync(); });
        double const largeTime = secondsOf([&] { large.reSync(); });
        ratios.push_back(largeTime / smallTime);
        times.push_back(largeTime);
        std::printf("reSync: 10,000 paths %.1f ms, 100,000 paths %.1f ms, ratio %.2f\n", smallTime * 1e3,
                    largeTime * 1e3, ratios.back());
    }
    std::printf("reSync: ten times the paths take %.2f times the time (median of pairs)\n", median(ratios));

    NSArray const entries = large.isRunningPaths().allObjects();
    constexpr int lookedUp = 20;
    double const lookUps = secondsOf([&] {
        for (int index = 0; index < lookedUp; ++index)
            pxObjectWithValue_forKeyPath_(entries, pathOf(1, index * 1000), "path");
    });
    double const allLookUps = lookUps / lookedUp * 3 * 100'000;
    std::printf("reSync: a look-up for each path and source by itself would take %.0f times as long\n",
                allLookUps / median(times));
}
