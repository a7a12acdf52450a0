#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/StringBody.h"

namespace mac {

ClassDescription NSMutableString::describeClass() {
    ClassDescription description{.name = "NSMutableString", .superclass = classOf<NSString>()};
    description.makeBody = makeEmptyBody<NSMutableString>;
    description.methods = {
        method<&NSMutableString::appendString_>("appendString:"),
        method<&NSMutableString::setString_>("setString:"),
    };
    return description;
}

NSMutableString NSMutableString::string() { return adopt<NSMutableString>(); }

NSMutableString NSMutableString::stringWithString_(NSString const& other) {
    requireArgument(other, "stringWithString:");
    return adopt<NSMutableString>(std::u16string(other.codeUnits()));
}

void NSMutableString::appendString_(NSString const& other) const {
    if (*this == nil) return;
    requireArgument(other, "appendString:");
    bodyOf(*this)->mutableUnits().append(other.codeUnits());
}

void NSMutableString::setString_(NSString const& other) const {
    if (*this == nil) return;
    requireArgument(other, "setString:");
    bodyOf(*this)->mutableUnits().assign(other.codeUnits());
}

void NSMutableString::insertString_atIndex_(NSString const& other, NSUInteger index) const {
    if (*this == nil) return;
    requireArgument(other, "insertString:atIndex:");
    checkRange({index, 0}, codeUnits().size(), "insertString:atIndex:");
    bodyOf(*this)->mutableUnits().insert(index, other.codeUnits());
}

void NSMutableString::deleteCharactersInRange_(NSRange range) const {
    if (*this == nil) return;
    checkRange(range, codeUnits().size(), "deleteCharactersInRange:");
    bodyOf(*this)->mutableUnits().erase(range.location, range.length);
}

void NSMutableString::replaceCharactersInRange_withString_(NSRange range, NSString const& other) const {
    if (*this == nil) return;
    requireArgument(other, "replaceCharactersInRange:withString:");
    checkRange(range, codeUnits().size(), "replaceCharactersInRange:withString:");
    bodyOf(*this)->mutableUnits().replace(range.location, range.length, other.codeUnits());
}

} // namespace mac
