#include "app/RecordBuilding.h"
#include "platform/appkit/arrangement/KeyPathObserver.h"
#include "tests/app/Controller.h"
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

BundleLook lookAtCompanion(id const& shortVersion, id const& version) {
    return {.exists = true,
            .summary = {.identifier = CompanionIdentifier, .version = version, .shortVersion = shortVersion}};
}

NSDictionary recordFrom(RecordBuilder& builder, char const* path, BundleLook const& look) {
    NSMutableSet const records = NSMutableSet::set();
    builder.add(records, NSString::stringWithUTF8String_(path), look);
    return as<NSDictionary>(records.anyObject());
}

TEST(RecordBuilding, CopiesOfOneVersionHaveRecordsOfTheirOwn) {
    RecordBuilder builder(makeController());
    NSDictionary const first = recordFrom(builder, "/a", lookAtCompanion("2.1", "210"));
    NSDictionary const second = recordFrom(builder, "/b", lookAtCompanion("2.1", "210"));
    EXPECT_EQ(text(first.objectForKey_("path")), "/a");
    EXPECT_EQ(text(second.objectForKey_("path")), "/b");
    EXPECT_EQ(text(second.objectForKey_("displayPath")), "/b");
    EXPECT_EQ(text(second.objectForKey_("versionString")), "2.1 (210)");
    EXPECT_EQ(first.count(), second.count());
    as<NSMutableDictionary>(id(first)).setObject_forKey_("changed", "version");
    EXPECT_EQ(text(second.objectForKey_("version")), "210");
    EXPECT_EQ(text(recordFrom(builder, "/c", lookAtCompanion("2.1", "210")).objectForKey_("version")), "210");
}

TEST(RecordBuilding, CopiesOfSeveralVersionsTellTheirOwn) {
    RecordBuilder builder(makeController());
    for (int round = 0; round < 3; ++round) {
        for (char const* const number : {"1", "2", "3"}) {
            id const version = NSString::stringWithUTF8String_(number);
            NSDictionary const record = recordFrom(builder, number, lookAtCompanion("2.1", version));
            EXPECT_EQ(text(record.objectForKey_("path")), number);
            EXPECT_EQ(text(record.objectForKey_("version")), number);
            EXPECT_EQ(text(record.objectForKey_("versionString")), "2.1 (" + std::string(number) + ")");
            as<NSMutableDictionary>(id(record)).setObject_forKey_("changed", "version");
        }
    }
}

TEST(RecordBuilding, ACopyWithoutVersionHasNoneInItsRecord) {
    RecordBuilder builder(makeController());
    EXPECT_TRUE(recordFrom(builder, "/a", lookAtCompanion("2.1", nil)).objectForKey_("version") == nil);
    EXPECT_EQ(text(recordFrom(builder, "/a", lookAtCompanion("2.1", nil)).objectForKey_("versionString")),
              "2.1 ((null))");
    EXPECT_EQ(text(recordFrom(builder, "/a", lookAtCompanion("", "")).objectForKey_("versionString")), " ()");
    EXPECT_EQ(text(recordFrom(builder, "/a", lookAtCompanion(nil, "")).objectForKey_("versionString")), "(null) ()");
}

TEST(RecordBuilding, FlagsOfASourceAreThoseOfThePath) {
    AppController const controller = makeController();
    controller.setIsRunningPaths_(NSSet::setWithObject_(entry("/b", "psn", NSNumber::numberWithInt_(7))));
    RecordBuilder builder(controller);
    BundleLook const look = lookAtCompanion("2.1", "210");
    EXPECT_FALSE(flag(recordFrom(builder, "/a", look), "isRunning"));
    EXPECT_TRUE(flag(recordFrom(builder, "/b", look), "isRunning"));
    EXPECT_EQ(text(recordFrom(builder, "/b", look).objectForKey_("psn")), "7");
    EXPECT_TRUE(recordFrom(builder, "/c", look).objectForKey_("psn") == nil);
}

TEST(RecordBuilding, AnotherBundleHasEmptyVersions) {
    RecordBuilder builder(makeController());
    BundleLook look = lookAtCompanion("2.1", "210");
    look.summary.identifier = "com.example.other";
    EXPECT_FALSE(isCompanion(look));
    EXPECT_EQ(text(recordFrom(builder, "/a", look).objectForKey_("versionString")), "");
    EXPECT_TRUE(flag(recordFrom(builder, "/a", look), "exists"));
    EXPECT_FALSE(flag(recordFrom(builder, "/a", {}), "exists"));
}

TEST(RecordBuilding, ItemsThatAnswerTogetherMakeOneInventory) {
    AppController const controller = makeController();
    int inventories = 0;
    mac::KeyPathObserver const observer(controller, "paths", [&inventories] { ++inventories; });
    for (int round = 1; round <= 2; ++round) {
        for (int item = 0; item < 3; ++item)
            reSyncSoon(controller);
        EXPECT_EQ(inventories, round - 1) << "not at once";
        bool isOver = false;
        mac::performOnMainRunLoop([&isOver] { isOver = true; });
        EXPECT_TRUE(runUntil([&isOver] { return isOver; }));
        EXPECT_EQ(inventories, round);
    }
    reSyncSoon(nil);
}

} // namespace
} // namespace framekeeper::test
