#pragma once

#include "platform/foundation/collections/NSArray.h"

namespace mac {

// The type identifiers of the images that can be read, in the order of the readers' own names; looked up once. Main
// thread.
// Linux: those for which the toolkit has a reader installed, and JPEG 2000.
NSArray CGImageSourceCopyTypeIdentifiers();

} // namespace mac
