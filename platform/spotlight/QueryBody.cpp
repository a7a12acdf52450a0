#include "platform/spotlight/QueryBody.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/Weak.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/running/NSNotificationCenter.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "platform/foundation/text/SystemErrorTexts.h"
#include "platform/spotlight/SearchPlan.h"
#include "platform/system/BytePath.h"
#include "platform/system/XDGFolders.h"
#include "platform/system/walker/FolderLog.h"
#include "platform/system/walker/Packages.h"
#include <algorithm>
#include <cstring>

namespace mac {

namespace {

// How long the first delivery waits, so that it takes along what is found in the meantime.
constexpr NSTimeInterval FirstBatchDelay = 0.05;

std::string folderOf(std::string const& path) { return std::string(BytePath(path).parent()); }

NSString itemPath(NSMetadataItem const& item) { return as<NSString>(item.valueForAttribute_(kMDItemPath)); }

NSMetadataItem itemOfPath(std::string const& path) {
    return NSMetadataItem::itemWithPath(NSString::stringWithFileSystemRepresentation_(path));
}

NSArray foldersWithReasons(std::vector<SystemError> const& errors) {
    NSMutableArray const folders = NSMutableArray::array();
    for (SystemError const& error : errors) {
        NSString const path = NSString::stringWithFileSystemRepresentation_(error.item);
        NSString const reason = localizedSystemError(error.code);
        folders.addObject_(NSDictionary::dictionaryWithObjectsAndKeys_({path, "path", reason, "reason"}));
    }
    return uncheckedCast<NSArray>(folders.copy());
}

// Whether the folder, or a folder above it, is among the changed ones. An empty path among them stands for every
// folder.
bool isChanged(std::string folder, std::set<std::string> const& changed) {
    while (!folder.empty() && !changed.contains(folder))
        folder.resize(folder == "/" ? 0 : BytePath(folder).parent().size());
    return changed.contains(folder);
}

} // namespace

NSMetadataQuery::Body::Updating::Updating() = default;

NSMetadataQuery::Body::~Body() {
    if (m_walker) m_walker->stopWithin(StopPatience);
}

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
    // The memory holds walks of the whole computer only.
    if (m_searchScopes.containsObject_(NSMetadataQueryLocalComputerScope)) request->memory = memory();
    request->tellsRemembered = !m_endsWithGathering;

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
    performOnMainRunLoop(onWalk([](Body& body) { body.tellStart(); }));
    if (!walker->start()) {
        ++m_walk;
        return false;
    }
    m_request = std::move(*request);
    m_runningPredicate = m_predicate;
    m_walker = std::move(walker);
    m_watch = m_endsWithGathering ? nullptr : std::make_unique<FolderWatch>([this](std::string const& folder) {
        m_changedFolders.insert(folder);
        if (m_phase == Phase::Live) scheduleDelivery();
    });
    m_changedFolders.clear();
    m_results = NSArray::array();
    m_lastDelivery = nil;
    KeyChange const count(self(), "unreadableFolderCount");
    KeyChange const list(self(), "unreadableFolders");
    m_unreadableFolderCount = 0;
    m_unreadableFolders = NSArray::array();
    setPhase(Phase::Gathering);
    return true;
}

void NSMetadataQuery::Body::stop() {
    if (m_phase == Phase::Idle || m_phase == Phase::Stopped) return;
    ++m_walk;
    m_timer.invalidate();
    m_timer = nil;
    m_walker->stopWithin(StopPatience);
    m_walker.reset();
    m_watch.reset();
    m_taking.reset();
    m_updating.reset();
    setPhase(Phase::Stopped);
}

bool NSMetadataQuery::Body::waitUntilRemembered(NSTimeInterval longest) const {
    if (m_phase != Phase::Live || !m_walker) return true;
    return m_walker->waitUntilRemembered(
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<NSTimeInterval>(longest)));
}

