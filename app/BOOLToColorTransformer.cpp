#include "app/BOOLToColorTransformer.h"
#include "platform/appkit/workspace/NSColor.h"
#include "platform/foundation/objects/Method.h"

namespace framekeeper {

ClassDescription BOOLToColorTransformer::describeClass() {
    return {
        .name = "BOOLToColorTransformer",
        .superclass = classOf<NSValueTransformer>(),
        .makeBody = &makeEmptyBody<BOOLToColorTransformer>,
        .methods = {method<&BOOLToColorTransformer::transformedValue_>("transformedValue:")},
        .classMethods =
            {
                classMethod<&BOOLToColorTransformer::transformedValueClass>("transformedValueClass"),
                classMethod<&BOOLToColorTransformer::allowsReverseTransformation>("allowsReverseTransformation"),
            },
    };
}

Class BOOLToColorTransformer::transformedValueClass() { return classOf<NSColor>(); }

bool BOOLToColorTransformer::allowsReverseTransformation() { return false; }

id BOOLToColorTransformer::Body::transformedValue(id const& value) const {
    bool const isTrue = as<NSNumber>(value.performSelector_("boolValue")).boolValue();
    return isTrue ? NSColor::blackColor() : NSColor::darkGrayColor();
}

} // namespace framekeeper
