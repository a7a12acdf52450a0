#include "platform/foundation/running/Log.h"
#include "tests/app/Complaints.h"
#include "tests/app/Controller.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <vector>

namespace framekeeper::test {
namespace {

// A controller whose local computer is one folder.
class SpotlightScan : public OnlyOwnCopies {
protected:
    void SetUp() override {
        OnlyOwnCopies::SetUp();
        ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", m_folder.path().c_str(), 1);
    }
    void TearDown() override {
        m_controller.query().stopQuery();
        ::unsetenv("FRAMEKEEPER_LOCAL_COMPUTER");
    }

    bool gathered() const {
        return runUntil([this] { return !m_controller.query().isGathering(); });
    }

    TemporaryFolder m_folder;
    AppController m_controller = makeController();
};

TEST_F(SpotlightScan, FillsTheInventoryWhileItGathers) {
    NSString const first = makeCopy(m_folder, "Downloads");
    NSString const second = makeCopy(m_folder, "Applications/Old", "1.9", "99");
    m_controller.scanAction_(nil);
    ASSERT_TRUE(gathered());
    EXPECT_EQ(m_controller.paths().count(), 2U);
    EXPECT_FALSE(recordOf(m_controller, first) == nil);
    EXPECT_EQ(text(recordOf(m_controller, second).objectForKey_("versionString")), "1.9 (99)");
}

TEST_F(SpotlightScan, LeavesOutABundleWithAnotherIdentifier) {
    m_folder.makeBundle("Mirror Frame.app", mac::test::informationFile("com.example.other", "1", "1"));
    m_controller.scanAction_(nil);
    ASSERT_TRUE(gathered());
    EXPECT_EQ(m_controller.query().resultCount(), 1U);
    EXPECT_EQ(m_controller.isOnHarddiskPaths().count(), 0U);
    EXPECT_EQ(m_controller.paths().count(), 0U);
}

TEST_F(SpotlightScan, LeavesOutAResultThatHasGone) {
    NSString const path = makeCopy(m_folder, "a");
    m_controller.scanAction_(nil);
    ASSERT_TRUE(gathered());
    m_controller.query().disableUpdates();
    ::rename(m_folder.path("a").c_str(), m_folder.path("b").c_str());
    m_controller.syncQuery();
    EXPECT_EQ(m_controller.query().resultCount(), 1U);
    EXPECT_TRUE(recordOf(m_controller, path) == nil);
}

TEST_F(SpotlightScan, EmptiesTheTableAtOnceButKeepsTheDisksPaths) {
    makeCopy(m_folder, "a");
    m_controller.scanAction_(nil);
    ASSERT_TRUE(gathered());
    m_controller.scanAction_(nil);
    EXPECT_TRUE(m_controller.paths() == nil);
    EXPECT_EQ(m_controller.isOnHarddiskPaths().count(), 1U);
}

TEST_F(SpotlightScan, OfNothingLeavesTheTableEmpty) {
    m_controller.scanAction_(nil);
    ASSERT_TRUE(gathered());
    ASSERT_FALSE(m_controller.paths() == nil);
    EXPECT_EQ(m_controller.paths().count(), 0U);
}

TEST_F(SpotlightScan, StoppedKeepsTheRecordsAlreadyShown) {
    NSString const path = makeCopy(m_folder, "a");
    m_controller.scanAction_(nil);
    ASSERT_TRUE(runUntil([this] { return m_controller.paths().count() == 1; }));
    m_controller.stopAction_(nil);
    EXPECT_FALSE(recordOf(m_controller, path) == nil);
    EXPECT_TRUE(m_controller.query().isStopped());
}

TEST_F(SpotlightScan, IgnoresTheEndOfGatheringAndLiveUpdates) {
    NSNotification const notification =
        NSNotification::notificationWithName_object_userInfo_("n", m_controller.query(), nil);
    m_controller.queryDidFinish_(notification);
    m_controller.queryDidUpdate_(notification);
    EXPECT_TRUE(m_controller.paths() == nil);
}

TEST_F(SpotlightScan, FollowsTheStartAndTheProgressOfTheQuery) {
    NSNotification const notification =
        NSNotification::notificationWithName_object_userInfo_("n", m_controller.query(), nil);
    m_controller.queryDidStart_(notification);
    EXPECT_FALSE(m_controller.paths() == nil);
    m_controller.setPaths_(nil);
    m_controller.queryGatheringProgress_(notification);
    EXPECT_FALSE(m_controller.paths() == nil);
}

TEST_F(SpotlightScan, SyncsTheDisksPathsWithoutTheInventory) {
    m_controller.syncIsOnHarddisk();
    EXPECT_FALSE(m_controller.isOnHarddiskPaths() == nil);
    EXPECT_TRUE(m_controller.paths() == nil);
}

TEST_F(SpotlightScan, RefusedBeepsAndSaysSo) {
    m_controller.query().setPredicate_(nil);
    Complaints const complaints;
    m_controller.scanAction_(nil);
    EXPECT_EQ(complaints.beeps, 1);
    EXPECT_EQ(complaints.lines, std::vector<std::string>{"ERROR: Could not start Spotlight query."});
    EXPECT_TRUE(m_controller.paths() == nil);
}

TEST_F(SpotlightScan, BeginsWhenTheInterfaceIsThere) {
    m_controller.setIsRunningPaths_(NSSet::setWithObject_(entry("/a", "psn", "1")));
    m_controller.setIsAutolaunchedPaths_(NSSet::setWithObject_(entry("/a", "autolaunchItem", "1")));
    m_controller.setIsInToolbarPaths_(NSSet::setWithObject_(entry("/a", "toolbarItem", "1")));
    m_controller.awakeFromNib();
    EXPECT_EQ(m_controller.isRunningPaths().count(), 0U);
    EXPECT_EQ(m_controller.isAutolaunchedPaths().count(), 0U);
    EXPECT_EQ(m_controller.isInToolbarPaths().count(), 0U);
    EXPECT_TRUE(m_controller.paths() == nil) << "the inventory waits for the query";
    EXPECT_TRUE(m_controller.query().isGathering());
}

TEST_F(SpotlightScan, RefusedWhenTheInterfaceIsThereBeepsAndSaysSo) {
    m_controller.query().setPredicate_(nil);
    Complaints const complaints;
    m_controller.awakeFromNib();
    EXPECT_EQ(complaints.beeps, 1);
    EXPECT_EQ(complaints.lines, std::vector<std::string>{"ERROR: Could not start Spotlight query."});
    EXPECT_TRUE(m_controller.paths() == nil);
}

TEST(SpotlightScanOfNil, DoesNothing) {
    Complaints const complaints;
    AppController const controller = nil;
    controller.awakeFromNib();
    controller.scanAction_(nil);
    controller.stopAction_(nil);
    controller.syncQuery();
    controller.syncIsOnHarddisk();
    controller.queryDidStart_(nil);
    controller.queryGatheringProgress_(nil);
    EXPECT_EQ(complaints.beeps, 0);
    EXPECT_EQ(complaints.lines, std::vector<std::string>());
}

// A bundle whose information file is bad in one way; the others must be listed all the same.
struct BadInformation {
    char const* name;
    std::string text;
};

std::string nested(std::size_t depth) {
    std::string text = "<plist version=\"1.0\">";
    for (std::size_t level = 0; level < depth; ++level)
        text += "<array>";
    return text;
}

std::string sharedReferenceBomb() {
    // Thirty arrays, each of which holds the next one ten times.
    std::string text = "bplist00";
    std::string offsets;
    for (char index = 0; index < 30; ++index) {
        offsets += static_cast<char>(text.size() >> 8);
        offsets += static_cast<char>(text.size());
        text += '\xAA';
        text.append(10, static_cast<char>(index + 1));
    }
    offsets += static_cast<char>(text.size() >> 8);
    offsets += static_cast<char>(text.size());
    text += "Qx";
    auto const table = static_cast<char>(text.size() >> 8);
    auto const tableLow = static_cast<char>(text.size());
    text += offsets;
    text += std::string(6, '\0') + std::string("\x02\x01", 2) + std::string(7, '\0') + '\x1F' + std::string(8, '\0') +
            std::string(6, '\0') + table + tableLow;
    return text;
}

std::vector<BadInformation> badInformation() {
    std::string const whole = mac::test::informationFile("com.tidelark.mirrorframe", "2.1", "210");
    return {
        {"empty", ""},
        {"cut", whole.substr(0, whole.size() / 2)},
        {"array", "<plist version=\"1.0\"><array/></plist>"},
        {"number", "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><integer>7</integer></dict></plist>"},
        {"entities",
         "<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY a \"b\"><!ENTITY c SYSTEM \"file:///etc/passwd\">]>"
         "<plist><dict><key>CFBundleIdentifier</key><string>&a;&c;</string></dict></plist>"},
        {"nested", nested(1'000'000)},
        {"old style nested", std::string(1'000'000, '(')},
        {"bomb", sharedReferenceBomb()},
        {"length", std::string("bplist00\x5F\x12\x7F\xFF\xFF\xFF\x08", 15) + std::string(26, '\0')},
        {"noise", std::string("\0\xFF\xFE\x01", 4)},
    };
}

TEST_F(SpotlightScan, ListsTheOtherCopiesBesideBadInformationFilesAndSaysWhichAreBad) {
    NSString const good = makeCopy(m_folder, "good");
    std::vector<BadInformation> const bad = badInformation();
    for (auto const& [name, text] : bad)
        m_folder.makeBundle(std::string(name) + "/Mirror Frame.app", text);
    m_folder.makeFolder("none/Mirror Frame.app");
    m_folder.makeFolder("folder/Mirror Frame.app/Contents/Info.plist");
    m_folder.makeFolder("pipe/Mirror Frame.app/Contents");
    ASSERT_EQ(::mkfifo(m_folder.path("pipe/Mirror Frame.app/Contents/Info.plist").c_str(), 0600), 0);
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    m_controller.scanAction_(nil);
    ASSERT_TRUE(gathered());
    EXPECT_EQ(m_controller.query().resultCount(), bad.size() + 4);
    EXPECT_EQ(m_controller.paths().count(), 1U);
    EXPECT_FALSE(recordOf(m_controller, good) == nil);
    for (BadInformation const& information : bad) {
        std::string const name = information.name;
        // A list of the wrong kind of identifier is a good file of another bundle.
        bool const isReported = std::ranges::any_of(
            lines, [&](std::string const& line) { return line.find(m_folder.path(name)) != std::string::npos; });
        EXPECT_EQ(isReported, name != "number") << name;
    }
}

TEST_F(SpotlightScan, ReadsTheOtherThreeSourcesAnew) {
    m_controller.setIsRunningPaths_(NSSet::setWithObject_(entry("/a", "psn", "1")));
    m_controller.setIsAutolaunchedPaths_(NSSet::setWithObject_(entry("/a", "autolaunchItem", "1")));
    m_controller.setIsInToolbarPaths_(NSSet::setWithObject_(entry("/a", "toolbarItem", "1")));
    m_controller.scanAction_(nil);
    EXPECT_EQ(m_controller.isRunningPaths().count(), 0U);
    EXPECT_EQ(m_controller.isAutolaunchedPaths().count(), 0U);
    EXPECT_EQ(m_controller.isInToolbarPaths().count(), 0U);
}

} // namespace
} // namespace framekeeper::test
