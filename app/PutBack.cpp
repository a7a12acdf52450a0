#include "app/PutBack.h"
#include "app/AppController.h"
#include "app/Undo.h"
#include "platform/foundation/Beep.h"
#include "platform/foundation/Method.h"
#include "platform/foundation/NSNumber.h"

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
    if (!path) return NSNumber::numberWithBool_(NO);
    auto const place = placeInTrash(*path);
    return NSNumber::numberWithBool_(BOOL(place.hasValue() && place.value().has_value()));
}

void AppController::putBackAction_(id const&) const {
    NSString const path = onlySelectedPath();
    if (path == nil) return;
    Result<std::string, TrashProblem> const back = putBackItemAtPath(path.fileSystemRepresentation().value_or(""));
    if (!back.hasValue()) {
        NSBeep();
        return tell(*this, NSString::stringWithUTF8String_(back.problem().text.c_str()), Offer::Nothing);
    }
    isOnHarddiskPaths().removeObject_(path);
    isOnHarddiskPaths().addObject_(NSString::stringWithFileSystemRepresentation_(back.value()));
    forgetTrashing(*this, path);
    reSync();
    tell(*this, "Put back.", Offer::Nothing);
}

} // namespace framekeeper
