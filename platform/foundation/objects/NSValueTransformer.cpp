#include "platform/foundation/objects/NSValueTransformer.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"

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
        .methods = {method<&NSValueTransformer::transformedValue_>("transformedValue:"),
                    method<&NSValueTransformer::reverseTransformedValue_>("reverseTransformedValue:")},
        .classMethods = {method<&NSValueTransformer::transformedValueClass>("transformedValueClass"),
                         method<&NSValueTransformer::allowsReverseTransformation>("allowsReverseTransformation")},
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

id NSValueTransformer::reverseTransformedValue_(id const& value) const {
    if (*this == nil) return nil;
    if (!as<NSNumber>(class_().performClassSelector_("allowsReverseTransformation")).boolValue())
        throw NSInvalidArgumentException(std::string(class_().name()) + " does not transform back");
    return bodyOf(*this)->reverseTransformedValue(value);
}

Class NSValueTransformer::transformedValueClass() { return classOf<NSObject>(); }

bool NSValueTransformer::allowsReverseTransformation() { return true; }

} // namespace mac
