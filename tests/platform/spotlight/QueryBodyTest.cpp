#include "platform/spotlight/QueryBody.h"
#include "tests/platform/spotlight/MetadataQuery.h"
#include <cstdio>
#include <utility>

namespace mac::test {
namespace {

// A query whose time stands still but for what the test lets pass.
class MetadataQueryInTime : public MetadataQuery {
protected:
    void SetUp() override {
        query = adopt<NSMetadataQuery>(
            QueryClock{.now = [this] { return NSDate::dateWithTimeIntervalSinceReferenceDate_(m_now); },
                       .startTimer =
                           [this](NSTimeInterval delay, NSMetadataQuery const& target) {
                               m_due = m_now + delay;
                               return m_timer =
                                          NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats_(
                                              Never, target, "deliver:", nil, NO);
                           }},
            itemsInStep());
        MetadataQuery::SetUp();
        query.setNotificationBatchingInterval_(0.2);
    }
    virtual std::size_t itemsInStep() const { return NSMetadataQuery::Body::ItemsInStep; }

    bool runUntilDeliveryIsDue() const {
        return runUntil([this] { return m_timer.isValid(); });
    }
    // The time until the delivery passes.
    void deliver() {
        m_now = std::max(m_now, m_due);
        NSTimer const due = std::exchange(m_timer, NSTimer());
        due.fire();
    }
    bool gatherInTime() {
        if (!query.startQuery()) return false;
        while (query.isGathering()) {
            if (!runUntilDeliveryIsDue()) return false;
            deliver();
        }
        return true;
    }

    static constexpr NSTimeInterval Never = 1'000'000;
    NSTimeInterval m_now{0};
    NSTimeInterval m_due{0};
    NSTimer m_timer{};
};

TEST_F(MetadataQueryInTime, PostsNoProgressBeforeTheIntervalIsOver) {
    constexpr NSUInteger copies = 2000;
    for (NSUInteger index = 0; index < copies; ++index)
        folder.makeFolder(std::to_string(index) + "/Mirror Frame.app");
    std::vector<NSTimeInterval> progress;
    bodyOf(recorder)->onNotification = [&](std::string const& name) {
        if (name == NSMetadataQueryGatheringProgressNotification) progress.push_back(m_now);
    };
    ASSERT_TRUE(gatherInTime());
    EXPECT_EQ(query.resultCount(), copies);
    ASSERT_FALSE(progress.empty());
    EXPECT_LE(progress.front(), 0.05) << "the first finds do not wait for the interval";
    // Several intervals pass where the walk, on a busy computer, found nothing in one.
    for (std::size_t index = 1; index < progress.size(); ++index)
        EXPECT_GE(progress[index] - progress[index - 1], 0.2 - 1e-9);
}

TEST_F(MetadataQueryInTime, PostsNoUpdateBeforeTheIntervalSinceTheObserversWereDoneIsOver) {
    folder.makeFolder("a/Mirror Frame.app");
    ASSERT_TRUE(gatherInTime());
    if (m_timer.isValid()) deliver();
    bodyOf(recorder)->onNotification = [&](std::string const& name) {
        if (name == NSMetadataQueryDidUpdateNotification) m_now += 7;
    };
    m_now += 100;
    ::rename(folder.path("a/Mirror Frame.app").c_str(), folder.path("a/Other").c_str());
    ASSERT_TRUE(runUntilDeliveryIsDue());
    EXPECT_EQ(m_due, m_now) << "the interval has long passed";
    deliver();
    EXPECT_EQ(names().back(), NSMetadataQueryDidUpdateNotification);
    EXPECT_EQ(query.resultCount(), 0U);

    m_now += 0.05;
    ::rename(folder.path("a/Other").c_str(), folder.path("a/Mirror Frame.app").c_str());
    ASSERT_TRUE(runUntilDeliveryIsDue());
    EXPECT_NEAR(m_due - m_now, 0.15, 1e-9);
    EXPECT_EQ(query.resultCount(), 0U);
    deliver();
    EXPECT_EQ(query.resultCount(), 1U);
}

TEST_F(MetadataQueryInTime, BeginsTheIntervalAnewForWhatHappensWhileTheObserversWork) {
    folder.makeFolder("a/Mirror Frame.app");
    ASSERT_TRUE(gatherInTime());
    if (m_timer.isValid()) deliver();
    ::rename(folder.path("a/Mirror Frame.app").c_str(), folder.path("a/Other").c_str());
    ASSERT_TRUE(runUntilDeliveryIsDue());
    bodyOf(recorder)->onNotification = [&](std::string const& name) {
        if (name != NSMetadataQueryDidUpdateNotification) return;
        ::rename(folder.path("a/Other").c_str(), folder.path("a/Mirror Frame.app").c_str());
        EXPECT_TRUE(runUntilDeliveryIsDue());
        m_now += 7;
    };
    deliver();
    bodyOf(recorder)->onNotification = nullptr;
    ASSERT_TRUE(m_timer.isValid());
    EXPECT_NEAR(m_due - m_now, 0.2, 1e-9);
    deliver();
    EXPECT_EQ(query.resultCount(), 1U);
}

// A query that looks at three items without a break, and a computer with ten copies.
class MetadataQueryInSteps : public MetadataQueryInTime {
protected:
    void SetUp() override {
        MetadataQueryInTime::SetUp();
        for (NSUInteger index = 0; index < Copies; ++index)
            folder.makeFolder(std::to_string(index) + "/Mirror Frame.app");
    }
    std::size_t itemsInStep() const override { return 3; }

