#include "app/InventorySync.h"
#include "app/AppControllerBody.h"
#include "platform/foundation/objects/Weak.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "platform/foundation/text/PathSlashes.h"
#include <algorithm>
#include <memory>
#include <utility>

namespace framekeeper {

namespace {

// A folder that was moved to the trash is known by a path with a slash at its end, a query's results have none.
NSString plainPath(NSString const& path) {
    std::size_t const length = withoutTrailingSlashes(path.codeUnits()).size();
    return length == path.length() ? path : path.substringToIndex_(static_cast<NSUInteger>(length));
}

NSArray resultsOfQuery(AppController const& controller) {
    NSArray const results = controller.query().results();
    return results == nil ? NSArray::array() : results;
}

// Does all the work in one step, for callers that do not divide it.
constexpr SyncStep EverythingAtOnce{.paths = SIZE_MAX / 2, .fewestPaths = SIZE_MAX / 2};

void continueLater(AppController const& controller, std::shared_ptr<InventorySync> const& sync) {
    bodyOf(controller)->_sync = sync;
    Weak<AppController> const later(controller);
    performOnMainRunLoop([later, step = std::weak_ptr(sync)] {
        AppController const alive = later.load();
        std::shared_ptr<InventorySync> const current = step.lock();
        bool const isCurrent = alive != nil && current && bodyOf(alive)->_sync == current;
        if (!isCurrent) return;
        // An exception of an observer ends the steps.
        bodyOf(alive)->_sync.reset();
        if (current->advance(alive, bodyOf(alive)->_step)) return continueLater(alive, current);
        if (std::exchange(bodyOf(alive)->_syncsAgain, false)) syncInSteps(alive);
    });
}

} // namespace

std::size_t InventorySync::pathCount() const { return m_results.count() + m_keptPaths.count(); }

NSString InventorySync::pathAt(std::size_t index) const {
    std::size_t const results = m_results.count();
    if (index >= results) return as<NSString>(m_keptPaths.objectAtIndex_(static_cast<NSUInteger>(index - results)));
    NSMetadataItem const item = as<NSMetadataItem>(m_results.objectAtIndex_(static_cast<NSUInteger>(index)));
    return as<NSString>(item.valueForAttribute_(kMDItemPath));
}

bool InventorySync::hasFound(NSString const& path) const {
    NSString const plain = plainPath(path);
    return m_found.containsObject_(plain) || (!isSame(plain, path) && m_found.containsObject_(path));
}

void InventorySync::look(SyncStep const& step) {
    auto const start = std::chrono::steady_clock::now();
    std::size_t const end = std::min(pathCount(), m_looked + step.paths);
    std::size_t const fewest = m_looked + step.fewestPaths;
    m_looks.reserve(pathCount());
    while (m_looked < end && (m_looked < fewest || std::chrono::steady_clock::now() - start < step.time)) {
        NSString const path = pathAt(m_looked++);
        if (!hasFound(path)) take(path, lookAtBundle(path));
    }
}

void InventorySync::lookAtRest() {
    std::vector<NSString> paths;
    for (; m_looked < pathCount(); ++m_looked)
        paths.push_back(pathAt(m_looked));
    std::vector<BundleLook> looks = lookAtBundles(paths);
    m_looks.reserve(looks.size());
    for (std::size_t index = 0; index < paths.size(); ++index) {
        if (!hasFound(paths[index])) take(paths[index], std::move(looks[index]));
    }
}

void InventorySync::take(NSString const& path, BundleLook look) {
    if (!isCompanion(look)) return;
    m_found.addObject_(path);
    m_looks.push_back(std::move(look));
}

void InventorySync::setDiskPaths(AppController const& controller) {
    lookAtRest();
    controller.setIsOnHarddiskPaths_(m_found);
}

void InventorySync::advanceToEnd(AppController const& controller) {
    lookAtRest();
    advance(controller, EverythingAtOnce);
}

bool InventorySync::advance(AppController const& controller, SyncStep const& step) {
    std::size_t const looked = m_looked;
    look(step);
    if (m_looked < pathCount()) return true;
    std::size_t const paths = step.paths - (m_looked - looked);

    if (!m_builder) {
        // The controller's set may change later.
        m_paths = m_found.allObjects();
        controller.setIsOnHarddiskPaths_(m_found);
        m_builder.emplace(controller, takeKeptRecords(controller));
    }
    std::size_t const end = std::min<std::size_t>(m_paths.count(), m_records.count() + paths);
    for (std::size_t index = m_records.count(); index < end; ++index)
        m_builder->addFromDisk(m_records, as<NSString>(m_paths.objectAtIndex_(static_cast<NSUInteger>(index))),
                               m_looks[index]);
    if (m_records.count() < m_paths.count()) return true;

    m_builder->addMissing(controller, m_records, m_found);
    bodyOf(controller)->_keptRecords = m_builder->takeKept();
    controller.setPaths_(m_records);
    return false;
}

void syncInSteps(AppController const& controller) {
    if (bodyOf(controller)->_sync) {
        bodyOf(controller)->_syncsAgain = true;
        return;
    }
    auto const sync = std::make_shared<InventorySync>(resultsOfQuery(controller));
    if (sync->advance(controller, bodyOf(controller)->_step)) continueLater(controller, sync);
}

void syncAtOnce(AppController const& controller) {
    cancelSteps(controller);
    InventorySync(resultsOfQuery(controller)).advanceToEnd(controller);
}

void restartSteps(AppController const& controller) {
    if (!bodyOf(controller)->_sync) return;
    cancelSteps(controller);
    NSArray const kept = controller.isOnHarddiskPaths().allObjects();
    continueLater(controller, std::make_shared<InventorySync>(controller.query().results(), kept));
}

void cancelSteps(AppController const& controller) {
    bodyOf(controller)->_sync.reset();
    bodyOf(controller)->_syncsAgain = false;
}

} // namespace framekeeper
