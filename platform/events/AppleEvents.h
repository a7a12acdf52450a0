#pragma once

#include "platform/events/AEDataModel.h"
#include "platform/processes/Processes.h"

// Handlers for the Apple events that this program receives, and sending events. Any program of this library that has
// installed a handler or sent an event to another process answers events of the same user's processes, over the session
// bus.

namespace mac {

// The descriptor is not an event with a class and an ID.
inline constexpr OSErr errAENotAppleEvent = -1707;
// The receiver has no handler for the event.
inline constexpr OSErr errAEEventNotHandled = -1708;
// The send mode says nothing about a reply.
inline constexpr OSErr errAEUnknownSendMode = -1709;
// No reply came in time.
inline constexpr OSErr errAETimeout = -1712;
// No such handler is installed.
inline constexpr OSErr errAEHandlerNotFound = -1717;
// The handler failed without an error of its own.
inline constexpr OSErr errAEEventFailed = -10000;
// There is no session bus, or the receiver or the bus went away before the reply.
inline constexpr OSErr connectionInvalid = -609;

// Handles an event: fills the reply, which is null if none is wanted, and answers noErr or an error. The error goes
// into the reply under keyErrorNumber, unless the handler has put one there. errAEEventNotHandled has the effect of no
// handler. An exception is logged and counts as errAEEventFailed. `refcon` is the value given with the handler.
using AEEventHandlerProcPtr = OSErr (*)(AppleEvent const* event, AppleEvent* reply, void* refcon);

// Installs the handler for a class and an ID, in place of an earlier one for the same two. typeWildCard as class or ID
// stands for any; of several handlers that match, the one with fewer wild cards is called. Handlers are called on the
// main thread, by the run loop or during a wait for a reply, and immediately for events that the program sends to
// itself. Main thread; paramErr for a null handler, and if isSystemHandler is YES: there are no handlers for more than
// one program.
OSErr AEInstallEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerProcPtr handler, void* refcon,
                            BOOL isSystemHandler);
// Removes the handler for exactly this class and ID. errAEHandlerNotFound if there is none, if it is another one than
// `handler`, unless that is null, and if isSystemHandler is YES. Main thread.
OSErr AERemoveEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerProcPtr handler,
                           BOOL isSystemHandler);

// How the reply to an event is delivered; other bits of a mode are ignored.
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

// Procedures to be called during a wait for a reply are not supported; pass nil.
using AEIdleUPP = Nil;
using AEFilterUPP = Nil;

// Sends the event to the process that its address names: a serial number, a process ID, a bundle identifier or a
// signature. An event to this program itself is dispatched immediately. Answers noErr once the event is sent and, with
// kAEWaitReply, once the reply has come; an error of the handler is in the reply. Otherwise errAENotAppleEvent,
// errAEUnknownSendMode, errAEEventNotHandled (only with kAEWaitReply), errAETimeout, procNotFound, connectionInvalid,
// memFullErr for more than 16 MiB or for the 513th event without reply that the receiver has not handled, paramErr for
// a null event, a null reply with kAEWaitReply, and a time-out below kNoTimeOut. The default time-out is one minute.
// `reply` is set to null unless a reply was waited for and has come; it is the caller's to dispose of, and may be a
// null pointer in the other modes. During the wait the main thread handles incoming events and nothing else. Other
// threads may send to other processes, by serial number or process ID.
// Linux: a process that answers no events is asked to quit as a user would, the file browser by its own command and
// others by SIGTERM, which counts as its reply.
OSStatus AESendMessage(AppleEvent const* event, AppleEvent* reply, AESendMode sendMode, std::int32_t timeOutInTicks);
// Does what AESendMessage does; the priority and the two procedures are ignored.
OSErr AESend(AppleEvent const* event, AppleEvent* reply, AESendMode sendMode, AESendPriority sendPriority,
             std::int32_t timeOutInTicks, AEIdleUPP idleProc, AEFilterUPP filterProc);

// Sends the process an event without parameters and waits for the reply with the default time-out. Answers what
// AESendMessage does; the contents of the reply, also an error of the handler, are ignored.
OSStatus sendEvent(ProcessSerialNumber const& psn, AEEventClass eventClass, AEEventID eventID);

} // namespace mac
