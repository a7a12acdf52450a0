#include "platform/appkit/interface/VersionOrder.h"
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
