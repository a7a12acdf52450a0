#include "platform/spotlight/QueryBody.h"
#include "tests/platform/spotlight/MetadataQuery.h"
#include "tests/support/OrdinaryUser.h"
#include <chrono>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace mac::test {
namespace {

// A computer that was searched before, by a program that has ended since.
class RememberedCopies : public MetadataQuery {
protected:
    void SetUp() override {
        ::setenv("XDG_CACHE_HOME", m_cache.path().c_str(), 1);
        MetadataQuery::SetUp();
    }
    void TearDown() override {
        MetadataQuery::TearDown();
        ::unsetenv("XDG_CACHE_HOME");
    }
    std::string memoryFile() const { return m_cache.path("framekeeper/" + std::string(WalkMemory::fileName)); }
    bool isRemembered() const { return ::access(memoryFile().c_str(), F_OK) == 0; }

    // The next query waits at its start for what this search found, however long the machine takes.
    void searchBefore(std::size_t itemsInStep = NSMetadataQuery::Body::ItemsInStep) {
        ASSERT_TRUE(gather());
        ASSERT_TRUE(runUntil([this] { return isRemembered(); }));
        useQuery(patientClock(), itemsInStep);
    }
    static QueryClock patientClock() {
        return {.waitUntilRecalled = [](VolumeWalker const& walker) {
            return walker.waitUntilRecalled(std::chrono::hours(1));
        }};
    }
    void useQuery(QueryClock clock, std::size_t itemsInStep = NSMetadataQuery::Body::ItemsInStep) {
        query.stopQuery();
        query = adopt<NSMetadataQuery>(std::move(clock), itemsInStep);
        recorder = adopt<QueryRecorder>();
        MetadataQuery::SetUp();
    }
    std::vector<NSUInteger> const& counts() const { return bodyOf(recorder)->counts; }

    TemporaryFolder const m_cache{};
};

TEST_F(RememberedCopies, ComeWithTheStartAndOnce) {
    for (char const* name : {"a", "b", "c"})
        folder.makeFolder(std::string(name) + "/Mirror Frame.app");
    searchBefore();
    ASSERT_EQ(::rmdir(folder.path("b/Mirror Frame.app").c_str()), 0);
    ASSERT_TRUE(gather());
    EXPECT_EQ(names(), (std::vector<std::string>{NSMetadataQueryDidStartGatheringNotification,
                                                 NSMetadataQueryDidFinishGatheringNotification}));
    EXPECT_EQ(counts(), (std::vector<NSUInteger>{2, 2})) << "without the one that is gone";
    EXPECT_EQ(foundPaths().count(), 2U);
}

TEST_F(RememberedCopies, ThatAreNotKnownAtTheStartComeInTheFirstBatch) {
    folder.makeFolder("a/Mirror Frame.app");
    searchBefore();
    useQuery({.waitUntilRecalled = [](VolumeWalker const&) { return false; }});
    ASSERT_TRUE(gather());
    EXPECT_EQ(names(), (std::vector<std::string>{NSMetadataQueryDidStartGatheringNotification,
                                                 NSMetadataQueryGatheringProgressNotification,
                                                 NSMetadataQueryDidFinishGatheringNotification}));
    EXPECT_EQ(counts(), (std::vector<NSUInteger>{0, 1, 1}));
}

TEST_F(RememberedCopies, AreTheStartsIfOneStepTakesThem) {
    for (char const* name : {"a", "b", "c"})
        folder.makeFolder(std::string(name) + "/Mirror Frame.app");
    searchBefore(2);
    ASSERT_TRUE(gather());
    EXPECT_EQ(counts().front(), 0U);
    ASSERT_GE(names().size(), 3U);
    EXPECT_EQ(names()[1], NSMetadataQueryGatheringProgressNotification);
    EXPECT_EQ(counts()[1], 3U) << "all of them at once, though in steps";
    useQuery(patientClock(), 3);
    ASSERT_TRUE(gather());
    EXPECT_EQ(counts(), (std::vector<NSUInteger>{3, 3}));
}

TEST_F(RememberedCopies, AreNotTheStartsWhileUpdatesAreDisabled) {
    folder.makeFolder("a/Mirror Frame.app");
    searchBefore();
    query.disableUpdates();
    ASSERT_TRUE(query.startQuery());
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidStartGatheringNotification));
    EXPECT_EQ(counts(), std::vector<NSUInteger>{0});
    query.enableUpdates();
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidFinishGatheringNotification));
    EXPECT_EQ(counts(), (std::vector<NSUInteger>{0, 1, 1}));
}

TEST_F(RememberedCopies, MayBeStoppedByAnObserverOfTheStart) {
    folder.makeFolder("a/Mirror Frame.app");
    searchBefore();
    bodyOf(recorder)->onNotification = [this](std::string const&) { query.stopQuery(); };
    ASSERT_TRUE(query.startQuery());
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidStartGatheringNotification));
    runForAMoment();
    EXPECT_TRUE(query.isStopped());
    EXPECT_EQ(counts(), std::vector<NSUInteger>{1});
}

