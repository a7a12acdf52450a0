#pragma once

#include "platform/foundation/predicates/PredicateTree.h"
#include "platform/foundation/text/Format.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

// The tree of a predicate's text. The arguments take their places as values, after the text has been cut into words:
// what stands in them is never read as language. Anything else than one whole predicate raises
// NSInvalidArgumentException.
PredicateNode parsePredicate(NSString const& format, std::span<FormatArgument const> arguments);

// Thrown and caught within the parser, which knows the place.
struct PredicateArgumentMismatch {
    std::string what;
};

// The argument of a %K.
NSString keyPathArgument(FormatArgument const& argument);
// The argument of any other conversion as an object; nil is a value.
id valueArgument(FormatArgument const& argument, char16_t conversion);

}
