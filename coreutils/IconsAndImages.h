#pragma once

#include "platform/foundation/NSDictionary.h"
#include "platform/icons/IconRefs.h"

namespace mac {

// Icons as data. Main thread.

// The data of the icon's pieces under their types, four characters each; nil for null, and for an icon without data.
// Empty pieces are left out. The icon stays the caller's.
NSDictionary pxDictionaryWithIconRef_(IconRef iconRef);

} // namespace mac
