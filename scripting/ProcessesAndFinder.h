#pragma once

#include "platform/foundation/collections/NSEnumerator.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/NSTask.h"
#include "platform/processes/Processes.h"

// Running processes as plain numbers, how they are asked to quit, and showing items in the Finder: the desktop's file
// browser. Main thread. Nothing is raised and nothing is logged: what fails answers nil or NO, and so does a nil
// receiver.

namespace mac {

// The serial number as one number: its eight bytes in memory order, so that the low 32 bits are highLongOfPSN. Good
// while the process runs, and in this program only.
NSNumber KRAProcessSerialNumber_(ProcessSerialNumber psn);

// The process whose window is in front; nil where that cannot be told (see GetFrontProcess).
NSNumber KRAProcessSerialNumberGetFront();
// This process, under the number by which the process list knows it.
NSNumber KRAProcessSerialNumberGetCurrent();
// The first Finder in the order of the process list; nil when none runs.
NSNumber KRAProcessSerialNumberGetFinder();

// Brings the process that the receiver names to the front; NO where that cannot be done (see SetFrontProcess).
bool KRAProcessSerialNumberSetFront(NSNumber receiver);

// Asks the process to quit, by an Apple event whose reply is waited for, then looks every 0.2 seconds, 20 times at
// most, whether it has gone: YES when it has. NO when it could not be asked, which takes no time, and when it still
// runs. It is never forced.
bool KRAProcessSerialNumberQuit(NSNumber receiver);

// Shows the item at the path in the file browser; if it is missing, opens the nearest folder above it that exists. NO
// if that folder is invisible, if only "/" is left, and on failure.
bool KRAPathRevealInFinder(NSString receiver);
// Opens the item at the path: a folder in the file browser, a file with its application. NO if there is no item.
bool pxOpenItemWithFinder(NSString receiver);

// Shows each item as KRAPathRevealInFinder does: paths and file URLs; null objects and others are passed over. YES if
// at least one was shown; a failure does not end the enumeration.
bool pxRevealItemsInFinder(NSEnumerator receiver);
// Opens each item that exists as pxOpenItemWithFinder does.
bool pxOpenItemsWithFinder(NSEnumerator receiver);

// Shows the Finder's information windows of the items that exist, by a script. YES when there is one, whatever becomes
// of the script. Items that are neither paths nor null objects are passed over.
bool pxShowFinderInfo(NSEnumerator receiver);

// Asks a running task to end and does not wait for it; whether it was running.
bool pxTerminate(NSTask receiver);

} // namespace mac
