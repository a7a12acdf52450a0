#include "coreutils/Collections.h"
#include "benchmarks/Timing.h"
#include "coreutils/ArrayLookups.h"
#include "platform/foundation/numbers/NSNumber.h"
#include <cstdio>
#include <ctime>
#include <string>
#include <unordered_map>
#include <vector>

// A look-up by key path beside the loop that one would write by hand, and how building sets and dictionaries of records
// grows with their number.

using namespace mac;
using benchmarks::median;

namespace {

using Record = std::unordered_map<std::string, std::string>;

constexpr int Count = 100'000;
constexpr int Rounds = 15;

std::string pathOf(int index) {
    return "/Volumes/Disk " + std::to_string(index % 7) + "/" + std::to_string(index) + ".app";
}

NSDictionary dictionaryOf(int index) {
    return NSDictionary::dictionaryWithObjectsAndKeys_({NSString::stringWithUTF8String_(pathOf(index)), "path",
                                                        NSString::stringWithFormat_("%d", index % 10), "version",
                                                        NSString::stringWithFormat_("Copy %d", index), "displayPath"});
}

Record recordOf(int index) {
    return {{"path", pathOf(index)},
            {"version", std::to_string(index % 10)},
            {"displayPath", "Copy " + std::to_string(index)}};
}

std::vector<id> dictionaries(int count) {
    std::vector<id> made;
    made.reserve(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index)
        made.push_back(dictionaryOf(index));
    return made;
}

// Processor time of this process, so that other programs do not count.
template <class Function>
double processorSecondsOf(Function const& function) {
    std::clock_t const start = std::clock();
    function();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

Record const* find(std::vector<Record> const& records, std::string const& key, std::string const& value) {
    for (Record const& record : records) {
        auto const found = record.find(key);
        if (found != record.end() && found->second == value) return &record;
    }
    return nullptr;
}

void compareLookUps() {
    NSArray const array = NSArray::arrayWithVector(dictionaries(Count));
    std::vector<Record> records;
    records.reserve(Count);
    for (int index = 0; index < Count; ++index)
        records.push_back(recordOf(index));
    std::string const last = pathOf(Count - 1);
    NSString const lastPath = NSString::stringWithUTF8String_(last);
    std::vector<double> ratios;
    std::vector<double> times;
    int found = 0;
    for (int round = 0; round < Rounds; ++round) {
        double const byHand = processorSecondsOf([&] { found += find(records, "path", last) ? 1 : 0; });
        double const byKeyPath =
            processorSecondsOf([&] { found += pxObjectWithValue_forKeyPath_(array, lastPath, "path") == nil ? 0 : 1; });
        ratios.push_back(byKeyPath / byHand);
        times.push_back(byKeyPath);
    }
    std::printf("look-up: the last of %d dictionaries by key path in %.2f ms, %.2f times a hand-written loop over hash "
                "maps (median of %d pairs, %d found)\n",
                Count, median(times) * 1e3, median(ratios), Rounds, found);
}

template <class Build>
void compareGrowth(char const* what, Build const& build) {
    std::vector<id> const small = dictionaries(Count / 10);
    std::vector<id> const large = dictionaries(Count);
    std::vector<double> ratios;
    std::vector<double> times;
    for (int round = 0; round < Rounds; ++round) {
        double const smallTime = processorSecondsOf([&] { build(small); });
        double const largeTime = processorSecondsOf([&] { build(large); });
        ratios.push_back(largeTime / smallTime);
        times.push_back(largeTime);
    }
    std::printf("%s: %d in %.1f ms, ten times as many take %.1f times the time (median of %d pairs)\n", what, Count,
                median(times) * 1e3, median(ratios), Rounds);
}

} // namespace

int main() {
    compareLookUps();
    compareGrowth("set of records", [](std::vector<id> const& records) {
        NSMutableSet const set = NSMutableSet::set();
        for (id const& record : records)
            set.addObject_(record);
    });
    compareGrowth("dictionary by record", [](std::vector<id> const& records) {
        NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
        for (id const& record : records)
            dictionary.setObject_forKey_("x", record);
    });
    compareGrowth("index set of numbers in disorder", [](std::vector<id> const& records) {
        std::vector<id> numbers;
        for (std::size_t index = 0; index < records.size(); ++index)
            numbers.push_back(NSNumber::numberWithUnsignedInteger_(static_cast<NSUInteger>(index * 7919 % 1'000'003)));
        pxIndexSetWithNumbers(NSArray::arrayWithVector(std::move(numbers)));
    });
}
