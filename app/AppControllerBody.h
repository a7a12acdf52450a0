#pragma once

#include "app/AppController.h"
#include "app/MembershipSources.h"
#include "app/Undo.h"
#include "scripting/ProcessQuitting.h"
#include <array>

namespace framekeeper {

// The controller's data. The order of the fields is that of their destruction reversed; the query goes with the
// controller and is neither stopped nor are its observers removed.
class AppController::Body : public ObjectBody {
public:
    // The pause comes before each look at a copy that was asked to quit.
    explicit Body(Pause pause = sleepForInterval) : _pause(std::move(pause)) {}

    Pause const _pause;
    NSArray _allAutolaunchItems;
    NSArray _allToolbarItems;
    // Row by row of MembershipSources.
    std::array<NSSet, MembershipSources.size()> _entries;
    NSMutableSet _isOnHarddiskPaths;
    NSMutableSet _paths;
    NSMetadataQuery _query;
    // The last one on top of the stack, which is its end.
    std::vector<UndoStep> _undoSteps;
    NSString _notice;
    bool _noticeOffersUndo{false};
    NSArrayController _pathsArrayController;
    NSTableView _pathsTableView;
    NSWindow _window;
};

}
