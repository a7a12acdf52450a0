#include "platform/events/NSAppleEventManager.h"
#include "platform/Registration.h"
#include "platform/events/EventDispatch.h"
#include "platform/events/EventTransport.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/Weak.h"

namespace mac {

namespace {

NSAppleEventDescriptor descriptorOf(AEDesc const* desc) {
    return desc ? NSAppleEventDescriptor::descriptorWithAEDesc(*desc) : NSAppleEventDescriptor(nil);
}

} // namespace

class NSAppleEventManager::Body : public ObjectBody {};

ClassDescription NSAppleEventManager::describeClass() {
    return {
        .name = "NSAppleEventManager",
        .superclass = classOf<NSObject>(),
        .methods = {method<&NSAppleEventManager::currentAppleEvent>("currentAppleEvent"),
                    method<&NSAppleEventManager::currentReplyAppleEvent>("currentReplyAppleEvent")},
        .classMethods = {method<&NSAppleEventManager::sharedAppleEventManager>("sharedAppleEventManager")},
    };
}

NSAppleEventManager NSAppleEventManager::sharedAppleEventManager() {
    static NSAppleEventManager const manager = adopt<NSAppleEventManager>();
    return manager;
}

void NSAppleEventManager::setEventHandler_andSelector_forEventClass_andEventID_(id const& handler,
                                                                                SEL handleEventSelector,
                                                                                AEEventClass eventClass,
                                                                                AEEventID eventID) const {
    if (*this == nil) return;
    if (handler == nil) throw NSInvalidArgumentException("setEventHandler: nil handler");
    Weak<id> const weakHandler(handler);
    auto const handle = [weakHandler, handleEventSelector](AppleEvent const& event, AppleEvent& reply) -> OSErr {
        id const target = weakHandler.load();
        if (target == nil) return errAEEventNotHandled;
        NSAppleEventDescriptor const filled = NSAppleEventDescriptor::descriptorWithAEDesc(reply);
        target.performSelector_withObject_withObject_(handleEventSelector,
                                                      NSAppleEventDescriptor::descriptorWithAEDesc(event), filled);
        reply = *filled.aeDesc();
        return noErr;
    };
    setEventHandler(eventClass, eventID, {handle});
}

void NSAppleEventManager::removeEventHandlerForEventClass_andEventID_(AEEventClass eventClass,
                                                                      AEEventID eventID) const {
    if (*this != nil) removeEventHandler(eventClass, eventID, nullptr);
}

NSAppleEventDescriptor NSAppleEventManager::currentAppleEvent() const {
    return *this == nil ? NSAppleEventDescriptor(nil) : descriptorOf(currentEvent().event);
}

NSAppleEventDescriptor NSAppleEventManager::currentReplyAppleEvent() const {
    return *this == nil ? NSAppleEventDescriptor(nil) : descriptorOf(currentEvent().reply);
}

void registerEvents() {
    registerClasses<NSAppleEventDescriptor, NSAppleEventManager>();
    prepareEventEndpoint();
}

} // namespace mac
