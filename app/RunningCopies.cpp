#include "app/AppController.h"

namespace framekeeper {

// No source of running copies is connected yet, so none is known.
void AppController::syncIsRunningPaths() const { setIsRunningPaths_(NSSet::set()); }

} // namespace framekeeper
