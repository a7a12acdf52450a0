#include "platform/foundation/NSNull.h"
#include "platform/foundation/NSString.h"

namespace mac {

class NSNull::Body : public ObjectBody {
public:
    NSString description() const override { return "<null>"; }
    id copy() const override { return null(); }
};

ClassDescription NSNull::describeClass()
{
    return { .name = "NSNull", .superclass = classOf<NSObject>() };
}

NSNull NSNull::null()
{
    static NSNull const null = adopt<NSNull>();
    return null;
}

}
