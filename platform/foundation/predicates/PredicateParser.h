#pragma once

#include "platform/foundation/predicates/PredicateTree.h"

namespace mac {

// The tree of a predicate's text. The arguments take their places as values, after the text has been cut into words:
// what stands in them is never read as language. Anything else than one whole predicate raises
// NSInvalidArgumentException.
PredicateNode parsePredicate(NSString const& format, std::span<FormatArgument const> arguments);

}
