#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

class NSNull::Body : public ObjectBody {
public:
    NSString description() const override { return "<null>"; }
    id copy() const override { return null(); }
    // Every key of it is null: a path goes on through what is missing from a collection.
    id valueForKey(NSString const&) override { return null(); }
};

ClassDescription NSNull::describeClass() {
    return {
        .name = "NSNull",
        .superclass = classOf<NSObject>(),
        .classMethods = {method<&NSNull::null>("null")},
    };
}

NSNull NSNull::null() {
    // Never destroyed: other objects may ask for it until the program's last instruction.
    static NSNull const& null = *std::make_unique<NSNull>(adopt<NSNull>()).release();
    return null;
}

} // namespace mac
