#include "platform/spotlight/QueryBody.h"
#include "tests/platform/spotlight/MetadataQuery.h"
#include "tests/support/OrdinaryUser.h"
#include <sys/stat.h>
#include <unistd.h>

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

    void searchBefore() {
        ASSERT_TRUE(gather());
        ASSERT_TRUE(runUntil([this] { return isRemembered(); }));
        query.stopQuery();
        query = NSMetadataQuery::alloc().init();
        recorder = adopt<QueryRecorder>();
        MetadataQuery::SetUp();
    }
    std::vector<NSUInteger> const& counts() const { return bodyOf(recorder)->counts; }

    TemporaryFolder const m_cache{};
};

TEST_F(RememberedCopies, ComeInTheFirstBatchAndOnce) {
    for (char const* name : {"a", "b", "c"})
        folder.makeFolder(std::string(name) + "/Mirror Frame.app");
    searchBefore();
    ASSERT_EQ(::rmdir(folder.path("b/Mirror Frame.app").c_str()), 0);
    ASSERT_TRUE(gather());
    ASSERT_GE(names().size(), 3U);
    EXPECT_EQ(names()[0], NSMetadataQueryDidStartGatheringNotification);
    EXPECT_EQ(names()[1], NSMetadataQueryGatheringProgressNotification);
    EXPECT_EQ(counts()[1], 2U) << "without the one that is gone";
    EXPECT_EQ(counts().back(), 2U);
    EXPECT_EQ(foundPaths().count(), 2U);
}

TEST_F(RememberedCopies, AreNotWaitedForInTheFirstBatch) {
    folder.makeFolder("a/Mirror Frame.app");
    searchBefore();
    std::vector<NSTimeInterval> delays;
    query = adopt<NSMetadataQuery>(
        QueryClock{.now = [] { return NSDate::date(); },
                   .startTimer =
                       [&delays](NSTimeInterval delay, NSMetadataQuery const& target) {
                           delays.push_back(delay);
                           return NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats_(
                               delay, target, "deliver:", nil, NO);
                       }});
    MetadataQuery::SetUp();
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
