#include "tests/app/Controller.h"
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

NSNumber psn(long long value) { return NSNumber::numberWithLongLong_(value); }

// Makes the copy's information file old enough for its time to be relied on.
void letSettle(NSString const& path) {
    std::filesystem::last_write_time(path.UTF8String() + "/Contents/Info.plist",
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
}

TEST(PathRecords, AreAnEmptySetWhenEverySourceIsEmpty) {
    AppController const controller = makeController();
    ASSERT_TRUE(controller.paths() == nil);
    controller.reSync();
    ASSERT_FALSE(controller.paths() == nil);
    EXPECT_EQ(controller.paths().count(), 0U);
}

TEST(PathRecords, HoldElevenKeysInTheirOrderWhenEveryObjectIsThere) {
    TemporaryFolder const folder;
    AppController const controller = makeController();
    NSMutableSet const records = NSMutableSet::set();
    controller.pathObjects_addPath_psn_autolaunchedItem_toolbarItem_(
        records, makeCopy(folder, "a"), psn(7), NSDictionary::dictionary(), NSDictionary::dictionary());
    NSDictionary const record = as<NSDictionary>(records.anyObject());
    EXPECT_EQ(joined(record.allKeys()),
              "path displayPath exists isRunning psn isAutolaunched autolaunchItem isInToolbar toolbarItem version "
              "versionString");
    EXPECT_TRUE(record.isKindOfClass_(classOf<NSMutableDictionary>()));
}

TEST(PathRecords, LeaveOutTheKeysOfObjectsThatAreNil) {
    AppController const controller = makeController();
    NSMutableSet const records = NSMutableSet::set();
    controller.pathObjects_addPath_psn_autolaunchedItem_toolbarItem_(records, "/a", nil, nil, nil);
    NSDictionary const record = as<NSDictionary>(records.anyObject());
    EXPECT_EQ(joined(record.allKeys()),
              "path displayPath exists isRunning isAutolaunched isInToolbar version versionString");
}

TEST(PathRecords, TakeTheirFlagsFromTheSourcesAndNotFromTheObjects) {
    AppController const controller = makeController();
    NSMutableSet const records = NSMutableSet::set();
    controller.pathObjects_addPath_psn_autolaunchedItem_toolbarItem_(records, "/a", psn(7), "item", "item");
    NSDictionary const record = as<NSDictionary>(records.anyObject());
    EXPECT_FALSE(flag(record, "isRunning"));
    EXPECT_FALSE(flag(record, "isAutolaunched"));
    EXPECT_FALSE(flag(record, "isInToolbar"));

    controller.setIsRunningPaths_(NSSet::setWithObject_(entry("/b", "psn", psn(7))));
    NSMutableSet const others = NSMutableSet::set();
    controller.pathObjects_addPath_psn_autolaunchedItem_toolbarItem_(others, "/b", nil, nil, nil);
    NSDictionary const other = as<NSDictionary>(others.anyObject());
    EXPECT_TRUE(flag(other, "isRunning"));
    EXPECT_TRUE(other.objectForKey_("psn") == nil);
}

TEST(PathRecords, LookTheObjectsOfAPathUpInEachSource) {
    AppController const controller = makeController();
    NSDictionary const loginItem = NSDictionary::dictionaryWithObject_forKey_("/b", "Path");
    NSDictionary const toolbarItem = NSDictionary::dictionary();
    controller.setIsRunningPaths_(NSSet::setWithObjects_({entry("/a", "psn", psn(1)), entry("/b", "psn", psn(2))}));
    controller.setIsAutolaunchedPaths_(NSSet::setWithObject_(entry("/b", "autolaunchItem", loginItem)));
    controller.setIsInToolbarPaths_(NSSet::setWithObject_(entry("/b", "toolbarItem", toolbarItem)));
    NSMutableSet const records = NSMutableSet::set();
    controller.pathObjects_addPath_(records, "/b");
    NSDictionary const record = as<NSDictionary>(records.anyObject());
    EXPECT_EQ(text(record.objectForKey_("psn")), "2");
    EXPECT_TRUE(isSame(record.objectForKey_("autolaunchItem"), loginItem));
    EXPECT_TRUE(isSame(record.objectForKey_("toolbarItem"), toolbarItem));
}

TEST(PathRecords, ShowBothVersionsOfACopy) {
    TemporaryFolder const folder;
    AppController const controller = makeController();
    NSString const path = makeCopy(folder, "a", "2.1", "210");
    controller.setIsOnHarddiskPaths_(pathSet({path}));
    controller.reSync();
    EXPECT_EQ(text(recordOf(controller, path).objectForKey_("version")), "210");
    EXPECT_EQ(text(recordOf(controller, path).objectForKey_("versionString")), "2.1 (210)");
}

TEST(PathRecords, ShowNoVersionsOfABundleWithAnotherIdentifier) {
    TemporaryFolder const folder;
    AppController const controller = makeController();
    NSString const path =
        pathString(folder.makeBundle("Mirror Frame.app", mac::test::informationFile("com.example.other", "1", "1")));
    controller.setIsOnHarddiskPaths_(pathSet({path}));
    controller.reSync();
    EXPECT_EQ(text(recordOf(controller, path).objectForKey_("version")), "");
    EXPECT_EQ(text(recordOf(controller, path).objectForKey_("versionString")), "");
}

TEST(PathRecords, ShowNoVersionsOfItemsThatAreNoBundles) {
    TemporaryFolder const folder;
    AppController const controller = makeController();
    NSString const file = pathString(folder.makeFile("Mirror Frame.app", "text"));
    controller.setIsOnHarddiskPaths_(pathSet({file}));
    controller.reSync();
    EXPECT_EQ(text(recordOf(controller, file).objectForKey_("version")), "");
    EXPECT_TRUE(flag(recordOf(controller, file), "exists"));
}

TEST(PathRecords, HaveNoVersionKeyForACopyWithoutABundleVersion) {
    TemporaryFolder const folder;
    AppController const controller = makeController();
    NSString const path = makeCopy(folder, "a", "2.1", "");
    controller.setIsOnHarddiskPaths_(pathSet({path}));
    controller.reSync();
    EXPECT_TRUE(recordOf(controller, path).objectForKey_("version") == nil);
    EXPECT_EQ(text(recordOf(controller, path).objectForKey_("versionString")), "2.1 ((null))");
}

TEST(PathRecords, ShowAVersionThatIsANumberAsText) {
    TemporaryFolder const folder;
    AppController const controller = makeController();
    NSString const path = pathString(folder.makeBundle(
        "Mirror Frame.app",
        "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>com.tidelark.mirrorframe</string>"
        "<key>CFBundleVersion</key><integer>210</integer></dict></plist>"));
    controller.setIsOnHarddiskPaths_(pathSet({path}));
    controller.reSync();
    EXPECT_TRUE(as<NSString>(recordOf(controller, path).objectForKey_("version")).isEqualToString_("210"));
    EXPECT_EQ(text(recordOf(controller, path).objectForKey_("versionString")), "(null) (210)");
}

TEST(PathRecords, StayThoseOfCopiesThatHaveNotChanged) {
    TemporaryFolder const folder;
    AppController const controller = makeController();
    NSString const gone = makeCopy(folder, "a", "2.1", "210");
    NSString const path = makeCopy(folder, "b", "2.1", "210");
    letSettle(path);
    controller.setIsOnHarddiskPaths_(pathSet({gone, path}));
    controller.reSync();
    // The first look tells texts of the file's own, each later one those that all bundles share.
    controller.reSync();
    NSDictionary const record = recordOf(controller, path);
    controller.setIsOnHarddiskPaths_(pathSet({path}));
    controller.reSync();
    EXPECT_EQ(controller.paths().count(), 1U);
    EXPECT_TRUE(isSame(recordOf(controller, path), record));
}

// Whoever shows more of the selected copy looks again at another record alone.
TEST(PathRecords, AreMadeAnewWhileTheyAreSelectedAlone) {
    TemporaryFolder const folder;
    AppController const controller = makeController();
    NSArrayController const arrangement = NSArrayController::alloc().init();
    controller.setValue_forKey_(arrangement, "pathsArrayController");
    arrangement.bind_toObject_withKeyPath_options_("contentSet", controller, "paths", nil);
    NSString const path = makeCopy(folder, "a");
    letSettle(path);
    controller.setIsOnHarddiskPaths_(pathSet({path}));
    controller.reSync();
    controller.reSync();
    NSDictionary const record = recordOf(controller, path);
    ASSERT_TRUE(arrangement.setSelectedObjects_(NSArray::arrayWithObject_(record)));
    controller.reSync();
    EXPECT_FALSE(isSame(recordOf(controller, path), record));
}

TEST(PathRecords, AreMadeAnewOnceSomebodyChangedThem) {
    TemporaryFolder const folder;
    AppController const controller = makeController();
    NSString const path = makeCopy(folder, "a", "2.1", "210");
    letSettle(path);
    controller.setIsOnHarddiskPaths_(pathSet({path}));
    controller.reSync();
    as<NSMutableDictionary>(id(recordOf(controller, path))).setObject_forKey_("changed", "version");
    controller.reSync();
    EXPECT_EQ(text(recordOf(controller, path).objectForKey_("version")), "210");
}

TEST(PathRecords, AreMadeAnewOnceTheirCopyChanged) {
    TemporaryFolder const folder;
    AppController const controller = makeController();
    NSString const path = makeCopy(folder, "a", "2.1", "210");
    letSettle(path);
    controller.setIsOnHarddiskPaths_(pathSet({path}));
    controller.reSync();
    NSDictionary const before = recordOf(controller, path);
    controller.setIsRunningPaths_(NSSet::setWithObject_(entry(path, "psn", psn(42))));
    controller.reSync();
    EXPECT_TRUE(flag(recordOf(controller, path), "isRunning"));
    EXPECT_FALSE(flag(before, "isRunning")) << "a record tells of the inventory that it is of";
    controller.setIsRunningPaths_(NSSet::set());
    controller.reSync();
    EXPECT_FALSE(flag(recordOf(controller, path), "isRunning"));
    makeCopy(folder, "a", "2.2", "220");
    controller.reSync();
    EXPECT_EQ(text(recordOf(controller, path).objectForKey_("versionString")), "2.2 (220)");
    std::filesystem::remove_all(path.UTF8String());
    controller.reSync();
    EXPECT_FALSE(flag(recordOf(controller, path), "exists"));
}

TEST(PathRecords, ListALoginItemThatTheDiskDoesNotHold) {
    TemporaryFolder const folder;
    NSString const gone = pathString(folder.path("Gone/Mirror Frame.app"));
    AppController const controller = makeController();
    NSDictionary const item = NSDictionary::dictionaryWithObject_forKey_("~/Gone/Mirror Frame.app", "Path");
    controller.setIsAutolaunchedPaths_(NSSet::setWithObject_(entry(gone, "autolaunchItem", item)));
    controller.reSync();
    NSDictionary const record = recordOf(controller, gone);
    EXPECT_TRUE(flag(record, "isAutolaunched"));
    EXPECT_FALSE(flag(record, "exists"));
    EXPECT_TRUE(isSame(record.objectForKey_("autolaunchItem"), item));
}

TEST(PathRecords, JoinAPathOfTwoSourcesIntoOneRecord) {
    AppController const controller = makeController();
    controller.setIsOnHarddiskPaths_(pathSet({"/a"}));
    controller.setIsRunningPaths_(NSSet::setWithObject_(entry("/a", "psn", psn(42))));
    controller.reSync();
    ASSERT_EQ(controller.paths().count(), 1U);
    EXPECT_TRUE(flag(recordOf(controller, "/a"), "isRunning"));
    EXPECT_EQ(text(recordOf(controller, "/a").objectForKey_("psn")), "42");
}

TEST(PathRecords, ShowTheFirstOfTwoRunningCopiesOfOneBundleOnce) {
    AppController const controller = makeController();
    controller.setIsRunningPaths_(NSSet::setWithObjects_({entry("/a", "psn", psn(1)), entry("/a", "psn", psn(2))}));
    controller.reSync();
    ASSERT_EQ(controller.paths().count(), 1U);
    EXPECT_EQ(text(recordOf(controller, "/a").objectForKey_("psn")), "1");
}

TEST(PathRecords, CompareTheirPathsAsExactStrings) {
    AppController const controller = makeController();
    controller.setIsOnHarddiskPaths_(pathSet({"/a"}));
    controller.setIsRunningPaths_(NSSet::setWithObjects_({entry("/A", "psn", psn(1)), entry("/a/", "psn", psn(2))}));
    controller.reSync();
    EXPECT_EQ(controller.paths().count(), 3U);
    EXPECT_FALSE(flag(recordOf(controller, "/a"), "isRunning"));
}

TEST(PathRecords, StandInTheOrderOfTheSources) {
    AppController const controller = makeController();
    controller.setIsInToolbarPaths_(NSSet::setWithObject_(entry("/t", "toolbarItem", "t")));
    controller.setIsAutolaunchedPaths_(NSSet::setWithObject_(entry("/l", "autolaunchItem", "l")));
    controller.setIsRunningPaths_(NSSet::setWithObject_(entry("/r", "psn", psn(1))));
    controller.setIsOnHarddiskPaths_(pathSet({"/d"}));
    controller.reSync();
    NSArray const paths = as<NSArray>(controller.paths().allObjects().valueForKey_("path"));
    EXPECT_EQ(joined(paths), "/d /r /l /t");
}

TEST(PathRecords, OfANilPathLackThePathKeys) {
    AppController const controller = makeController();
    NSMutableSet const records = NSMutableSet::set();
    controller.pathObjects_addPath_(records, nil);
    NSDictionary const record = as<NSDictionary>(records.anyObject());
    EXPECT_TRUE(record.objectForKey_("path") == nil);
    EXPECT_FALSE(flag(record, "exists"));
}

TEST(PathRecords, OfANilControllerAreNil) {
    AppController const controller = nil;
    NSMutableSet const records = NSMutableSet::set();
    controller.pathObjects_addPath_(records, "/a");
    controller.pathObjects_addPath_psn_autolaunchedItem_toolbarItem_(records, "/a", nil, nil, nil);
    controller.reSync();
    EXPECT_EQ(records.count(), 0U);
}

// Ten times the paths must not be a hundred times the work. Work is counted, not timed: every path is read from its
// entry a bounded number of times.
struct CountedEntry : Handle<CountedEntry, NSObject> {
    class Body;
    using Handle::Handle;
    static ClassDescription describeClass() { return {.name = "CountedEntry", .superclass = classOf<NSObject>()}; }
};

std::size_t g_reads = 0;

class CountedEntry::Body : public ObjectBody {
public:
    explicit Body(NSString const& path) : m_path(path) {}
    id valueForKey(NSString const& key) override {
        ++g_reads;
        return key.isEqualToString_("path") ? id(m_path) : id("object");
    }

private:
    NSString m_path;
};

std::size_t readsOfReSync(int count) {
    AppController const controller = makeController();
    NSMutableSet const sources[3]{NSMutableSet::set(), NSMutableSet::set(), NSMutableSet::set()};
    for (int index = 0; index < count; ++index) {
        for (NSMutableSet const& source : sources)
            source.addObject_(adopt<CountedEntry>(NSString::stringWithFormat_("/%d/Mirror Frame.app", index)));
    }
    controller.setIsRunningPaths_(sources[0]);
    controller.setIsAutolaunchedPaths_(sources[1]);
    controller.setIsInToolbarPaths_(sources[2]);
    g_reads = 0;
    controller.reSync();
    EXPECT_EQ(controller.paths().count(), static_cast<NSUInteger>(count));
    return g_reads;
}

TEST(PathRecords, AreRebuiltWithWorkThatGrowsAsThePathsDo) {
    std::size_t const few = readsOfReSync(200);
    EXPECT_LE(readsOfReSync(2000), few * 12);
}

} // namespace
} // namespace framekeeper::test
