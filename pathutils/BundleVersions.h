#pragma once

#include "platform/foundation/text/NSString.h"

namespace mac {

// Versions of bundles: three whole numbers, read from any text and written as two or three of them. Nothing is raised.
// A nil receiver answers nil and 0, logs nothing and leaves the out-arguments as they are.

// The version of the bundle at the path: its "CFBundleVersion" or, where that is missing, "IFMajorVersion" and
// "IFMinorVersion" together, trimmed; nil without a bundle, and without these. The short version string plays no part.
NSString pxVersionOfPath(NSString receiver);

// The numbers of the receiver's first three parts, set apart by dots: of each the one that its first digits make, 0
// without digits and for a part that is missing. "v2.5b3" is 2, 5 and 0. No pointer is null.
void pxParseVersionToMajor_minor_subminor_(NSString receiver, std::int32_t* major, std::int32_t* minor,
                                           std::int32_t* subminor);

// The parsed numbers with dots between: at most two or three as asked for, without a third that is 0. Any other number
// of them is nil and a line in the log.
NSString pxTrimmedVersion_(NSString receiver, std::int32_t maxNumbers);
// The parsed numbers with dots between, at most three of them, without a third that is 0.
NSString pxTrimmedVersion(NSString receiver);

// -1, 0 or 1 as the receiver is older than, as old as or newer than the other version, by the three numbers alone:
// "1.2" is "1.2.0" and "1.2b4". A nil other is 0.0.0.
std::int32_t pxVersionCompare_(NSString receiver, NSString version);

} // namespace mac
