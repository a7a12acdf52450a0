#include "app/AppController.h"
#include "app/AppControllerBody.h"
#include "app/InventorySync.h"
#include <limits>

namespace framekeeper {

void AppController::queryDidStart_(NSNotification const&) const { syncQuery(); }

// Takes in at most as many results as one step has, so that Stop is never out of reach.
void AppController::queryGatheringProgress_(NSNotification const&) const {
    if (*this == nil) return;
    if (query().resultCount() > bodyOf(*this)->_pathsInStep)
        syncInSteps(*this);
    else
        syncQuery();
}

void AppController::queryDidFinish_(NSNotification const&) const {}

void AppController::queryDidUpdate_(NSNotification const&) const {}

void AppController::syncQuery() const {
    if (*this == nil) return;
    cancelSteps(*this);
    NSArray const results = query().results();
    InventorySync sync(results == nil ? NSArray::array() : results);
    while (sync.advance(*this, std::numeric_limits<std::size_t>::max() / 2)) {}
}

void AppController::syncIsOnHarddisk() const {
    if (*this == nil) return;
    NSArray const results = query().results();
    InventorySync(results == nil ? NSArray::array() : results).setDiskPaths(*this);
}

void AppController::scanAction_(id const&) const {
    query().stopQuery();
    if (*this != nil) cancelSteps(*this);
    setPaths_(nil);
    syncMembershipSources(*this);
    startQuery();
}

void AppController::stopAction_(id const&) const { query().stopQuery(); }

} // namespace framekeeper
