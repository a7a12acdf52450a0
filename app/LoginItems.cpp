#include "app/AppController.h"

namespace framekeeper {

// No source of login items is connected yet, so none is known.
void AppController::syncIsAutolaunched() const {
    setAllAutolaunchItems_(NSArray::array());
    setIsAutolaunchedPaths_(NSSet::set());
}

} // namespace framekeeper
