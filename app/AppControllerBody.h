#pragma once

#include "app/AppController.h"

namespace framekeeper {

// The controller's data. The order of the fields is that of their destruction reversed; the query goes with the
// controller and is neither stopped nor are its observers removed.
class AppController::Body : public ObjectBody {
public:
    NSArray _allAutolaunchItems;
    NSArray _allToolbarItems;
    NSSet _isRunningPaths;
    NSSet _isAutolaunchedPaths;
    NSSet _isInToolbarPaths;
    NSMutableSet _isOnHarddiskPaths;
    NSMutableSet _paths;
    NSMetadataQuery _query;
    NSArrayController _pathsArrayController;
    NSTableView _pathsTableView;
    NSWindow _window;
};

}
