#include "app/AppControllerBody.h"
#include "app/InventorySync.h"
#include "app/MembershipSources.h"
#include "app/RecordBuilding.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include <cstddef>

namespace framekeeper {

namespace {

template <class Value>
void replaceField(AppController const& controller, Value& field, Value const& value, NSString const& key) {
    KeyChange const change(controller, key);
    if (!isSame(field, value)) field = value;
}

// Replaces a field whole. Observers are told once of every setting, also of the same object.
template <class Value>
void replace(AppController const& controller, Value AppController::Body::*field, Value const& value,
             NSString const& key) {
    if (controller != nil) replaceField(controller, bodyOf(controller)->*field, value, key);
}

template <class Value>
Value read(AppController const& controller, Value AppController::Body::*field) {
    return controller == nil ? Value() : bodyOf(controller)->*field;
}

} // namespace

NSSet entriesOf(AppController const& controller, std::size_t row) {
    return controller == nil ? NSSet() : bodyOf(controller)->_entries[row];
}

void setEntries(AppController const& controller, std::size_t row, NSSet const& entries) {
    if (controller == nil) return;
    replaceField(controller, bodyOf(controller)->_entries[row], entries,
                 NSString::stringWithUTF8String_(MembershipSources[row].entriesKey));
}

void syncMembershipSources(AppController const& controller) {
    for (MembershipSource const& source : MembershipSources)
        source.sync(controller);
}

NSArray AppController::allAutolaunchItems() const { return read(*this, &Body::_allAutolaunchItems); }

void AppController::setAllAutolaunchItems_(NSArray const& items) const {
    replace(*this, &Body::_allAutolaunchItems, items, "allAutolaunchItems");
}

NSArray AppController::allToolbarItems() const { return read(*this, &Body::_allToolbarItems); }

void AppController::setAllToolbarItems_(NSArray const& items) const {
    replace(*this, &Body::_allToolbarItems, items, "allToolbarItems");
}

NSSet AppController::isRunningPaths() const { return entriesOf(*this, sourceWithEntries("isRunningPaths")); }

void AppController::setIsRunningPaths_(NSSet const& entries) const {
    setEntries(*this, sourceWithEntries("isRunningPaths"), entries);
}

NSSet AppController::isAutolaunchedPaths() const { return entriesOf(*this, sourceWithEntries("isAutolaunchedPaths")); }

void AppController::setIsAutolaunchedPaths_(NSSet const& entries) const {
    setEntries(*this, sourceWithEntries("isAutolaunchedPaths"), entries);
}

NSSet AppController::isInToolbarPaths() const { return entriesOf(*this, sourceWithEntries("isInToolbarPaths")); }

void AppController::setIsInToolbarPaths_(NSSet const& entries) const {
    setEntries(*this, sourceWithEntries("isInToolbarPaths"), entries);
}

NSMutableSet AppController::isOnHarddiskPaths() const { return read(*this, &Body::_isOnHarddiskPaths); }

void AppController::setIsOnHarddiskPaths_(NSMutableSet const& paths) const {
    replace(*this, &Body::_isOnHarddiskPaths, paths, "isOnHarddiskPaths");
}

NSMutableSet AppController::paths() const { return read(*this, &Body::_paths); }

void AppController::setPaths_(NSMutableSet const& paths) const { replace(*this, &Body::_paths, paths, "paths"); }

NSMetadataQuery AppController::query() const { return read(*this, &Body::_query); }

void AppController::setQuery_(NSMetadataQuery const& query) const { replace(*this, &Body::_query, query, "query"); }

NSArrayController AppController::pathsArrayController() const { return read(*this, &Body::_pathsArrayController); }

NSTableView AppController::pathsTableView() const { return read(*this, &Body::_pathsTableView); }

NSWindow AppController::window() const { return read(*this, &Body::_window); }

void AppController::pathObjects_addPath_psn_autolaunchedItem_toolbarItem_(NSMutableSet const& records,
                                                                          NSString const& path, id const& psn,
                                                                          id const& autolaunchedItem,
                                                                          id const& toolbarItem) const {
    if (*this == nil) return;
    RecordObjects objects;
    objects[sourceWithEntries("isRunningPaths")] = psn;
    objects[sourceWithEntries("isAutolaunchedPaths")] = autolaunchedItem;
    objects[sourceWithEntries("isInToolbarPaths")] = toolbarItem;
    RecordBuilder(*this).add(records, path, lookAtBundle(path), objects);
}

void AppController::pathObjects_addPath_(NSMutableSet const& records, NSString const& path) const {
    if (*this != nil) RecordBuilder(*this).add(records, path, lookAtBundle(path));
}

void AppController::reSync() const {
    if (*this == nil) return;
    NSSet const onDisk = isOnHarddiskPaths();
    NSMutableSet const records = NSMutableSet::set();
    RecordBuilder builder(*this, takeKeptRecords(*this));
    for (id const& element : onDisk.allObjects()) {
        NSString const path = as<NSString>(element);
        builder.addFromDisk(records, path, lookAtBundle(path));
    }
    builder.addMissing(*this, records, onDisk);
    bodyOf(*this)->_keptRecords = builder.takeKept();
    setPaths_(records);
    restartSteps(*this);
}

} // namespace framekeeper
