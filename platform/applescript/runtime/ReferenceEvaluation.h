#pragma once

#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/Evaluator.h"

namespace mac::applescript {

// Parts of something: properties, elements and what a filter leaves.

Value evaluateProperty(Evaluator& evaluator, PropertyReference const& property);
Value evaluateElement(Evaluator& evaluator, ElementReference const& element);
Value evaluateFilter(Evaluator& evaluator, FilterReference const& filter);

// The value of a part, or of what lies in an application the specifier, which is still to be asked for.
struct Part {
    Value value{};
    bool isUnasked{false};
};
Part propertyPart(Evaluator& evaluator, PropertyReference const& property);
Part elementPart(Evaluator& evaluator, ElementReference const& element);
Part filterPart(Evaluator& evaluator, FilterReference const& filter);
// Any other expression is its own value. Parentheses count as another expression.
Part partOf(Evaluator& evaluator, Expression const& expression);

// The value of the expression, but the specifier of what lies in an application. Throws -2763 for Nothing.
Value unaskedValue(Evaluator& evaluator, Expression const& expression);
// What a part lies in, in an application; nullopt where it lies in none. An element if `property` is null.
std::optional<Value> placeInApplication(Evaluator& evaluator, PropertyReference const* property,
                                        Value const& container);
// A specifier of what the expression means. Throws -1700 where it means no object.
Value referenceTo(Evaluator& evaluator, Expression const& expression);
// How the element is chosen, with its index, name, identifier or range evaluated.
ElementSelector selectorOf(Evaluator& evaluator, ElementReference const& element);

} // namespace mac::applescript
