#include "app/BOOLToStringTransformer.h"
#include "platform/foundation/objects/Method.h"

namespace framekeeper {

ClassDescription BOOLToStringTransformer::describeClass() {
    return {
        .name = "BOOLToStringTransformer",
        .superclass = classOf<NSValueTransformer>(),
        .makeBody = &makeEmptyBody<BOOLToStringTransformer>,
        .methods = {method<&BOOLToStringTransformer::transformedValue_>("transformedValue:")},
        .classMethods =
            {
                classMethod<&BOOLToStringTransformer::transformedValueClass>("transformedValueClass"),
                classMethod<&BOOLToStringTransformer::allowsReverseTransformation>("allowsReverseTransformation"),
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