void NSMetadataQuery::Body::enableUpdates() {
    if (m_disabledUpdates == 0) return;
    --m_disabledUpdates;
    if (m_disabledUpdates == 0 && (m_phase == Phase::Gathering || m_phase == Phase::Live)) scheduleDelivery();
}

void NSMetadataQuery::Body::tellStart() {
    bool const isRecalled = m_request.memory && m_disabledUpdates == 0 && m_clock.waitUntilRecalled(*m_walker);
    if (isRecalled) takeRemembered();
    std::uint64_t const walk = m_walk;
    post(NSMetadataQueryDidStartGatheringNotification);
    // An observer may have stopped or restarted the query.
    if (walk == m_walk) walkerHasNews();
}

void NSMetadataQuery::Body::takeRemembered() {
    NSMutableArray const results = NSMutableArray::array();
    for (std::string const& path : m_walker->takeRemembered(m_itemsInStep))
        take(path, results);
    m_results = uncheckedCast<NSArray>(results.copy());
}

void NSMetadataQuery::Body::walkerHasNews() {
    if (m_phase != Phase::Gathering) return;
    VolumeWalkProgress const progress = m_walker->progress();
    // What is told may have been taken by now.
    if (progress.isFinished || progress.packagesToTake > 0) scheduleDelivery();
}

void NSMetadataQuery::Body::scheduleDelivery() {
    if (m_disabledUpdates > 0 || m_timer.isValid()) return;
    NSTimeInterval const interval = std::max(m_batchingInterval, 0.0);
    NSTimeInterval delay = std::min(FirstBatchDelay, interval);
    // Remembered finds come in one batch, so waiting gains nothing.
    if (m_phase == Phase::Gathering && m_walker->progress().isRemembered) delay = 0;
    if (m_lastDelivery != nil)
        delay = std::clamp(interval + m_lastDelivery.timeIntervalSinceDate_(m_clock.now()), 0.0, interval);
    if (m_phase == Phase::Gathering) {
        VolumeWalkProgress const progress = m_walker->progress();
        if (progress.isFinished && (m_lastDelivery == nil || progress.packagesToTake == 0)) delay = 0;
    }
    m_timer = m_clock.startTimer(isStepLeft() ? 0 : delay, self());
}

void NSMetadataQuery::Body::deliver() {
    m_timer = nil;
    if (m_disabledUpdates > 0) return;
    std::uint64_t const walk = m_walk;
    m_lastDelivery = m_clock.now();
    if (m_phase == Phase::Gathering)
        deliverFinds();
    else if (m_phase == Phase::Live)
        deliverFolderChanges();
    // An observer may have stopped or restarted the query.
    if (walk != m_walk) return;
    if (m_phase == Phase::Live && !m_changedFolders.empty()) scheduleDelivery();
    // The interval begins once the observers have returned, however long they took.
    m_lastDelivery = m_clock.now();
    if (!m_timer.isValid()) return;
    m_timer.invalidate();
    scheduleDelivery();
}

void NSMetadataQuery::Body::deliverFinds() {
    if (!m_taking) {
        // Read before the finds are taken: later finds come with the next batch.
        VolumeWalkProgress const progress = m_walker->progress();
        m_taking = Taking{progress, m_walker->takeFound()};
    }
    if (!takeFinds()) return scheduleDelivery();
    Taking const taken = std::move(*m_taking);
    m_taking.reset();
    bool const isMore = taken.results.count() > 0;
    if (isMore) m_results = m_results.arrayByAddingObjectsFromArray_(taken.results);
    bool const isLess = takeAwayVanished();
    if (!isMore && !isLess && taken.progress.isFinished) return finishGathering(taken.progress);
    // News between the steps scheduled no delivery, as one was pending. The end of gathering gets a delivery of its
    // own, also if an observer of this one raises.
    VolumeWalkProgress const progress = m_walker->progress();
    if (progress.isFinished || progress.packagesToTake > 0) scheduleDelivery();
    if (isMore || isLess) post(NSMetadataQueryGatheringProgressNotification);
}

