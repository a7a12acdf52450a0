#pragma once

#include "platform/events/NSAppleEventDescriptor.h"

namespace mac {

// Events for the Finder and for this program, and the results of scripts and events as plain objects. Main thread. A
// nil receiver answers nil or NO.

// An event of class 'fndr' aimed at the running Finder by its serial number; without a target when none runs, so that
// sending it fails.
NSAppleEventDescriptor pxFinderAppleEventWithEventID_(AEEventID eventID);

// An event of class 'aevt' and ID 'setd' aimed at the Finder by its signature. The arguments are taken and not used:
// every caller gets this class and ID.
NSAppleEventDescriptor pxFinderAppleEventWithEventClass_eventID_(AEEventClass eventClass, AEEventID eventID);

// The address of the calling process, {0, kCurrentProcess}.
NSAppleEventDescriptor pxDescriptorWithProcessSerialNumberSelf();

// The address of the first running Finder in the order of the process list; nil when none runs.
NSAppleEventDescriptor pxDescriptorWithProcessSerialNumberFinder();

// Sends the event and waits neither for a reply nor a given time: YES when the sending itself failed with no error.
// What goes wrong in the other process is never seen.
bool pxSend(NSAppleEventDescriptor receiver);

// The value as an object. 'long', 'doub' (by way of its text) and truth values are numbers; text, 'enum' and 'type' are
// strings; a list and an object specifier an array of their items' objects, items without one left out. A record of one
// field that holds a flat list of keys and values is a dictionary, any other record nil. 'null' is its data; so is any
// other type, after a line in the log that names it.
id pxObject(NSAppleEventDescriptor receiver);

} // namespace mac
