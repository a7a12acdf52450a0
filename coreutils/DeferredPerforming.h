#pragma once

#include "platform/foundation/running/NSNotificationCenter.h"

namespace mac {

// Methods that an object has called later by the run loop, when it gets there or when it is idle. A request is a
// notification from the object to itself in its thread's NSNotificationQueue; it keeps the object and the arguments
// until it is delivered. Nothing is reported: a selector that the object does not have raises on the run loop, which
// logs it. A nil receiver does nothing. For one thread, normally the main thread; the observing itself is thread-safe.

// The name of the notification, whose user info has "selector" and the arguments.
inline constexpr char pxPerformDeferredSelectorNotification[] = "pxPerformDeferredSelector";

// The object handles its requests from now on; without that they have no effect. Not kept alive by it. To be ended by
// pxUnregisterPerformDeferredSelector, after which waiting requests are lost; registering twice performs twice.
void pxRegisterPerformDeferredSelector(id receiver);
// The object handles its requests no longer: those that wait are lost. Nothing happens for one that was not registered.
void pxUnregisterPerformDeferredSelector(id receiver);

// Requests a call of the selector with the object, which may be nil, and nil as second argument. The last of several
// waiting requests of one object is performed, whatever their selectors, with coalescing or without. Without it
// (deliberately so) other waiting notifications from the object are replaced, too.
void pxPerformDeferredSelector_withObject_postWhenIdle_coalescing_(id receiver, SEL selector, id object,
                                                                   BOOL postWhenIdle, BOOL coalescing);

// pxPerformDeferredSelector with two objects, of which only the second one arrives, as second argument: the first
// argument is nil (deliberately so). A nil first object leaves out the second one, too.
void pxPerformDeferredSelector_withObject_withObject_postWhenIdle_coalescing_(id receiver, SEL selector, id first,
                                                                              id second, BOOL postWhenIdle,
                                                                              BOOL coalescing);

// Performs the notification's "selector" on the receiver with its "object1" and "object2", each nil if missing. Raises
// NSInvalidArgumentException if the receiver has no such method or the notification no selector.
void pxPerformDeferredSelectorHandler_(id receiver, NSNotification notification);

} // namespace mac
