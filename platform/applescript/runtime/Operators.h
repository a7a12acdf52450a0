#pragma once

#include "platform/applescript/language/Operation.h"
#include "platform/applescript/runtime/TextContext.h"

namespace mac::applescript {

// The operators on values; references are followed where an operator needs what they refer to.

// + - * / div mod ^, on numbers and dates.
Value arithmetic(Operation operation, Value const& left, Value const& right, TextContext const& context);
Value negated(Value const& operand, TextContext const& context);
Value concatenated(Value const& left, Value const& right, TextContext const& context);

// Structure by structure, text as the context considers; a reference is equal to one to the same object.
bool isEqualValue(Value const& left, Value const& right, TextContext const& context);
// < > ≤ ≥
bool isOrdered(Operation operation, Value const& left, Value const& right, TextContext const& context);
// contains, is in, starts with, ends with, and their opposites.
bool isContained(Operation operation, Value const& left, Value const& right, TextContext const& context);

// The result of any operation of two operands that are both evaluated. Throws -2763 where one is Nothing.
Value operationResult(Operation operation, Value const& left, Value const& right, TextContext const& context);

// Lists, records and dates anew, all the way down.
Value deepCopy(Value const& value);

} // namespace mac::applescript
