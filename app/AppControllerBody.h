#pragma once

#include "app/AppController.h"
#include "app/CopyDetails.h"
#include "app/MembershipSources.h"
#include "app/Panes.h"
#include "app/RecordBuilding.h"
#include "app/ScanChanges.h"
#include "app/Undo.h"
#include "platform/desktop/session/AnsweringItems.h"
#include "scripting/ProcessQuitting.h"
#include "scripting/ProcessesAndFinder.h"
#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace framekeeper {

class InventorySync;

// How much of a query's results is taken in without a break: what that takes is not felt. A disk that is slow to answer
// ends a step sooner, after the fewest paths.
struct SyncStep {
    std::size_t paths{500};
    std::size_t fewestPaths{20};
    std::chrono::milliseconds time{5};
};

// The controller's data. The order of the fields is that of their destruction reversed; the query goes with the
// controller and is neither stopped nor are its observers removed.
class AppController::Body : public ObjectBody {
public:
    // Answers the serial number of the file browser's process; nil if it does not run.
    using FinderLookup = std::function<NSNumber()>;

    // The pause comes before each look at a copy that was asked to quit. A step is what is taken in of the query's
    // results without a break. The lookup goes through the computer's processes unless another one is handed in. What
    // the sources name beside the disk is looked at once it answers.
    explicit Body(Pause pause = sleepForInterval, SyncStep step = {},
                  FinderLookup lookUpFinder = &KRAProcessSerialNumberGetFinder,
                  std::shared_ptr<AnsweringItems> answeringItems = AnsweringItems::shared())
        : _pause(std::move(pause)), _step(step), _lookUpFinder(std::move(lookUpFinder)),
          _answeringItems(std::move(answeringItems)) {}

    Pause const _pause;
    SyncStep const _step;
    FinderLookup const _lookUpFinder;
    std::shared_ptr<AnsweringItems> const _answeringItems;
    NSArray _allAutolaunchItems;
    NSArray _allToolbarItems;
    // Row by row of MembershipSources.
    std::array<NSSet, MembershipSources.size()> _entries;
    NSMutableSet _isOnHarddiskPaths;
    NSMutableSet _paths;
    // The records among them of which the next inventory may have some.
    KeptRecords _keptRecords;
    NSMetadataQuery _query;
    // The query's results are being taken in step by step; null if not.
    std::shared_ptr<InventorySync> _sync;
    // There were more results meanwhile.
    bool _syncsAgain{false};
    // The inventory is built anew in the run loop's next turn.
    bool _reSyncsSoon{false};
    // The last one on top of the stack, which is its end.
    std::vector<UndoStep> _undoSteps;
    NSString _notice;
    // Why the list that was written last could not be written; nil if it could.
    NSString _writingProblem;
    // Why the lists could not be read whole; nil if they could.
    NSString _loginItemsProblem;
    NSString _placesProblem;
    // Unset until it is asked for.
    std::optional<NSString> _logOutObstacle;
    bool _noticeOffersUndo{false};
    NSArrayController _pathsArrayController;
    NSTableView _pathsTableView;
    NSWindow _window;
    // nil until they are asked for.
    Panes _panes;
    CopyDetails _details;
    ScanChanges _scanChanges;
};

}
