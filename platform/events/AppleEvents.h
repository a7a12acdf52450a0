#pragma once

#include "platform/events/AEDataModel.h"
#include "platform/processes/Processes.h"

// Who handles the Apple events that this program gets, and how it sends some. Any program of this library that has
// installed a handler or sent an event to another process answers those of the same user, over the session bus.

namespace mac {

// Nobody handles such an event here; a value that is no event; a mode or time-out that there is none of; no reply in
// time; a handler that failed; the process does not run, or answers no events; it went, or the bus did, before it
// replied.
inline constexpr OSErr errAENotAppleEvent = -1707;
inline constexpr OSErr errAEEventNotHandled = -1708;
inline constexpr OSErr errAEUnknownSendMode = -1709;
inline constexpr OSErr errAETimeout = -1712;
inline constexpr OSErr errAEHandlerNotFound = -1717;
inline constexpr OSErr errAEEventFailed = -10000;
inline constexpr OSErr connectionInvalid = -609;

// Handles an event: fills the reply, which is null when none is wanted, and answers noErr or an error, which goes into
// the reply under keyErrorNumber unless there is one. errAEEventNotHandled is as if there were no handler. What it
// raises is logged and counts as errAEEventFailed.
using AEEventHandlerProcPtr = OSErr (*)(AppleEvent const* event, AppleEvent* reply, void* refcon);

// typeWildCard as class or ID stands for any; the handler that names more of them is asked. A second handler for a
// class and ID takes the first one's place. Handlers are called on the main thread, by the run loop or while a reply is
// waited for, and in place for events that the program sends itself. Main thread; paramErr for a null handler. The last
// argument must be NO: there are no handlers for more than one program.
OSErr AEInstallEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerProcPtr handler, void* refcon,
                            BOOL isSystemHandler);
// errAEHandlerNotFound when there is no handler for just this class and ID, or another one than the handler named;
// a null handler names any.
OSErr AERemoveEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerProcPtr handler,
                           BOOL isSystemHandler);

// How an event is sent; what else a mode may say is ignored.
using AESendMode = std::int32_t;
inline constexpr AESendMode kAENoReply = 1;
// The reply comes as an event of its own, kCoreEventClass and kAEAnswer, with the return ID of the one it answers.
inline constexpr AESendMode kAEQueueReply = 2;
inline constexpr AESendMode kAEWaitReply = 3;

using AESendPriority = std::int16_t;
inline constexpr AESendPriority kAENormalPriority = 0;

// Time-outs in ticks, sixty a second.
inline constexpr std::int32_t kAEDefaultTimeout = -1;
inline constexpr std::int32_t kNoTimeOut = -2;

// There are no procedures to be called while a reply is waited for.
using AEIdleUPP = Nil;
using AEFilterUPP = Nil;

// Sends the event to the process that its address names: a serial number, a process ID, a bundle identifier or a
// signature. To this program itself it is dispatched in place. Answers noErr once it is sent, and when a reply is
// waited for, once that is there; what a handler failed with is in the reply. Else errAEEventNotHandled (only where a
// reply is waited for), errAETimeout, procNotFound, connectionInvalid, memFullErr for more than 16 MiB or for the
// 513th event without reply that the receiver has not handled, paramErr for a null pointer. The default time-out is a
// minute. The reply is null after a failure and where none is waited for, and is the caller's to dispose of; it may be
// a null pointer where none is waited for. While a reply is waited for, the main thread handles incoming events and
// nothing else. Other threads may send to other processes, by serial number or process ID. Linux: a process that
// answers no events is asked to quit as a user would, the file browser by its own command and others by SIGTERM, which
// counts as its reply.
OSStatus AESendMessage(AppleEvent const* event, AppleEvent* reply, AESendMode sendMode, std::int32_t timeOutInTicks);
// The same; the priority is ignored.
OSErr AESend(AppleEvent const* event, AppleEvent* reply, AESendMode sendMode, AESendPriority sendPriority,
             std::int32_t timeOutInTicks, AEIdleUPP idleProc, AEFilterUPP filterProc);

// Sends the process an event without parameters and waits for the reply, which is not looked at; the default time-out.
OSStatus sendEvent(ProcessSerialNumber const& psn, AEEventClass eventClass, AEEventID eventID);

} // namespace mac
