#include "app/Outlets.h"
#include "app/Registration.h"

namespace framekeeper {

void registerApp() {
    setWindowOutlets({{outlet<&AppController::pathsTableView, &AppController::Body::_pathsTableView>("pathsTableView"),
                       outlet<&AppController::window, &AppController::Body::_window>("window")},
                      [](AppController const& controller, NSArray const& descriptors) {
                          controller.pathsTableView().setSortDescriptors_(descriptors);
                      }});
    registerController();
}

} // namespace framekeeper
