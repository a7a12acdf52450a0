#include "platform/foundation/objects/Boundary.h"
#include "platform/foundation/running/Log.h"

namespace mac {

void logCurrentException() {
    try {
        throw;
    } catch (NSException const& exception) {
        NSLog("An exception ended an event early: %s: %s", exception.name(), exception.reason());
    } catch (std::exception const& exception) {
        NSLog("An exception ended an event early: %s", exception.what());
    } catch (...) {
        NSLog("An exception ended an event early: it tells nothing of itself");
    }
}

} // namespace mac
