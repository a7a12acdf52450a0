#include "platform/foundation/text/VersionOrder.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

NSComparisonResult compareAsVersion_(NSString const& version, NSString const& other) {
    if (version == nil) return NSOrderedSame;
    if (other == nil) return NSOrderedDescending;
    return version.compare_options_(other, NSNumericSearch | NSCaseInsensitiveSearch);
}

void registerVersionOrder() { addCategory<NSString>({method<&compareAsVersion_>("compareAsVersion:")}); }

} // namespace mac
