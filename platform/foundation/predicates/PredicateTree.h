#pragma once

#include "platform/foundation/predicates/NSPredicate.h"
#include "platform/foundation/text/Format.h"
#include "platform/foundation/text/NSString.h"
#include <memory>
#include <vector>

namespace mac {

class PredicatePattern;

// One side of a comparison.
struct PredicateExpression {
    // A list is an Aggregate only while it holds something that has to be evaluated; a list of constants is a Constant
    // array, in which the null object stands for nil.
    enum class Kind { Constant, Self, KeyPath, Aggregate };

    Kind kind{Kind::Constant};
    id constant{};
    NSString keyPath{};
    // Whether the key path is one key, which needs no cutting.
    bool isPlainKey{false};
    std::vector<PredicateExpression> members{};
};

enum class PredicateOperator {
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Equal,
    NotEqual,
    Matches,
    Like,
    BeginsWith,
    EndsWith,
    Contains,
    In,
    Between,
};

// How a comparison treats a collection on its left: as one value, or member by member.
enum class PredicateModifier { Direct, Any, All, None };

// A predicate as a tree: tests that always or never hold, comparisons, and what joins them. Immutable once parsed,
// shared between threads. Its depth is bounded, so that walking it may recurse.
struct PredicateNode {
    enum class Kind { Always, Never, Not, And, Or, Comparison };

    Kind kind{Kind::Always};
    // The operands: one for Not, two or more for And and Or.
    std::vector<PredicateNode> operands{};

    PredicateExpression left{};
    PredicateExpression right{};
    PredicateOperator operation{PredicateOperator::Equal};
    PredicateModifier modifier{PredicateModifier::Direct};
    // NSCaseInsensitiveSearch and NSDiacriticInsensitiveSearch.
    NSUInteger options{0};
    // The compiled pattern of a Matches with a constant right side, else null.
    std::shared_ptr<PredicatePattern const> pattern{};
};

// The tree of a predicate, for those who want to know what it asks for; valid while the predicate lives, null for nil.
PredicateNode const* predicateTree(NSPredicate const& predicate);

// Whether the object passes.
bool evaluatePredicate(PredicateNode const& node, id const& object);
// Text that parses to an equal tree, as long as the constants are strings, numbers, dates, null and lists of these; any
// other constant stands as its description.
std::u16string formatOfPredicate(PredicateNode const& node);
bool areEqualPredicates(PredicateNode const& first, PredicateNode const& second);

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
