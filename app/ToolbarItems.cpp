#include "app/AppController.h"

namespace framekeeper {

// No source of toolbar items is connected yet, so none is known.
void AppController::syncIsInToolbar() const {
    setAllToolbarItems_(NSArray::array());
    setIsInToolbarPaths_(NSSet::set());
}

} // namespace framekeeper
