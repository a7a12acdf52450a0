#include "platform/foundation/NSValueTransformer.h"
#include "platform/foundation/Method.h"
#include "platform/foundation/NSDictionary.h"

namespace mac {

namespace {

NSMutableDictionary registry() {
    static NSMutableDictionary const transformers = NSMutableDictionary::dictionary();
    return transformers;
}

} // namespace

ClassDescription NSValueTransformer::describeClass() {
    return {
        .name = "NSValueTransformer",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSValueTransformer>,
        .methods = {method<&NSValueTransformer::transformedValue_>("transformedValue:")},
    };
}

void NSValueTransformer::setValueTransformer_forName_(NSValueTransformer const& transformer, NSString const& name) {
    if (name != nil) registry().setValue_forKey_(transformer, name);
}

NSValueTransformer NSValueTransformer::valueTransformerForName_(NSString const& name) {
    return as<NSValueTransformer>(registry().objectForKey_(name));
}

NSArray NSValueTransformer::valueTransformerNames() { return registry().allKeys(); }

id NSValueTransformer::transformedValue_(id const& value) const {
    return *this == nil ? id() : bodyOf(*this)->transformedValue(value);
}

} // namespace mac
