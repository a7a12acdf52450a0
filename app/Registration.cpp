#include "app/Registration.h"
#include "app/AppController.h"
#include "app/CopyDetails.h"
#include "app/Outlets.h"
#include "app/Panes.h"
#include "app/ScanChanges.h"
#include "app/ValueTransformers.h"
#include "platform/foundation/objects/Method.h"

namespace framekeeper {

namespace {

void useWindow() {
    setWindowOutlets({{outlet<&AppController::pathsTableView, &AppController::Body::_pathsTableView>("pathsTableView"),
                       outlet<&AppController::window, &AppController::Body::_window>("window")},
                      [](AppController const& controller, NSArray const& descriptors) {
                          controller.pathsTableView().setSortDescriptors_(descriptors);
                      }});
}

} // namespace

void registerApp() {
    useWindow();
    registerClasses<AppController, BOOLToColorTransformer, BOOLToStringTransformer, CopyDetails, InTrashTransformer,
                    Panes, ScanChanges>();
}

} // namespace framekeeper
