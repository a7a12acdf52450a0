#pragma once

#include "platform/foundation/objects/Method.h"
#include "platform/foundation/running/NSNotificationCenter.h"
#include "platform/spotlight/NSMetadataQuery.h"
#include <functional>
#include <string>
#include <vector>

namespace mac::test {

// Writes down which notifications arrive, with the number of results at that time.
class QueryRecorder : public Handle<QueryRecorder, NSObject> {
public:
    class Body;
    using Handle::Handle;
    static ClassDescription describeClass();

    void take_(NSNotification const& notification) const;
};

class QueryRecorder::Body : public ObjectBody {
public:
    void observeValueForKeyPath(NSString const& keyPath, id const&, NSDictionary const&, void*) override {
        changedKeys.push_back(keyPath.UTF8String());
        if (onChange) onChange();
    }
    std::vector<std::string> names;
    std::vector<NSUInteger> counts;
    std::vector<std::string> changedKeys;
    std::function<void(std::string const& name)> onNotification;
    std::function<void()> onChange;
};

inline ClassDescription QueryRecorder::describeClass() {
    return {.name = "QueryRecorder",
            .superclass = classOf<NSObject>(),
            .methods = {method<&QueryRecorder::take_>("take:")}};
}

inline void QueryRecorder::take_(NSNotification const& notification) const {
    bodyOf(*this)->names.push_back(notification.name().UTF8String());
    bodyOf(*this)->counts.push_back(as<NSMetadataQuery>(notification.object()).resultCount());
    if (bodyOf(*this)->onNotification) bodyOf(*this)->onNotification(bodyOf(*this)->names.back());
}

} // namespace mac::test
