#include "platform/spotlight/Registration.h"
#include "platform/foundation/objects/Method.h"
#include "platform/spotlight/NSMetadataItem.h"
#include "platform/spotlight/NSMetadataQuery.h"

namespace mac {

void registerSpotlight() { registerClasses<NSMetadataItem, NSMetadataQuery>(); }

} // namespace mac
