#pragma once

#include "platform/foundation/NSDate.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/UTCDateTime.h"
#include "platform/icons/IconRefs.h"

namespace mac {

// Icons as data, and dates as the records in which catalogs keep them. Main thread. A nil receiver answers NO.

// The data of the icon's pieces under their types, four characters each; nil for null, and for an icon without data.
// Empty pieces are left out. The icon stays the caller's.
NSDictionary pxDictionaryWithIconRef_(IconRef iconRef);

// Nil for null.
NSDate pxDateWithUTCDateTime_(UTCDateTime const* utcDateTime);
// To the nearest 1/65536 of a second; NO, and nothing is written, for null and for a date before 1904 or beyond what 48
// bits of seconds hold.
bool pxUTCDateTime_(NSDate receiver, UTCDateTime* utcDateTime);

} // namespace mac
