#pragma once

#include "platform/desktop/autostart/AutostartChanges.h"
#include "platform/foundation/collections/NSDictionary.h"

namespace mac {

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
