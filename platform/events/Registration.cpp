#include "platform/events/Registration.h"
#include "platform/events/EventTransport.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/events/NSAppleEventManager.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

void registerEvents() {
    registerClasses<NSAppleEventDescriptor, NSAppleEventManager>();
    prepareEventEndpoint();
}

} // namespace mac
