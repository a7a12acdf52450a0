#include "app/InTrashTransformer.h"
#include "platform/desktop/session/AnsweringItems.h"
#include "platform/files/trash/Trash.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Method.h"

namespace framekeeper {

ClassDescription InTrashTransformer::describeClass() {
    return {
        .name = "InTrashTransformer",
        .superclass = classOf<NSValueTransformer>(),
        .makeBody = &makeEmptyBody<InTrashTransformer>,
        .methods = {method<&InTrashTransformer::transformedValue_>("transformedValue:")},
        .classMethods =
            {
                classMethod<&InTrashTransformer::transformedValueClass>("transformedValueClass"),
                classMethod<&InTrashTransformer::allowsReverseTransformation>("allowsReverseTransformation"),
            },
    };
}

Class InTrashTransformer::transformedValueClass() { return classOf<NSNumber>(); }

bool InTrashTransformer::allowsReverseTransformation() { return false; }

id InTrashTransformer::Body::transformedValue(id const& value) const {
    std::optional<std::string> const path = as<NSString>(value).fileSystemRepresentation();
    if (!path || !AnsweringItems::shared()->mayRead(*path)) return NSNumber::numberWithBool_(NO);
    auto const place = placeInTrash(*path);
    return NSNumber::numberWithBool_(BOOL(place.hasValue() && place.value().has_value()));
}

} // namespace framekeeper
