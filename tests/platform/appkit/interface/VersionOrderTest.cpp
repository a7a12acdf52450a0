#include "platform/foundation/text/VersionOrder.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

TEST(VersionOrder, CountsNumbersAndThenBuilds) {
    std::vector<char const*> const ascending{"(null) (9)", "1.4 (72)",  "2.1 (99)",  "2.1 (210)",
                                             "2.1.5 (20)", "2.9 (290)", "2.10 (100)"};
    for (std::size_t first = 0; first < ascending.size(); ++first) {
        for (std::size_t second = 0; second < ascending.size(); ++second) {
            int const order = compareAsVersion_(NSString::stringWithUTF8String_(ascending[first]),
                                                NSString::stringWithUTF8String_(ascending[second]));
            int const expected = first < second ? -1 : first > second ? 1 : 0;
            EXPECT_EQ(order, expected) << ascending[first] << " and " << ascending[second];
        }
    }
}

TEST(VersionOrder, IsTheOrderOfASortByIt) {
    NSArray const ascending = NSArray::arrayWithObjects_(
        {"(null) (9)", "1.4 (72)", "2.1 (099)", "2.1 (210)", "2.1.5 (20)", "2.9 (290)", "2.10 (100)",
         NSString::stringWithUTF8String_("2.10 beta (\xC3\x84)"), "2.99999999999999999999998",
         "2.99999999999999999999999", "2.100000000000000000000000"});
    NSMutableArray const shuffled = NSMutableArray::array();
    for (NSUInteger index = 0; index < ascending.count(); ++index)
        shuffled.addObject_(ascending.objectAtIndex_((index * 7 + 3) % ascending.count()));
    NSSortDescriptor const criterion =
        NSSortDescriptor::sortDescriptorWithKey_ascending_selector_("description", YES, SEL("compareAsVersion:"));
    NSArray const sorted = shuffled.sortedArrayUsingDescriptors_(NSArray::arrayWithObjects_({criterion}));
    EXPECT_TRUE(sorted.isEqual_(ascending)) << sorted.description().UTF8String();
}

TEST(VersionOrder, KnowsNil) {
    EXPECT_EQ(compareAsVersion_(nil, "1"), NSOrderedSame);
    EXPECT_EQ(compareAsVersion_("1", nil), NSOrderedDescending);
}

TEST(VersionOrder, TakesNumbersOfAnyLength) {
    NSString const small = "99999999999999999999999999999999999998";
    NSString const large = "99999999999999999999999999999999999999";
    EXPECT_EQ(compareAsVersion_(small, large), NSOrderedAscending);
    EXPECT_EQ(compareAsVersion_(large, small), NSOrderedDescending);
}

TEST(VersionOrder, ComesWithAClickWhileTheWindowStartsWithTheOrderOfTexts) {
    LoadedWindow const window;
    NSMutableSet const records = NSMutableSet::set();
    records.addObject_(makeRecord("/nine", "290", "2.9 (290)"));
    records.addObject_(makeRecord("/ten", "2100", "2.10 (2100)"));
    records.addObject_(makeRecord("/older", "99", "1.9 (99)"));
    window.controller().setPaths_(records);
    EXPECT_EQ(window.column(PathColumn), QStringList({"/older", "/nine", "/ten"})) << "the greatest text first";
    window.clickHeader(VersionColumn);
    EXPECT_EQ(window.column(PathColumn), QStringList({"/ten", "/nine", "/older"}));
    window.clickHeader(VersionColumn);
    EXPECT_EQ(window.column(PathColumn), QStringList({"/older", "/nine", "/ten"}));
    NSArray const criteria = window.controller().pathsTableView().sortDescriptors();
    EXPECT_EQ(criteria.count(), 2U) << "by version in one way only, then by path";
    EXPECT_TRUE(as<NSSortDescriptor>(criteria.objectAtIndex_(0)).selector() == SEL("compareAsVersion:"));
}

} // namespace
} // namespace mac::test
