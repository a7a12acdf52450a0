#pragma once

#include "platform/foundation/text/NSString.h"

namespace mac {

// Linux: the order of versions as people count: numbers by their value, so that 2.9 comes before 2.10, other characters
// without regard to case. Of texts such as "2.10 (210)" the number of the build counts last. Sort descriptors name it
// "compareAsVersion:". A nil receiver answers NSOrderedSame, and a nil other one comes first.
NSComparisonResult compareAsVersion_(NSString const& version, NSString const& other);

// Gives strings the message of that name.
void registerVersionOrder();

} // namespace mac
