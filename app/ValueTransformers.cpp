#include "app/ValueTransformers.h"
#include "platform/appkit/workspace/NSColor.h"
#include "platform/desktop/session/AnsweringItems.h"
#include "platform/files/trash/Trash.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Method.h"

namespace framekeeper {

namespace {

// How each of the classes is known; they differ in their names and in what their methods do.
template <class Transformer>
ClassDescription transformerDescription(char const* name) {
    return {
        .name = name,
        .superclass = classOf<NSValueTransformer>(),
        .makeBody = &makeEmptyBody<Transformer>,
        .methods = {method<&Transformer::transformedValue_>("transformedValue:")},
        .classMethods =
            {
                classMethod<&Transformer::transformedValueClass>("transformedValueClass"),
                classMethod<&Transformer::allowsReverseTransformation>("allowsReverseTransformation"),
            },
    };
}

} // namespace

ClassDescription BOOLToStringTransformer::describeClass() {
    return transformerDescription<BOOLToStringTransformer>("BOOLToStringTransformer");
}

Class BOOLToStringTransformer::transformedValueClass() { return classOf<NSString>(); }

bool BOOLToStringTransformer::allowsReverseTransformation() { return false; }

id BOOLToStringTransformer::Body::transformedValue(id const& value) const {
    bool const isTrue = as<NSNumber>(value.performSelector_("boolValue")).boolValue();
    return isTrue ? id("Yes") : id("No");
}

ClassDescription BOOLToColorTransformer::describeClass() {
    return transformerDescription<BOOLToColorTransformer>("BOOLToColorTransformer");
}

Class BOOLToColorTransformer::transformedValueClass() { return classOf<NSColor>(); }

bool BOOLToColorTransformer::allowsReverseTransformation() { return false; }

id BOOLToColorTransformer::Body::transformedValue(id const& value) const {
    bool const isTrue = as<NSNumber>(value.performSelector_("boolValue")).boolValue();
    return isTrue ? NSColor::blackColor() : NSColor::darkGrayColor();
}

ClassDescription InTrashTransformer::describeClass() {
    return transformerDescription<InTrashTransformer>("InTrashTransformer");
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
