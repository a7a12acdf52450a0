#include "platform/spotlight/QueryBody.h"
#include "platform/foundation/KeyValueObserving.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSRunLoop.h"
#include "platform/foundation/NSSet.h"
#include "platform/foundation/Weak.h"
#include "platform/spotlight/SearchPlan.h"
#include "platform/system/BytePath.h"
#include "platform/system/XDGFolders.h"
#include "platform/system/walker/FolderLog.h"
#include "platform/system/walker/FolderPackages.h"
#include <algorithm>
#include <cstring>

namespace mac {

namespace {

// The first finds are shown at once, but what comes within this time goes with them.
constexpr NSTimeInterval FirstBatchDelay = 0.05;

// What reading so many folders takes is not felt; the others wait for the next delivery.
constexpr std::size_t MostFoldersAtOnce = 1000;

std::string folderOf(std::string const& path) { return std::string(BytePath(path).parent()); }

NSString itemPath(NSMetadataItem const& item) { return as<NSString>(item.valueForAttribute_(kMDItemPath)); }

NSMetadataItem itemOfPath(std::string const& path) {
    return NSMetadataItem::itemWithPath(NSString::stringWithFileSystemRepresentation_(path));
}

} // namespace

NSMetadataQuery::Body::~Body() = default;

NSMetadataQuery NSMetadataQuery::Body::self() { return uncheckedCast<NSMetadataQuery>(id::retain(this)); }

void NSMetadataQuery::Body::setPhase(Phase phase) {
    KeyChange const change(self(), "isGathering");
    m_phase = phase;
}

void NSMetadataQuery::Body::post(char const* name) {
    NSNotificationCenter::defaultCenter().postNotificationName_object_(NSString::stringWithUTF8String_(name), self());
}

bool NSMetadataQuery::Body::start() {
    if (m_phase == Phase::Gathering || m_phase == Phase::Live || m_predicate == nil) return false;
    std::optional<VolumeWalkRequest> request = planSearch(m_predicate, m_searchScopes);
    if (!request) return false;
    // What is remembered is of the whole computer.
    if (m_searchScopes.containsObject_(NSMetadataQueryLocalComputerScope)) request->memory = memory();

    Weak<NSMetadataQuery> const query(self());
    std::uint64_t const walk = ++m_walk;
    auto const onWalk = [query, walk](auto const& function) {
        return [query, walk, function] {
            NSMetadataQuery const alive = query.load();
            if (alive != nil && bodyOf(alive)->m_walk == walk) function(*bodyOf(alive));
        };
    };
    auto const news = onWalk([](Body& body) { body.walkerHasNews(); });
    auto walker = std::make_unique<VolumeWalker>(*request, [news] { performOnMainRunLoop(news); });
    // Queued before the walk can have news, so that it comes first.
    performOnMainRunLoop(onWalk([](Body& body) { body.post(NSMetadataQueryDidStartGatheringNotification); }));
    if (!walker->start()) {
        ++m_walk;
        return false;
    }
    m_request = std::move(*request);
    m_runningPredicate = m_predicate;
    m_walker = std::move(walker);
    m_watch = std::make_unique<FolderWatch>([this](std::string const& folder) {
        m_changedFolders.insert(folder);
        if (m_phase == Phase::Live) scheduleDelivery();
    });
    m_changedFolders.clear();
    m_results = NSArray::array();
    m_lastDelivery = nil;
    KeyChange const change(self(), "unreadableFolderCount");
    m_unreadableFolderCount = 0;
    setPhase(Phase::Gathering);
    return true;
}

void NSMetadataQuery::Body::stop() {
    if (m_phase == Phase::Idle || m_phase == Phase::Stopped) return;
    ++m_walk;
    m_timer.invalidate();
    m_timer = nil;
    m_walker.reset();
    m_watch.reset();
    setPhase(Phase::Stopped);
}

void NSMetadataQuery::Body::enableUpdates() {
    if (m_disabledUpdates == 0) return;
    --m_disabledUpdates;
    if (m_disabledUpdates == 0 && (m_phase == Phase::Gathering || m_phase == Phase::Live)) scheduleDelivery();
}

void NSMetadataQuery::Body::walkerHasNews() {
    if (m_phase == Phase::Gathering) scheduleDelivery();
}

void NSMetadataQuery::Body::scheduleDelivery() {
    if (m_disabledUpdates > 0 || m_timer.isValid()) return;
    NSTimeInterval const interval = std::max(m_batchingInterval, 0.0);
    NSTimeInterval delay = std::min(FirstBatchDelay, interval);
    // What is remembered comes in one piece, so there is nothing to wait for.
    if (m_phase == Phase::Gathering && m_walker->progress().isRemembered) delay = 0;
    if (m_lastDelivery != nil)
        delay = std::clamp(interval + m_lastDelivery.timeIntervalSinceDate_(m_clock.now()), 0.0, interval);
    if (m_phase == Phase::Gathering) {
        VolumeWalkProgress const progress = m_walker->progress();
        if (progress.isFinished && (m_lastDelivery == nil || progress.packagesToTake == 0)) delay = 0;
    }
    m_timer = m_clock.startTimer(delay, self());
}

void NSMetadataQuery::Body::deliver() {
    m_timer = nil;
    if (m_disabledUpdates > 0) return;
    std::uint64_t const walk = m_walk;
    m_lastDelivery = m_clock.now();
    if (m_phase == Phase::Gathering)
        deliverFinds();
    else if (m_phase == Phase::Live && applyFolderChanges())
        post(NSMetadataQueryDidUpdateNotification);
    // An observer may have stopped or restarted the query.
    if (walk != m_walk) return;
    if (m_phase == Phase::Live && !m_changedFolders.empty()) scheduleDelivery();
    // The interval begins when the observers are done, however long they or the machine took.
    m_lastDelivery = m_clock.now();
    if (!m_timer.isValid()) return;
    m_timer.invalidate();
    scheduleDelivery();
}

void NSMetadataQuery::Body::deliverFinds() {
    // Asked before the finds are taken: what is found later than this comes with the next batch.
    VolumeWalkProgress const progress = m_walker->progress();
    bool const isMore = takeFinds();
    bool const isLess = takeAwayVanished();
    if (!isMore && !isLess && progress.isFinished) return finishGathering(progress);
    // The end comes with a delivery of its own, also when an observer of this one raises.
    if (progress.isFinished) scheduleDelivery();
    if (isMore || isLess) post(NSMetadataQueryGatheringProgressNotification);
}

bool NSMetadataQuery::Body::takeFinds() {
    NSMutableArray const results = NSMutableArray::arrayWithArray_(m_results);
    for (std::string const& path : m_walker->takeFound()) {
        NSMetadataItem const item = itemOfPath(path);
        if (!matches(item)) continue;
        std::string const folder = folderOf(path);
        m_watch->add(folder);
        // What happened there since the find and before the watch is looked for when gathering has ended.
        m_changedFolders.insert(folder);
        results.addObject_(item);
    }
    bool const isMore = results.count() > m_results.count();
    if (isMore) m_results = uncheckedCast<NSArray>(results.copy());
    return isMore;
}

bool NSMetadataQuery::Body::takeAwayVanished() {
    std::vector<std::string> const vanished = m_walker->vanished();
    if (vanished.empty()) return false;
    std::set<std::string> const gone(vanished.begin(), vanished.end());
    NSMutableArray const results = NSMutableArray::array();
    for (id const& result : m_results) {
        if (!gone.contains(itemPath(as<NSMetadataItem>(result)).fileSystemRepresentation().value_or("/")))
            results.addObject_(result);
    }
    bool const isLess = results.count() < m_results.count();
    if (isLess) m_results = uncheckedCast<NSArray>(results.copy());
    return isLess;
}

std::shared_ptr<WalkMemory> NSMetadataQuery::Body::memory() {
    std::string const folder = BytePath(cacheHome()).joined("framekeeper");
    if (!m_memory || m_memory->folder() != folder) m_memory = std::make_shared<WalkMemory>(folder, &folderClock);
    return m_memory;
}

void NSMetadataQuery::Body::finishGathering(VolumeWalkProgress const& progress) {
    std::uint64_t const walk = m_walk;
    {
        KeyChange const change(self(), "unreadableFolderCount");
        m_unreadableFolderCount =
            static_cast<NSUInteger>(std::min<std::uint64_t>(progress.unreadableFolders, NSNotFound));
        setPhase(Phase::Live);
    }
    tellUnreadable(progress);
    // Each time an observer may have stopped or restarted the query.
    if (walk != m_walk) return;
    if (!m_changedFolders.empty()) scheduleDelivery();
    post(NSMetadataQueryDidFinishGatheringNotification);
}

void NSMetadataQuery::Body::tellUnreadable(VolumeWalkProgress const& progress) {
    if (progress.unreadableFolders == 0) return;
    SystemError const& first = progress.firstUnreadable.front();
    NSLog("Folders that could not be read: %llu, the first: %@ (%s)", progress.unreadableFolders,
          NSString::stringWithFileSystemRepresentation_(first.item), std::strerror(first.code));
}

std::set<std::string> NSMetadataQuery::Body::takeChangedFolders() {
    if (m_changedFolders.size() <= MostFoldersAtOnce) return std::exchange(m_changedFolders, {});
    std::set<std::string> taken;
    while (taken.size() < MostFoldersAtOnce)
        taken.insert(m_changedFolders.extract(m_changedFolders.begin()));
    return taken;
}

bool NSMetadataQuery::Body::applyFolderChanges() {
    std::set<std::string> const changed = takeChangedFolders();
    std::set<std::string> folders = changed;
    folders.erase(std::string());
    NSMutableArray const results = NSMutableArray::array();
    NSMutableSet const before = NSMutableSet::set();
    NSMutableSet const now = NSMutableSet::set();
    for (id const& result : m_results) {
        std::string const folder =
            folderOf(itemPath(as<NSMetadataItem>(result)).fileSystemRepresentation().value_or("/"));
        if (!isChanged(folder, changed)) {
            results.addObject_(result);
            continue;
        }
        folders.insert(folder);
        before.addObject_(result);
    }
    for (std::string const& folder : folders) {
        for (NSMetadataItem const& item : matchesInFolder(folder)) {
            results.addObject_(item);
            now.addObject_(item);
        }
    }
    bool const isSameSet = before.isEqualToSet_(now);
    if (!isSameSet) m_results = uncheckedCast<NSArray>(results.copy());
    return !isSameSet;
}

// Whether something happened to the folder or to one of those it lies in. An empty path stands for all of them.
bool NSMetadataQuery::Body::isChanged(std::string folder, std::set<std::string> const& changed) const {
    while (!folder.empty() && !changed.contains(folder))
        folder.resize(folder == "/" ? 0 : BytePath(folder).parent().size());
    return changed.contains(folder);
}

std::vector<NSMetadataItem> NSMetadataQuery::Body::matchesInFolder(std::string const& folder) const {
    std::vector<NSMetadataItem> items;
    for (std::string const& path : packagesInFolder(folder, m_request)) {
        NSMetadataItem const item = itemOfPath(path);
        if (matches(item)) items.push_back(item);
    }
    return items;
}

bool NSMetadataQuery::Body::matches(NSMetadataItem const& item) const {
    return m_runningPredicate.evaluateWithObject_(item);
}

} // namespace mac
