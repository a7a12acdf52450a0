#pragma once

#include "app/AppController.h"
#include "app/MembershipSources.h"
#include "app/Undo.h"
#include "scripting/ProcessQuitting.h"
#include <array>
#include <memory>
#include <optional>

namespace framekeeper {

class InventorySync;

// The controller's data. The order of the fields is that of their destruction reversed; the query goes with the
// controller and is neither stopped nor are its observers removed.
class AppController::Body : public ObjectBody {
public:
    // How many results of the query are taken in without a break: what that takes is not felt.
    static constexpr std::size_t PathsInStep = 2000;

    // The pause comes before each look at a copy that was asked to quit.
    explicit Body(Pause pause = sleepForInterval, std::size_t pathsInStep = PathsInStep)
        : _pause(std::move(pause)), _pathsInStep(pathsInStep) {}

    Pause const _pause;
    std::size_t const _pathsInStep;
    NSArray _allAutolaunchItems;
    NSArray _allToolbarItems;
    // Row by row of MembershipSources.
    std::array<NSSet, MembershipSources.size()> _entries;
    NSMutableSet _isOnHarddiskPaths;
    NSMutableSet _paths;
    NSMetadataQuery _query;
    // The query's results are being taken in step by step; null if not.
    std::shared_ptr<InventorySync> _sync;
    // There were more results meanwhile.
    bool _syncsAgain{false};
    // The last one on top of the stack, which is its end.
    std::vector<UndoStep> _undoSteps;
    NSString _notice;
    // Unset until it is asked for.
    std::optional<NSString> _logOutObstacle;
    bool _noticeOffersUndo{false};
    NSArrayController _pathsArrayController;
    NSTableView _pathsTableView;
    NSWindow _window;
};

}
