#include "app/AppControllerBody.h"
#include "platform/foundation/KeyValueObserving.h"

namespace framekeeper {

namespace {

// Replaces a field whole. Observers are told once of every setting, also of the same object.
template <class Value>
void replace(AppController const& controller, Value AppController::Body::*field, Value const& value,
             NSString const& key) {
    if (controller == nil) return;
    KeyChange const change(controller, key);
    if (!isSame(bodyOf(controller)->*field, value)) bodyOf(controller)->*field = value;
}

template <class Value>
Value read(AppController const& controller, Value AppController::Body::*field) {
    return controller == nil ? Value() : bodyOf(controller)->*field;
}

} // namespace

NSArray AppController::allAutolaunchItems() const { return read(*this, &Body::_allAutolaunchItems); }

void AppController::setAllAutolaunchItems_(NSArray const& items) const {
    replace(*this, &Body::_allAutolaunchItems, items, "allAutolaunchItems");
}

NSArray AppController::allToolbarItems() const { return read(*this, &Body::_allToolbarItems); }

void AppController::setAllToolbarItems_(NSArray const& items) const {
    replace(*this, &Body::_allToolbarItems, items, "allToolbarItems");
}

NSSet AppController::isRunningPaths() const { return read(*this, &Body::_isRunningPaths); }

void AppController::setIsRunningPaths_(NSSet const& entries) const {
    replace(*this, &Body::_isRunningPaths, entries, "isRunningPaths");
}

NSSet AppController::isAutolaunchedPaths() const { return read(*this, &Body::_isAutolaunchedPaths); }

void AppController::setIsAutolaunchedPaths_(NSSet const& entries) const {
    replace(*this, &Body::_isAutolaunchedPaths, entries, "isAutolaunchedPaths");
}

NSSet AppController::isInToolbarPaths() const { return read(*this, &Body::_isInToolbarPaths); }

void AppController::setIsInToolbarPaths_(NSSet const& entries) const {
    replace(*this, &Body::_isInToolbarPaths, entries, "isInToolbarPaths");
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

} // namespace framekeeper
