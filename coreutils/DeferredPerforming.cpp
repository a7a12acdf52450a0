#include "coreutils/DeferredPerforming.h"
#include "platform/foundation/running/NSNotificationQueue.h"

namespace mac {

namespace {

void enqueueRequest(id const& receiver, NSDictionary const& userInfo, BOOL postWhenIdle, BOOL coalescing) {
    NSNotification const request = NSNotification::notificationWithName_object_userInfo_(
        pxPerformDeferredSelectorNotification, receiver, userInfo);
    NSUInteger const name = coalescing ? NSNotificationCoalescingOnName : NSNotificationNoCoalescing;
    NSNotificationQueue::defaultQueue().enqueueNotification_postingStyle_coalesceMask_forModes_(
        request, postWhenIdle ? NSPostWhenIdle : NSPostASAP, name | NSNotificationCoalescingOnSender, nil);
}

} // namespace

void pxRegisterPerformDeferredSelector(id receiver) {
    if (receiver == nil) return;
    NSNotificationCenter::defaultCenter().addObserver_selector_name_object_(
        receiver, "pxPerformDeferredSelectorHandler:", pxPerformDeferredSelectorNotification, receiver);
}

void pxUnregisterPerformDeferredSelector(id receiver) {
    if (receiver == nil) return;
    NSNotificationCenter::defaultCenter().removeObserver_name_object_(receiver, pxPerformDeferredSelectorNotification,
                                                                      receiver);
}

void pxPerformDeferredSelector_withObject_postWhenIdle_coalescing_(id receiver, SEL selector, id object,
                                                                   BOOL postWhenIdle, BOOL coalescing) {
    if (receiver == nil) return;
    enqueueRequest(
        receiver,
        NSDictionary::dictionaryWithObjectsAndKeys_({NSStringFromSelector(selector), "selector", object, "object1"}),
        postWhenIdle, coalescing);
}

void pxPerformDeferredSelector_withObject_withObject_postWhenIdle_coalescing_(id receiver, SEL selector, id first,
                                                                              id second, BOOL postWhenIdle,
                                                                              BOOL coalescing) {
    if (receiver == nil) return;
    // Read back as "object1", so that the first one never arrives (specified so).
    enqueueRequest(receiver,
                   NSDictionary::dictionaryWithObjectsAndKeys_(
                       {NSStringFromSelector(selector), "selector", first, "object", second, "object2"}),
                   postWhenIdle, coalescing);
}

void pxPerformDeferredSelectorHandler_(id receiver, NSNotification notification) {
    NSDictionary const request = notification.userInfo();
    SEL const selector = NSSelectorFromString(as<NSString>(request.objectForKey_("selector")));
    receiver.performSelector_withObject_withObject_(selector, request.objectForKey_("object1"),
                                                    request.objectForKey_("object2"));
}

} // namespace mac
