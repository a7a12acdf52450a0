#pragma once

#include "platform/desktop/autostart/AutostartChanges.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/preferences/NativeStores.h"

namespace mac {

// The list of login items: the value of "AutoLaunchedApplicationDictionary" in the domain "loginwindow", an array of
// dictionaries. Its native form are the desktop's autostart entries. Main thread.
//
// An entry of another program is read as {"Hide": NO, "Path": what it starts}. A dictionary that this program wrote is
// read back as it was written, whatever keys it has, as long as its entry still starts what its "Path" names. The
// desktop has a form for dictionaries whose "Path" names an application's bundle (NAME.app), there or not, or a program
// that may be executed.
//
// The array is in the order of the entries' file names, then what the desktop has no form for, then what this program
// wrote, in the order of writing.
NativeItems readLoginItems(NSArray const& kept);

// An element stands for the entry that it was read from, also a copy of it. One that was removed before, by this
// process, puts the very entry back. All is written or, as far as the system allows, nothing; nothing also if the
// program of an element cannot be looked at, or if an element whose entry others removed has no form any more.
//
// Linux: an entry that appeared since the last read is kept, though the array does not have it.
NativeWriting writeLoginItems(NSArray const& items);

// Whether the element stands, since the last read, for an entry that this program wrote.
bool isOwnLoginItem(id const& element);

// Login items as the desktop's autostart entries, and back. Main thread.

// A new dictionary of what the item starts.
NSDictionary loginItemOf(AutostartItem const& item);

// Whether the element is a dictionary whose "Path" an autostart entry can start. Fails if the item at that path cannot
// be looked at.
Result<bool> hasEntryForm(id const& element);

// REQUIRES: hasEntryForm(item) is true.
NewAutostartEntry newEntryFor(NSDictionary const& item, unsigned long order);

// The order that puts a new own entry behind all others.
unsigned long nextLoginItemOrder();

} // namespace mac
