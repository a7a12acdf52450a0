#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/Operators.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/ScriptObject.h"
#include "platform/applescript/runtime/TextComparison.h"
#include <algorithm>

namespace mac::applescript {

namespace {

// All names of text are one class.
Code canonicalClass(Code type) {
    return type == codes::StringType || type == codes::UnicodeTextType ? codes::TextType : type;
}

bool areEqualItems(ValueList const& left, ValueList const& right, TextContext const& context) {
    if (&left == &right) return true;
    if (left.size() != right.size()) return false;
    return std::ranges::equal(left, right,
                              [&](Value const& one, Value const& other) { return isEqualValue(one, other, context); });
}

// Each field of the part is in the whole.
bool containsFields(Value const& whole, Value const& part, TextContext const& context) {
    return std::ranges::all_of(part.fields(), [&](auto const& field) {
        return std::ranges::any_of(whole.fields(), [&](auto const& other) {
            return isSameName(other.first, field.first) && isEqualValue(other.second, field.second, context);
        });
    });
}

bool isEqualSpecifier(SpecifierObject const& left, SpecifierObject const& right, TextContext const& context) {
    if (left.form != right.form || left.want != right.want) return false;
    bool const hasSameProperty = left.property == right.property ||
                                 (left.property && right.property && isSameName(left.property, right.property));
    return hasSameProperty && isEqualValue(left.from, right.from, context) &&
           isEqualValue(left.to, right.to, context) && isEqualValue(left.container, right.container, context);
}

bool isEqualObject(Value const& left, Value const& right, TextContext const& context) {
    switch (left.kind()) {
    case ValueKind::Text:
        return isEqualText(left.units(), right.units(), context.considered);
    case ValueKind::List:
        return areEqualItems(left.items(), right.items(), context);
    case ValueKind::Record:
        return left.fields().size() == right.fields().size() && containsFields(left, right, context);
    case ValueKind::Date:
        return left.seconds() == right.seconds();
    case ValueKind::File:
        return left.file().path == right.file().path;
    case ValueKind::Application:
        return left.application().byIdentifier == right.application().byIdentifier &&
               foldedName(left.application().name) == foldedName(right.application().name);
    case ValueKind::Data:
        return left.data().type == right.data().type && left.data().bytes == right.data().bytes;
    case ValueKind::Specifier:
        return isEqualSpecifier(left.specifier(), right.specifier(), context);
    case ValueKind::Handler:
        return left.handler().definition == right.handler().definition &&
               left.handler().owner.object() == right.handler().owner.object();
    default:
        return left.object() == right.object();
    }
}

Value unwrapped(Value const& value, TextContext const& context) {
    Value const whole = resolved(value, context);
    bool const isSingle = whole.is(ValueKind::List) && whole.items().size() == 1;
    return isSingle ? resolved(whole.items().front(), context) : whole;
}

bool containsItems(ValueList const& whole, ValueList const& part, TextContext const& context) {
    auto const found =
        std::search(whole.begin(), whole.end(), part.begin(), part.end(),
                    [&](Value const& one, Value const& other) { return isEqualValue(one, other, context); });
    return part.empty() || found != whole.end();
}

bool containsValue(Operation operation, Value const& whole, Value const& part, TextContext const& context) {
    if (whole.is(ValueKind::Record)) {
        if (operation != Operation::Contains) throw cannotMake(whole, codes::ListType);
        if (!part.is(ValueKind::Record)) throw cannotMake(part, codes::RecordType);
        return containsFields(whole, part, context);
    }
    if (whole.is(ValueKind::List)) {
        ValueList const& items = whole.items();
        ValueList const sought = part.is(ValueKind::List) ? part.items() : ValueList({part});
        if (operation == Operation::Contains) return containsItems(items, sought, context);
        if (sought.size() > items.size()) return false;
        auto const size = static_cast<std::ptrdiff_t>(sought.size());
        auto const first = operation == Operation::StartsWith ? items.begin() : items.end() - size;
        return std::equal(sought.begin(), sought.end(), first,
                          [&](Value const& one, Value const& other) { return isEqualValue(one, other, context); });
    }
    std::u16string const text = requireText(whole, context);
    std::u16string const sought = requireText(part, context);
    if (operation == Operation::StartsWith) return beginsWithText(text, sought, context.considered);
    if (operation == Operation::EndsWith) return endsWithText(text, sought, context.considered);
    return containsText(text, sought, context.considered);
}

int orderOf(Value const& left, Value const& right, TextContext const& context) {
    if (left.is(ValueKind::Text)) return compareText(left.units(), requireText(right, context), context.considered);
    if (left.is(ValueKind::Date)) {
        if (!right.is(ValueKind::Date)) throw cannotMake(right, codes::DateType);
        return left.seconds() < right.seconds() ? -1 : left.seconds() > right.seconds() ? 1 : 0;
    }
    double const first = requireReal(left, context);
    double const second = requireReal(right, context);
    return first < second ? -1 : first > second ? 1 : 0;
}

} // namespace

bool isEqualValue(Value const& left, Value const& right, TextContext const& context) {
    requireStackRoom();
    if (left.isNumber() && right.isNumber()) return left.asNumber() == right.asNumber();
    if (left.kind() != right.kind()) return false;
    switch (left.kind()) {
    case ValueKind::Boolean:
        return left.asBoolean() == right.asBoolean();
    case ValueKind::Type:
        return canonicalClass(left.asCode()) == canonicalClass(right.asCode());
    case ValueKind::Constant:
        return left.asCode() == right.asCode();
    case ValueKind::Nothing:
    case ValueKind::AppleScript:
    case ValueKind::CurrentApplication:
        return true;
    default:
        return isEqualObject(left, right, context);
    }
}

bool isOrdered(Operation operation, Value const& unresolvedLeft, Value const& unresolvedRight,
               TextContext const& context) {
    Value const left = unwrapped(unresolvedLeft, context);
    Value const right = unwrapped(unresolvedRight, context);
    bool const mayCompare = left.isNumber() || left.is(ValueKind::Text) || left.is(ValueKind::Date);
    if (!mayCompare) throw cannotMake(unresolvedLeft, codes::NumberType);
    int const order = orderOf(left, right, context);
    switch (operation) {
    case Operation::Less:
        return order < 0;
    case Operation::Greater:
        return order > 0;
    case Operation::AtMost:
        return order <= 0;
    default:
        return order >= 0;
    }
}

bool isContained(Operation operation, Value const& unresolvedLeft, Value const& unresolvedRight,
                 TextContext const& context) {
    Value const left = resolved(unresolvedLeft, context);
    Value const right = resolved(unresolvedRight, context);
    switch (operation) {
    case Operation::IsIn:
        return containsValue(Operation::Contains, right, left, context);
    case Operation::IsNotIn:
        return !containsValue(Operation::Contains, right, left, context);
    case Operation::DoesNotContain:
        return !containsValue(Operation::Contains, left, right, context);
    default:
        return containsValue(operation, left, right, context);
    }
}

} // namespace mac::applescript
