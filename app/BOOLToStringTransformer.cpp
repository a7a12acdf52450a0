#include "app/BOOLToStringTransformer.h"
#include "platform/foundation/Method.h"

namespace framekeeper {

ClassDescription BOOLToStringTransformer::describeClass() {
    return {
        .name = "BOOLToStringTransformer",
        .superclass = classOf<NSValueTransformer>(),
        .makeBody = &makeEmptyBody<BOOLToStringTransformer>,
        .classMethods =
            {
                method<&BOOLToStringTransformer::transformedValueClass>("transformedValueClass"),
                method<&BOOLToStringTransformer::allowsReverseTransformation>("allowsReverseTransformation"),
            },
    };
}

Class BOOLToStringTransformer::transformedValueClass() { return classOf<NSString>(); }

bool BOOLToStringTransformer::allowsReverseTransformation() { return false; }

id BOOLToStringTransformer::Body::transformedValue(id const& value) const {
    bool const isTrue = as<NSNumber>(value.performSelector_("boolValue")).boolValue();
    return isTrue ? id("Yes") : id("No");
}

} // namespace framekeeper
