#pragma once

#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/running/NSTimer.h"
#include "platform/spotlight/FolderWatch.h"
#include "platform/spotlight/NSMetadataQuery.h"
#include "platform/system/walker/VolumeWalker.h"
#include "platform/system/walker/WalkMemory.h"
#include <functional>
#include <memory>
#include <optional>
#include <set>

namespace mac {

// When a query delivers: the time, and timers that send "deliver:" to it once.
struct QueryClock {
    std::function<NSDate()> now = [] { return NSDate::date(); };
    std::function<NSTimer(NSTimeInterval delay, NSMetadataQuery const& query)> startTimer =
        [](NSTimeInterval delay, NSMetadataQuery const& query) {
            return NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats_(delay, query,
                                                                                             "deliver:", nil, NO);
        };
};

// A query at work. The walker's threads only say that there is news; everything else happens on the main thread, and
// what observers read changes only in `deliver`.
class NSMetadataQuery::Body : public ObjectBody {
public:
    enum class Phase { Idle, Gathering, Live, Stopped };

    // How many finds, results or folders are looked at without a break: what that takes is not felt.
    static constexpr std::size_t ItemsInStep = 250;

    explicit Body(QueryClock clock = {}, std::size_t itemsInStep = ItemsInStep)
        : m_clock(std::move(clock)), m_itemsInStep(itemsInStep) {}
    ~Body() override;

    bool start();
    void stop();
    void enableUpdates();
    // The batch timer has fired: brings the results up to date and posts what has happened.
    //
    // Much news is worked off in steps, between which the main thread handles what the user does. What observers read
    // changes with the last step alone.
    void deliver();

    NSPredicate m_predicate;
    NSArray m_searchScopes;
    NSTimeInterval m_batchingInterval{1};
    Phase m_phase{Phase::Idle};
    NSArray m_results = NSArray::array();
    NSUInteger m_unreadableFolderCount{0};
    NSArray m_unreadableFolders = NSArray::array();
    unsigned m_disabledUpdates{0};

private:
    // Finds that were taken from the walker and are not told yet.
    struct Taking {
        VolumeWalkProgress progress;
        std::vector<std::string> paths;
        NSMutableArray results;
        std::size_t taken{0};
    };
    // Folders in which something happened, which are read anew.
    struct Updating {
        // Declared for Clang, which otherwise takes it for missing within std::optional.
        Updating();
        std::set<std::string> changed;
        // The changed folders and those below them that hold results; the ones not read yet.
        std::set<std::string> folders;
        NSMutableArray results = NSMutableArray::array();
        NSMutableSet before = NSMutableSet::set();
        NSMutableSet now = NSMutableSet::set();
        // How many of the query's results have been told apart.
        NSUInteger sorted{0};
    };

    NSMetadataQuery self();
    void setPhase(Phase phase);
    void post(char const* name);
    void walkerHasNews();
    // Asks for a delivery as soon as the last one is an interval ago, or shortly after the first news; at once when
    // only the end is left to tell.
    void scheduleDelivery();
    void deliverFinds();
    // False while finds are left for another step.
    bool takeFinds();
    // Takes away the results that were remembered and that the walk, now finished, did not come to.
    bool takeAwayVanished();
    std::shared_ptr<WalkMemory> memory();
    void finishGathering(VolumeWalkProgress const& progress);
    void tellUnreadable(VolumeWalkProgress const& progress);
    void deliverFolderChanges();
    // False while results or folders are left for another step.
    bool readChangedFolders();
    void sortOut(NSMetadataItem const& result);
    bool isStepLeft() const { return m_taking || m_updating; }
    // The packages of a folder that match now, by path.
    std::vector<NSMetadataItem> matchesInFolder(std::string const& folder) const;
    bool matches(NSMetadataItem const& item) const;

    QueryClock const m_clock;
    std::size_t const m_itemsInStep;
    VolumeWalkRequest m_request;
    NSPredicate m_runningPredicate;         // a new one is for the next start
    std::unique_ptr<VolumeWalker> m_walker; // stays after the end of gathering, to leave what the next one needs
    std::shared_ptr<WalkMemory> m_memory;
    std::unique_ptr<FolderWatch> m_watch;
    std::set<std::string> m_changedFolders;
    std::optional<Taking> m_taking;
    std::optional<Updating> m_updating;
    NSTimer m_timer;
    NSDate m_lastDelivery;
    // Tells news of this walk from that of an earlier one which was still under way.
    std::uint64_t m_walk{0};
};

}
