#include "tests/platform/spotlight/QueryRecorder.h"
#include "platform/foundation/objects/Method.h"
#include "platform/spotlight/NSMetadataQuery.h"

namespace mac::test {

ClassDescription QueryRecorder::describeClass() {
    return {.name = "QueryRecorder",
            .superclass = classOf<NSObject>(),
            .methods = {method<&QueryRecorder::take_>("take:")}};
}

void QueryRecorder::take_(NSNotification const& notification) const {
    bodyOf(*this)->names.push_back(notification.name().UTF8String());
    bodyOf(*this)->counts.push_back(as<NSMetadataQuery>(notification.object()).resultCount());
    if (bodyOf(*this)->onNotification) bodyOf(*this)->onNotification(bodyOf(*this)->names.back());
}

} // namespace mac::test