bool NSMetadataQuery::Body::takeFinds() {
    // A query that ends with gathering has no window whose events must be handled between the steps.
    std::size_t const step = m_endsWithGathering ? m_taking->paths.size() : m_itemsInStep;
    std::size_t const end = std::min(m_taking->paths.size(), m_taking->taken + step);
    while (m_taking->taken < end) {
        std::string const& path = m_taking->paths[m_taking->taken++];
        take(path, m_taking->results);
    }
    return end == m_taking->paths.size();
}

void NSMetadataQuery::Body::take(std::string const& path, NSMutableArray const& results) {
    NSMetadataItem const item = itemOfPath(path);
    if (!matches(item)) return;
    results.addObject_(item);
    if (!m_watch) return;
    std::string const folder = folderOf(path);
    m_watch->add(folder);
    // What happened there since the find and before the watch is looked for when gathering has ended.
    m_changedFolders.insert(folder);
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
        KeyChange const count(self(), "unreadableFolderCount");
        KeyChange const list(self(), "unreadableFolders");
        m_unreadableFolders = foldersWithReasons(m_walker->unreadable());
        m_unreadableFolderCount =
            static_cast<NSUInteger>(std::min<std::uint64_t>(progress.unreadableFolders, NSNotFound));
        setPhase(Phase::Live);
    }
    tellUnreadable(progress);
    // Each notification's observers may have stopped or restarted the query.
    if (walk != m_walk) return;
    if (!m_changedFolders.empty()) scheduleDelivery();
    post(NSMetadataQueryDidFinishGatheringNotification);
}

void NSMetadataQuery::Body::tellUnreadable(VolumeWalkProgress const& progress) {
    if (progress.unreadableFolders == 0) return;
    SystemError const& first = progress.firstUnreadable.front();
    NSLog("Folders that could not be read: %llu, the first: %@ (%s)", progress.unreadableFolders,
          NSString::stringWithFileSystemRepresentation_(first.item), textOfSystemError(first.code));
}

void NSMetadataQuery::Body::deliverFolderChanges() {
    if (!m_updating) {
        if (m_changedFolders.empty()) return;
        m_updating.emplace();
        m_updating->changed = std::exchange(m_changedFolders, {});
        m_updating->folders = m_updating->changed;
        m_updating->folders.erase(std::string());
    }
    if (!readChangedFolders()) return scheduleDelivery();
    Updating const updated = std::move(*m_updating);
    m_updating.reset();
    if (updated.before.isEqualToSet_(updated.now)) return;
    m_results = uncheckedCast<NSArray>(updated.results.copy());
    post(NSMetadataQueryDidUpdateNotification);
}

bool NSMetadataQuery::Body::readChangedFolders() {
    std::size_t left = m_itemsInStep;
    for (; left > 0 && m_updating->sorted < m_results.count(); --left)
        sortOut(as<NSMetadataItem>(m_results.objectAtIndex_(m_updating->sorted++)));
    for (; left > 0 && !m_updating->folders.empty(); --left) {
        std::string const folder = m_updating->folders.extract(m_updating->folders.begin()).value();
        for (NSMetadataItem const& item : matchesInFolder(folder)) {
            m_updating->results.addObject_(item);
            m_updating->now.addObject_(item);
        }
    }
    return m_updating->sorted == m_results.count() && m_updating->folders.empty();
}

// Results in folders where nothing happened stay as they are.
void NSMetadataQuery::Body::sortOut(NSMetadataItem const& result) {
    std::string const folder = folderOf(itemPath(result).fileSystemRepresentation().value_or("/"));
    if (!isChanged(folder, m_updating->changed)) return m_updating->results.addObject_(result);
    m_updating->folders.insert(folder);
    m_updating->before.addObject_(result);
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
