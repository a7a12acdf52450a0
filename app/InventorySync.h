#pragma once

#include "app/AppControllerBody.h"
#include "app/RecordBuilding.h"
#include <optional>
#include <vector>

namespace framekeeper {

// Brings the disk's paths and the inventory up to date with the results of a query, in parts that may be done at
// different times: looks at each result once, replaces the disk's paths by those that are copies of the companion, and
// rebuilds the inventory with what the looks told. Nothing of the controller changes before the last part of either.
// Main thread.
class InventorySync {
public:
    // The kept paths are looked at behind the results, which do not have them as long as the search has not seen what
    // the user did since; nil for none.
    explicit InventorySync(NSArray const& results, NSArray const& keptPaths = nil)
        : m_results(results), m_keptPaths(keptPaths) {}

    // Looks at, or makes records of, as many paths as the step has at most. False when the inventory is set.
    bool advance(AppController const& controller, SyncStep const& step);
    // Does all that is left, without a break.
    void advanceToEnd(AppController const& controller);
    // Replaces the disk's paths alone, all at once.
    void setDiskPaths(AppController const& controller);

private:
    std::size_t pathCount() const;
    NSString pathAt(std::size_t index) const;
    bool hasFound(NSString const& path) const;
    void look(SyncStep const& step);
    void lookAtRest();
    void take(NSString const& path, BundleLook look);

    NSArray m_results;
    NSArray m_keptPaths;
    std::size_t m_looked{0};
    NSMutableSet m_found = NSMutableSet::set();
    // In the order of m_found.
    std::vector<BundleLook> m_looks;
    std::optional<RecordBuilder> m_builder;
    NSArray m_paths;
    NSMutableSet m_records = NSMutableSet::set();
};

// Brings the disk's paths and the inventory up to date in steps of the controller's size, the first of them at once;
// between them the main thread handles events. If steps are under way, they start anew when they are done.
void syncInSteps(AppController const& controller);
// Brings the disk's paths and the inventory up to date in one step; steps under way are dropped.
void syncAtOnce(AppController const& controller);
// Makes steps that are under way start anew, since something was changed that they may have looked at. The controller's
// disk paths are kept, as far as there are still copies at them.
void restartSteps(AppController const& controller);
void cancelSteps(AppController const& controller);

} // namespace framekeeper
