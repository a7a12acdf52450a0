#include "platform/applescript/Registration.h"
#include "platform/applescript/NSAppleScript.h"
#include "platform/applescript/applications/FinderEvents.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

void registerAppleScript() {
    registerClasses<NSAppleScript>();
    setEventStandIn(finderReplyTo);
}

} // namespace mac
