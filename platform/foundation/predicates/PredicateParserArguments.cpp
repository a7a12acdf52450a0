#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/predicates/PredicateTree.h"

namespace mac {

namespace {

struct ToObject {
    id operator()(id const& object) const { return object; }
    id operator()(FormatArgument::Integer const& integer) const {
        if (!integer.isSigned) return NSNumber::numberWithUnsignedLongLong_(integer.bits);
        return NSNumber::numberWithLongLong_(static_cast<long long>(integer.bits));
    }
    id operator()(double real) const { return NSNumber::numberWithDouble_(real); }
    // Any bytes: a name of the disk arrives as the string that names the same file.
    id operator()(std::string const& text) const { return NSString::stringWithFileSystemRepresentation_(text); }
    id operator()(std::u16string const& text) const { return NSString::stringWithCodeUnits(text); }
    id operator()(void const* pointer) const {
        if (pointer) throw PredicateArgumentMismatch{"the argument is a pointer"};
        return nil;
    }
};

id character(NSNumber const& code) {
    unsigned long long const value = code.unsignedLongLongValue();
    if (value > 0xFFFF) throw PredicateArgumentMismatch{"the argument is no character"};
    auto const unit = static_cast<char16_t>(value);
    return NSString::stringWithCodeUnits({&unit, 1});
}

} // namespace

NSString keyPathArgument(FormatArgument const& argument) {
    NSString const keyPath = as<NSString>(std::visit(ToObject(), argument.value()));
    if (keyPath.length() == 0) throw PredicateArgumentMismatch{"the argument is no key path"};
    return keyPath;
}

id valueArgument(FormatArgument const& argument, char16_t conversion) {
    id const value = std::visit(ToObject(), argument.value());
    if (conversion == u'@') return value;
    if (conversion == u's' || conversion == u'S') {
        if (value != nil && as<NSString>(value) == nil) throw PredicateArgumentMismatch{"the argument is no text"};
        return value;
    }
    NSNumber const number = as<NSNumber>(value);
    if (number == nil) throw PredicateArgumentMismatch{"the argument is no number"};
    return conversion == u'c' || conversion == u'C' ? character(number) : id(number);
}

} // namespace mac
