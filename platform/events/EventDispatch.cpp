#include "platform/events/EventDispatch.h"
#include "platform/events/DescriptorContents.h"
#include "platform/events/EventTransport.h"
#include "platform/foundation/running/EventLoop.h"
#include <array>
#include <map>

namespace mac {

namespace {

// The most events handled within each other: a handler that sends an event handles others while it waits, and each
// level takes stack.
constexpr std::size_t MostNested = 64;

using Key = std::pair<std::uint32_t, std::uint32_t>;

std::map<Key, RegisteredHandler>& eventHandlers() {
    static std::map<Key, RegisteredHandler> handlers;
    return handlers;
}

std::vector<CurrentEvent>& nestedEvents() {
    static std::vector<CurrentEvent> events;
    return events;
}

// The handler for the event, as a copy: it may remove itself.
EventHandler handlerFor(AppleEvent const& event) {
    std::uint32_t const eventClass = codeAttribute(event, keyEventClassAttr);
    std::uint32_t const eventID = codeAttribute(event, keyEventIDAttr);
    constexpr std::uint32_t any = typeWildCard.value();
    for (Key const& key : std::array<Key, 4>{{{eventClass, eventID}, {eventClass, any}, {any, eventID}, {any, any}}}) {
        auto const found = eventHandlers().find(key);
        if (found != eventHandlers().end()) return found->second.handler;
    }
    return nullptr;
}

OSErr call(EventHandler const& handler, AppleEvent const& event, AppleEvent& reply) {
    nestedEvents().push_back({&event, &reply});
    OSErr status = errAEEventFailed;
    guarded([&] { status = handler(event, reply); });
    nestedEvents().pop_back();
    return status;
}

} // namespace

void setEventHandler(AEEventClass eventClass, AEEventID eventID, RegisteredHandler handler) {
    eventHandlers()[{eventClass.value(), eventID.value()}] = std::move(handler);
    openEventEndpoint();
}

bool removeEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerProcPtr procedure) {
    auto const found = eventHandlers().find({eventClass.value(), eventID.value()});
    if (found == eventHandlers().end() || (procedure && found->second.procedure != procedure)) return false;
    eventHandlers().erase(found);
    return true;
}

std::uint32_t codeAttribute(AppleEvent const& event, AEKeyword keyword) {
    AEDesc const* const value = findEntry(contentsOf(event).attributes, keyword);
    return value ? valueOf<std::uint32_t>(*value, typeType).value_or(0) : 0;
}

bool isEvent(AEDesc const& desc) {
    return desc.descriptorType == typeAppleEvent && contentsOf(desc).form == DescriptorForm::Event &&
           codeAttribute(desc, keyEventClassAttr) != 0 && codeAttribute(desc, keyEventIDAttr) != 0;
}

AppleEvent makeReply(AppleEvent const& event) {
    AppleEvent reply = makeContainer(typeAppleEvent, DescriptorForm::Event);
    putEntry(reply, keyEventClassAttr, makeDescOf(typeType, kCoreEventClass.value()), true);
    putEntry(reply, keyEventIDAttr, makeDescOf(typeType, kAEAnswer.value()), true);
    for (AEKeyword const keyword : {keyReturnIDAttr, keyTransactionIDAttr}) {
        AEDesc const* const value = findEntry(contentsOf(event).attributes, keyword);
        if (value) putEntry(reply, keyword, *value, true);
    }
    return reply;
}

AppleEvent failedReply(AppleEvent const& event, OSStatus status) {
    AppleEvent reply = makeReply(event);
    putEntry(reply, keyErrorNumber, makeDescOf(typeSInt32, status));
    return reply;
}

OSErr dispatchEvent(AppleEvent const& event, bool wantsReply, AppleEvent& reply) {
    reply = {};
    EventHandler const handler = handlerFor(event);
    if (!handler || nestedEvents().size() >= MostNested) return errAEEventNotHandled;
    AppleEvent filled = wantsReply ? makeReply(event) : AppleEvent{};
    OSErr const status = call(handler, event, filled);
    if (status == errAEEventNotHandled) return status;
    if (wantsReply && status != noErr && !findEntry(contentsOf(filled).entries, keyErrorNumber))
        putEntry(filled, keyErrorNumber, makeDescOf(typeSInt32, std::int32_t{status}));
    reply = std::move(filled);
    return noErr;
}

CurrentEvent currentEvent() { return nestedEvents().empty() ? CurrentEvent{} : nestedEvents().back(); }

OSErr AEInstallEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerProcPtr handler, void* refcon,
                            BOOL isSystemHandler) {
    if (!handler || isSystemHandler) return paramErr;
    setEventHandler(
        eventClass, eventID,
        {[handler, refcon](AppleEvent const& event, AppleEvent& reply) { return handler(&event, &reply, refcon); },
         handler});
    return noErr;
}

OSErr AERemoveEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerProcPtr handler,
                           BOOL isSystemHandler) {
    bool const isRemoved = !isSystemHandler && removeEventHandler(eventClass, eventID, handler);
    return isRemoved ? noErr : errAEHandlerNotFound;
}

} // namespace mac
