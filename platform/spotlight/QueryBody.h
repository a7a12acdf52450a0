#pragma once

#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/running/NSTimer.h"
#include "platform/spotlight/FolderWatch.h"
#include "platform/spotlight/NSMetadataQuery.h"
#include "platform/system/walker/VolumeWalker.h"
#include "platform/system/walker/WalkMemory.h"
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <set>

namespace mac {

// When a query delivers: the time, timers that send "deliver:" to it once, and how long the start waits for what the
// last search found.
struct QueryClock {
    // What is remembered is looked for while the caller of the start goes on, so that as a rule it is there by then. A
    // disk that does not answer must not hold the main thread.
    static constexpr std::chrono::milliseconds RecallPatience{50};

    std::function<NSDate()> now = [] { return NSDate::date(); };
    std::function<NSTimer(NSTimeInterval delay, NSMetadataQuery const& query)> startTimer =
        [](NSTimeInterval delay, NSMetadataQuery const& query) {
            return NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats_(delay, query,
                                                                                             "deliver:", nil, NO);
        };
    // False if what is remembered is not known yet: then it comes with the first progress.
    std::function<bool(VolumeWalker const& walker)> waitUntilRecalled = [](VolumeWalker const& walker) {
        return walker.waitUntilRecalled(RecallPatience);
    };
};

// The state of a query. The walker's threads only report that there is news; everything else happens on the main
// thread, and what observers read changes in `start` and `deliver` alone.
class NSMetadataQuery::Body : public ObjectBody {
public:
    enum class Phase { Idle, Gathering, Live, Stopped };

    // A walk that was stopped ends within a few reads of the disk as a rule. A disk that is slow to answer, or does
    // not, must not hold the main thread.
    static constexpr std::chrono::milliseconds StopPatience{10};

    // How many finds, results or folders are handled in one step, which is too short to be noticed.
    static constexpr std::size_t ItemsInStep = 250;

    explicit Body(QueryClock clock = {}, std::size_t itemsInStep = ItemsInStep)
        : m_clock(std::move(clock)), m_itemsInStep(itemsInStep) {}
    ~Body() override;

    bool start();
    void stop();
    bool waitUntilRemembered(NSTimeInterval longest) const;
    void enableUpdates();
    // Called by the batch timer: brings the results up to date and posts the notifications.
    //
    // Large batches are handled in steps, between which the main thread handles the user's input, unless the query ends
    // with gathering. What observers read changes with the last step alone.
    void deliver();
    // How far the current walk has come. REQUIRES: the query was started, and not stopped since.
    VolumeWalkProgress progress() const { return m_walker->progress(); }

    NSPredicate m_predicate;
    NSArray m_searchScopes;
    NSTimeInterval m_batchingInterval{1};
    bool m_endsWithGathering{false};
    Phase m_phase{Phase::Idle};
    NSArray m_results = NSArray::array();
    NSUInteger m_unreadableFolderCount{0};
    NSArray m_unreadableFolders = NSArray::array();
    unsigned m_disabledUpdates{0};

private:
    // Finds that were taken from the walker and not delivered yet.
    struct Taking {
        VolumeWalkProgress progress;
        std::vector<std::string> paths;
        std::size_t taken{0};
        // The new ones alone.
        NSMutableArray results = NSMutableArray::array();
    };
    // Changed folders, which are read anew.
    struct Updating {
        // Declared for Clang, which otherwise takes it for missing within std::optional.
        Updating();
        std::set<std::string> changed;
        // The folders still to be read: the changed ones and those below them that hold results.
        std::set<std::string> folders;
        NSMutableArray results = NSMutableArray::array();
        NSMutableSet before = NSMutableSet::set();
        NSMutableSet now = NSMutableSet::set();
        // How many of the query's results have been sorted into kept and affected ones.
        NSUInteger sorted{0};
    };

    NSMetadataQuery self();
    void setPhase(Phase phase);
    void post(char const* name);
    // Posts the start of gathering. The results are by then those of the last search that are still there, unless there
    // are more than one step takes.
    void tellStart();
    void takeRemembered();
    void walkerHasNews();
    // Schedules a delivery for one interval after the last one, or shortly after the first news; at once if only the
    // end of gathering is left to report.
    void scheduleDelivery();
    void deliverFinds();
    // Appends the found item of the path to the results if the predicate accepts it, and watches its folder.
    void take(std::string const& path, NSMutableArray const& results);
    // False while finds are left for another step.
    bool takeFinds();
    // Removes the remembered results that the finished walk did not find.
    bool takeAwayVanished();
    std::shared_ptr<WalkMemory> memory();
    void finishGathering(VolumeWalkProgress const& progress);
    void tellUnreadable(VolumeWalkProgress const& progress);
    void deliverFolderChanges();
    // False while results or folders are left for another step.
    bool readChangedFolders();
    void sortOut(NSMetadataItem const& result);
    bool isStepLeft() const { return m_taking || m_updating; }
    // The packages in the folder that match now, sorted by path.
    std::vector<NSMetadataItem> matchesInFolder(std::string const& folder) const;
    bool matches(NSMetadataItem const& item) const;

    QueryClock const m_clock;
    std::size_t const m_itemsInStep;
    VolumeWalkRequest m_request;
    NSPredicate m_runningPredicate;         // a new one is for the next start
    std::unique_ptr<VolumeWalker> m_walker; // stays after the end of gathering, to leave what the next one needs
    std::shared_ptr<WalkMemory> m_memory;
    std::unique_ptr<FolderWatch> m_watch; // null: the query ends with gathering
    std::set<std::string> m_changedFolders;
    std::optional<Taking> m_taking;
    std::optional<Updating> m_updating;
    NSTimer m_timer;
    NSDate m_lastDelivery;
    // The number of the current walk, which tells its news from that of an earlier one.
    std::uint64_t m_walk{0};
};

}