TEST_F(RememberedCopies, MayBeLookedForAnewByAnObserverOfTheStart) {
    folder.makeFolder("a/Mirror Frame.app");
    searchBefore();
    bodyOf(recorder)->onNotification = [this](std::string const&) {
        bodyOf(recorder)->onNotification = nullptr;
        query.stopQuery();
        EXPECT_TRUE(query.startQuery());
        EXPECT_EQ(query.resultCount(), 0U) << "the results are of the search that has begun";
    };
    ASSERT_TRUE(gather());
    EXPECT_EQ(names(), (std::vector<std::string>{NSMetadataQueryDidStartGatheringNotification,
                                                 NSMetadataQueryDidStartGatheringNotification,
                                                 NSMetadataQueryDidFinishGatheringNotification}));
    EXPECT_EQ(counts(), (std::vector<NSUInteger>{1, 1, 1}));
}

TEST_F(RememberedCopies, ThatGoAfterTheStartAreTakenAway) {
    folder.makeFolder("a/Mirror Frame.app");
    searchBefore();
    bodyOf(recorder)->onNotification = [this](std::string const& name) {
        if (name != NSMetadataQueryDidStartGatheringNotification) return;
        EXPECT_EQ(::rmdir(folder.path("a/Mirror Frame.app").c_str()), 0);
    };
    ASSERT_TRUE(gather());
    EXPECT_EQ(counts().front(), 1U);
    EXPECT_TRUE(runUntil([this] { return query.resultCount() == 0; }));
}

TEST_F(RememberedCopies, AreNotWaitedForInTheFirstBatch) {
    folder.makeFolder("a/Mirror Frame.app");
    searchBefore();
    std::vector<NSTimeInterval> delays;
    useQuery({.startTimer =
                  [&delays](NSTimeInterval delay, NSMetadataQuery const& target) {
                      delays.push_back(delay);
                      return NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats_(
                          delay, target, "deliver:", nil, NO);
                  },
              .waitUntilRecalled = [](VolumeWalker const&) { return false; }});
    ASSERT_TRUE(gather());
    ASSERT_FALSE(delays.empty());
    EXPECT_EQ(delays.front(), 0);
}

TEST_F(RememberedCopies, AreJoinedByWhatTheWalkFinds) {
    folder.makeFolder("a/Mirror Frame.app");
    searchBefore();
    folder.makeFolder("b/new/Mirror Frame.app");
    ASSERT_TRUE(gather());
    EXPECT_TRUE(foundPaths().isEqualToSet_(NSSet::setWithArray_(NSArray::arrayWithObjects_(
        {string(folder.path("a/Mirror Frame.app")), string(folder.path("b/new/Mirror Frame.app"))}))));
    EXPECT_EQ(query.resultCount(), 2U);
}

TEST_F(RememberedCopies, AreTakenAwayWhenTheWalkDoesNotComeToThem) {
    folder.makeFolder("a/b/Mirror Frame.app");
    for (char const* path : {"", "/a", "/a/b", "/a/b/Mirror Frame.app"})
        OrdinaryUser::own(folder.path() + path);
    OrdinaryUser::own(m_cache.path());
    OrdinaryUser const user;
    searchBefore();
    // It can be reached, but not be listed.
    ASSERT_EQ(::chmod(folder.path("a").c_str(), 0300), 0);
    ASSERT_TRUE(gather());
    EXPECT_EQ(query.resultCount(), 0U);
    ASSERT_GE(names().size(), 3U);
    EXPECT_EQ(names()[names().size() - 2], NSMetadataQueryGatheringProgressNotification);
    EXPECT_EQ(counts()[counts().size() - 2], 0U) << "told before the end, which observers may leave alone";
    EXPECT_EQ(query.unreadableFolderCount(), 1U);
    ::chmod(folder.path("a").c_str(), 0700);
}

TEST_F(RememberedCopies, AreOfTheWholeComputerAlone) {
    folder.makeFolder("a/Mirror Frame.app");
    query.setSearchScopes_(NSArray::arrayWithObject_(string(folder.path())));
    ASSERT_TRUE(gather());
    query.stopQuery();
    EXPECT_FALSE(isRemembered());
}

TEST_F(RememberedCopies, OfADamagedFileAreNone) {
    folder.makeFolder("a/Mirror Frame.app");
    searchBefore();
    ASSERT_EQ(::truncate(memoryFile().c_str(), 100), 0);
    ASSERT_TRUE(gather());
    EXPECT_EQ(query.resultCount(), 1U);
}

TEST_F(RememberedCopies, AreKnownInASecondScanOfTheSameQuery) {
    folder.makeFolder("a/Mirror Frame.app");
    ASSERT_TRUE(gather());
    ASSERT_TRUE(runUntil([this] { return isRemembered(); }));
    query.stopQuery();
    ASSERT_EQ(::unlink(memoryFile().c_str()), 0);
    ASSERT_TRUE(query.startQuery());
    EXPECT_TRUE(runUntilNamed(NSMetadataQueryDidFinishGatheringNotification, 2));
    EXPECT_EQ(query.resultCount(), 1U);
}

} // namespace
} // namespace mac::test
