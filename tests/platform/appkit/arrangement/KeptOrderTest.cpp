#include "platform/appkit/arrangement/KeptOrder.h"
#include "platform/appkit/arrangement/NSArrayController.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "tests/platform/appkit/interface/FakeController.h"
#include "tests/support/SeededRandom.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace mac::test {
namespace {

NSArray byVersionThenPath() {
    return NSArray::arrayWithObjects_({
        NSSortDescriptor::sortDescriptorWithKey_ascending_("version", NO),
        NSSortDescriptor::sortDescriptorWithKey_ascending_selector_("path", YES, "caseInsensitiveCompare:"),
    });
}

std::vector<id> valuesOf(std::vector<id> const& records, NSArray const& criteria) {
    std::vector<id> values;
    for (id const& object : records)
        SortValueReader(criteria).append(values, object);
    return values;
}

NSMutableDictionary record(int number, int version) {
    return makeRecord(NSString::stringWithFormat_("/%d", number), NSString::stringWithFormat_("%d", version));
}

TEST(KeptOrder, IsThatOfAFreshSortWhateverCameAndWent) {
    std::mt19937 random = seededRandom(11);
    NSArrayController const controller = NSArrayController::alloc().init();
    controller.setIdentityKeyPath("path");
    controller.setSortDescriptors_(byVersionThenPath());
    for (int round = 0; round < 60; ++round) {
        std::vector<id> records;
        // Now and then a version changes, so that a known record moves.
        int const moved = round % 3 == 0 ? static_cast<int>(random() % 400) : -1;
        for (int number = 0; number < 400; ++number) {
            if (random() % 60 != 0) records.push_back(record(number, number == moved ? 77 : number % 7));
        }
        std::shuffle(records.begin(), records.end(), random);
        NSArray const content = NSArray::arrayWithVector(records);
        controller.setContent_(content);
        ASSERT_TRUE(
            controller.arrangedObjects().isEqualToArray_(content.sortedArrayUsingDescriptors_(byVersionThenPath())));
    }
}

TEST(KeptOrder, PutsAFewAddedObjectsInTheirPlaces) {
    KeptOrder order;
    std::vector<id> records;
    records.reserve(100);
    for (int number = 0; number < 100; ++number)
        records.push_back(record(number, 1));
    NSArray const criteria =
        NSArray::arrayWithObject_(NSSortDescriptor::sortDescriptorWithKey_ascending_("version", YES));
    std::vector<std::size_t> places(100, KeptOrder::None);
    order.keep(order.sort(valuesOf(records, criteria), places, criteria).values);
    for (std::size_t place = 0; place < places.size(); ++place)
        places[place] = place;
    records.push_back(record(100, 2));
    records.push_back(record(101, 0));
    places.resize(records.size(), KeptOrder::None);
    std::vector<std::size_t> const result = order.sort(valuesOf(records, criteria), places, criteria).order;
    ASSERT_EQ(result.size(), 102U);
    EXPECT_EQ(result.front(), 101U);
    EXPECT_EQ(result[1], 0U);
    EXPECT_EQ(result.back(), 100U);
}

TEST(KeptOrder, ReadsAnEmptyKeyPathAsTheObjectItself) {
    EXPECT_TRUE(valueOfKeyPath("text", "").isEqual_("text"));
    EXPECT_TRUE(valueOfKeyPath("text", nil).isEqual_("text"));
}

} // namespace
} // namespace mac::test