    // All finds wait, as after a quick walk, and the delivery is due.
    bool findAll() {
        bodyOf(recorder)->onNotification = [this](std::string const& name) { m_posted = name; };
        query.disableUpdates();
        if (!query.startQuery()) return false;
        if (!runUntil([this] { return hasPosted(NSMetadataQueryDidStartGatheringNotification); })) return false;
        if (!runUntilWalkIsOver()) return false;
        query.enableUpdates();
        return runUntilDeliveryIsDue();
    }
    bool runUntilWalkIsOver() const {
        return runUntil([this] { return bodyOf(query)->progress().isFinished; });
    }
    bool hasPosted(char const* name) const { return m_posted == name; }

    static constexpr NSUInteger Copies = 10;
    std::string m_posted;
};

TEST_F(MetadataQueryInSteps, TellsOfManyFindsOnceAndWorksThemOffInSteps) {
    ASSERT_TRUE(findAll());
    int steps = 0;
    while (!hasPosted(NSMetadataQueryGatheringProgressNotification)) {
        EXPECT_EQ(query.resultCount(), 0U) << "what observers read changes with the last step";
        ASSERT_TRUE(runUntilDeliveryIsDue());
        NSTimeInterval const before = m_now;
        deliver();
        EXPECT_TRUE(steps == 0 || m_now == before) << "a further step waits for nothing";
        ++steps;
    }
    EXPECT_GT(steps, 1);
    EXPECT_GT(query.resultCount(), 3U);
}

TEST_F(MetadataQueryInSteps, WorksManyFindsOffAtOnceIfItEndsWithGathering) {
    query.setEndsWithGathering_(true);
    ASSERT_TRUE(findAll());
    deliver();
    EXPECT_TRUE(hasPosted(NSMetadataQueryGatheringProgressNotification));
    EXPECT_EQ(query.resultCount(), Copies);
}

TEST_F(MetadataQueryInSteps, EndsAlsoIfTheWalkEndsBetweenTwoSteps) {
    for (int index = 0; index < 2000; ++index)
        folder.makeFolder("none/" + std::to_string(index));
    ASSERT_TRUE(query.startQuery());
    ASSERT_TRUE(runUntilDeliveryIsDue());
    deliver();
    ASSERT_TRUE(runUntilWalkIsOver());
    runForAMoment(); // the news of its end come between the two steps
    while (query.isGathering()) {
        ASSERT_TRUE(runUntilDeliveryIsDue()) << "nothing asks for the end";
        deliver();
    }
    EXPECT_EQ(query.resultCount(), Copies);
}

TEST_F(MetadataQueryInSteps, StopsBetweenTwoSteps) {
    ASSERT_TRUE(findAll());
    deliver();
    ASSERT_TRUE(m_timer.isValid()) << "another step follows";
    query.stopQuery();
    EXPECT_TRUE(query.isStopped());
    EXPECT_FALSE(m_timer.isValid());
    EXPECT_EQ(query.resultCount(), 0U);
    ASSERT_TRUE(gatherInTime()) << "it starts anew";
    EXPECT_EQ(query.resultCount(), Copies);
}

TEST_F(MetadataQueryInSteps, TellsOfManyChangedFoldersOnce) {
    ASSERT_TRUE(gatherInTime());
    EXPECT_EQ(query.resultCount(), Copies);
    for (NSUInteger index = 0; index < Copies; index += 2) {
        std::string const copy = folder.path(std::to_string(index) + "/Mirror Frame.app");
        ASSERT_EQ(::rename(copy.c_str(), folder.path(std::to_string(index) + "/Other").c_str()), 0);
    }
    int steps = 0;
    while (std::ranges::count(names(), std::string(NSMetadataQueryDidUpdateNotification)) == 0) {
        EXPECT_EQ(query.resultCount(), Copies);
        ASSERT_TRUE(runUntilDeliveryIsDue());
        deliver();
        ++steps;
    }
    EXPECT_GT(steps, 3);
    EXPECT_LT(query.resultCount(), Copies);
    while (m_timer.isValid() || query.resultCount() > Copies / 2) {
        ASSERT_TRUE(runUntilDeliveryIsDue());
        deliver();
    }
    EXPECT_EQ(query.resultCount(), Copies / 2);
}

} // namespace
} // namespace mac::test
