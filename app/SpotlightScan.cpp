#include "app/AppControllerBody.h"
#include "app/InventorySync.h"

namespace framekeeper {

// Linux: in steps, so that Stop is never out of reach.
void AppController::queryDidStart_(NSNotification const&) const {
    if (*this != nil) syncInSteps(*this);
}

void AppController::queryGatheringProgress_(NSNotification const&) const {
    if (*this != nil) syncInSteps(*this);
}

void AppController::queryDidFinish_(NSNotification const&) const {}

void AppController::queryDidUpdate_(NSNotification const&) const {}

void AppController::syncQuery() const {
    if (*this != nil) syncAtOnce(*this);
}

void AppController::syncIsOnHarddisk() const {
    if (*this == nil) return;
    NSArray const results = query().results();
    InventorySync(results == nil ? NSArray::array() : results).setDiskPaths(*this);
}

void AppController::scanAction_(id const&) const {
    if (*this == nil) return;
    query().stopQuery();
    cancelSteps(*this);
    // Whoever shows the records lets them go little by little.
    bodyOf(*this)->_keptRecords = {};
    setPaths_(nil);
    syncMembershipSources(*this);
    startQuery();
}

void AppController::stopAction_(id const&) const { query().stopQuery(); }

} // namespace framekeeper
