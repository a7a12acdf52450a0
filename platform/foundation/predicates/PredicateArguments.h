#pragma once

#include "platform/foundation/text/Format.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

// Thrown and caught within the parser, which knows the place.
struct PredicateArgumentMismatch {
    std::string what;
};

// The argument of a %K.
NSString keyPathArgument(FormatArgument const& argument);
// The argument of any other conversion as an object; nil is a value.
id valueArgument(FormatArgument const& argument, char16_t conversion);

}
