#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/language/LanguageCodes.h"
#include "platform/applescript/language/Units.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/ScalarText.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/applescript/runtime/SourceForm.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace mac::applescript {

bool isTextClass(Code type) {
    return type == codes::TextType || type == codes::StringType || type == codes::UnicodeTextType;
}

namespace {

// What text that has no digits at all counts as.
bool isBlank(std::u16string_view text) { return text.find_first_not_of(u" \t\r\n\u00A0") == std::u16string_view::npos; }

bool fitsInteger(double number) { return number >= LeastInteger && number <= MostInteger; }

std::optional<Value> numberOf(Value const& value) {
    switch (value.kind()) {
    case ValueKind::Integer:
    case ValueKind::Real:
        return value;
    case ValueKind::Boolean:
        return Value::integer(value.asBoolean() ? 1 : 0);
    case ValueKind::Text: {
        if (isBlank(value.units())) return Value::integer(0);
        std::optional<NumberInText> const found = numberInText(value.units());
        if (!found) return {};
        return found->looksLikeInteger ? Value::number(found->number) : Value::real(found->number);
    }
    default:
        return {};
    }
}

std::optional<Value> integerOf(Value const& value) {
    if (value.is(ValueKind::Type)) {
        auto const* const month = std::ranges::find(Months, value.asCode());
        if (month != Months.end()) return Value::integer(static_cast<std::int32_t>(month - Months.begin()) + 1);
        auto const* const weekday = std::ranges::find(Weekdays, value.asCode());
        if (weekday != Weekdays.end()) return Value::integer(static_cast<std::int32_t>(weekday - Weekdays.begin()) + 1);
        return {};
    }
    if (value.is(ValueKind::Text) && !isBlank(value.units())) {
        std::optional<NumberInText> const found = numberInText(value.units());
        if (!found || !found->looksLikeInteger) return {};
    }
    std::optional<Value> const number = numberOf(value);
    if (!number || number->is(ValueKind::Integer)) return number;
    double const rounded = roundedToEven(number->asReal());
    if (!fitsInteger(rounded)) return {};
    return Value::integer(static_cast<std::int32_t>(rounded));
}

std::optional<Value> booleanOf(Value const& value, TextContext const& context) {
    if (value.is(ValueKind::Boolean)) return value;
    if (value.is(ValueKind::Integer) && (value.asInteger() == 0 || value.asInteger() == 1))
        return Value::boolean(value.asInteger() == 1);
    if (value.is(ValueKind::Text)) return Value::boolean(foldedName(requireText(value, context)) == u"true");
    return {};
}

std::optional<Value> textOfList(Value const& value, TextContext const& context) {
    requireStackRoom();
    std::u16string text;
    bool isFirst = true;
    for (Value const& element : value.items()) {
        std::optional<Value> const item = coerced(element, codes::TextType, context);
        if (!item) return {};
        if (!std::exchange(isFirst, false)) text += context.delimiters.front();
        text += item->units();
        if (text.size() > context.mostUnits) throw plainError(errors::ValueTooLarge);
    }
    return Value::text(std::move(text));
}

std::optional<Value> textOf(Value const& value, TextContext const& context) {
    switch (value.kind()) {
    case ValueKind::Text:
        return value;
    case ValueKind::Boolean:
    case ValueKind::Integer:
    case ValueKind::Real:
    case ValueKind::Type:
    case ValueKind::Constant:
        return Value::text(humanForm(value));
    case ValueKind::Date:
        return Value::text(fullDateText(value.seconds()));
    case ValueKind::File:
        return Value::text(filePathText(value));
    case ValueKind::List:
        return textOfList(value, context);
    case ValueKind::Application:
        return Value::text(value.application().name);
    case ValueKind::Data:
        if (value.data().type != codes::ISODateType) return {};
        return Value::text(std::u16string(value.data().bytes.begin(), value.data().bytes.end()));
    default:
        return {};
    }
}

// «class isot» is text of ASCII characters, as data.
std::optional<Value> isoDateOf(Value const& value) {
    std::u16string text;
    if (value.is(ValueKind::Date))
        text = isoDateText(value.seconds());
    else if (value.is(ValueKind::Text) && dateInISOText(value.units()))
        text = value.units();
    else
        return {};
    return makeObject<DataObject>(ValueKind::Data, codes::ISODateType, std::string(text.begin(), text.end()));
}

std::optional<Value> dateOf(Value const& value) {
    bool const isISODate = value.is(ValueKind::Data) && value.data().type == codes::ISODateType;
    if (!isISODate) return {};
    std::string const& bytes = value.data().bytes;
    std::optional<std::int64_t> const seconds = dateInISOText(std::u16string(bytes.begin(), bytes.end()));
    return seconds ? std::optional(Value::date(*seconds)) : std::nullopt;
}

std::optional<Value> fileOf(Value const& value, Code type, TextContext const& context) {
    bool const isAlias = type == codes::AliasType;
    if (!value.is(ValueKind::File) && !value.is(ValueKind::Text)) return {};
    std::u16string path = requirePath(value, context);
    if (isAlias && !existsAt(path)) throw fileNotFound(value);
    FileObject::Kind const kind = isAlias               ? FileObject::Kind::Alias
                                  : type == codes::File ? FileObject::Kind::File
                                                        : FileObject::Kind::PosixFile;
    return makeObject<FileObject>(ValueKind::File, kind, std::move(path));
}

std::optional<Value> listOf(Value const& value) {
    if (value.is(ValueKind::List)) return value;
    if (!value.is(ValueKind::Record)) return Value::list({value});
    std::vector<Value> items;
    for (auto const& [key, field] : value.fields())
        items.push_back(field);
    return Value::list(std::move(items));
}

std::optional<Value> aliasListOf(Value const& value, TextContext const& context) {
    std::vector<Value> aliases;
    // Held as long as its items are gone through: for what is no list it is a new one.
    std::optional<Value> const whole = listOf(value);
    for (Value const& item : whole->items()) {
        std::optional<Value> const alias = coerced(item, codes::AliasType, context);
        if (!alias) return {};
        aliases.push_back(*alias);
    }
    return Value::list(std::move(aliases));
}

// The number of a value with a unit; nullopt for another value, and for bytes that are no number.
std::optional<double> measure(Value const& value) {
    bool const isMeasure = value.is(ValueKind::Data) && unitOf(value.data().type) != nullptr;
    if (!isMeasure || value.data().bytes.size() != sizeof(double)) return {};
    double number = 0;
    std::memcpy(&number, value.data().bytes.data(), sizeof number);
    return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

// A number with the unit, or what has one in another unit.
std::optional<Value> withUnit(Value const& value, Unit const& unit) {
    std::optional<double> number = measure(value);
    if (number)
        number = converted(*number, *unitOf(value.data().type), unit);
    else if (std::optional<Value> const plain = numberOf(value))
        number = plain->asNumber();
    if (!number) return {};
    std::string bytes(sizeof(double), '\0');
    std::memcpy(bytes.data(), &*number, sizeof(double));
    return makeObject<DataObject>(ValueKind::Data, unit.code, std::move(bytes));
}

std::optional<Value> coercedItself(Value const& value, Code type, TextContext const& context) {
    if (Unit const* const unit = unitOf(type)) return withUnit(value, *unit);
    bool const isPlain =
        isTextClass(type) || type == codes::IntegerType || type == codes::NumberType || type == codes::RealType;
    std::optional<double> const measured = isPlain ? measure(value) : std::nullopt;
    if (measured) return coercedItself(Value::real(*measured), type, context);
    if (type == codes::ListType) return listOf(value);
    if (type == codes::AliasListType) return aliasListOf(value, context);
    if (type == codes::AnyType || isOfClass(value, type)) return value;
    if (isTextClass(type)) return textOf(value, context);
    switch (type) {
    case codes::IntegerType:
        return integerOf(value);
    case codes::NumberType:
        return numberOf(value);
    case codes::RealType: {
        std::optional<Value> const number = numberOf(value);
        return number ? Value::real(number->asNumber()) : number;
    }
    case codes::BooleanType:
        return booleanOf(value, context);
    case codes::ISODateType:
        return isoDateOf(value);
    case codes::DateType:
        return dateOf(value);
    case codes::AliasType:
    case codes::FileURLType:
    case codes::POSIXFileType:
    case codes::File:
        return fileOf(value, type, context);
    default:
        return {};
    }
}

} // namespace

std::optional<Value> coerced(Value const& unresolved, Code type, TextContext const& context) {
    requireStackRoom();
    if (type == codes::ReferenceType && unresolved.is(ValueKind::Specifier)) return unresolved;
    if (isInApplication(unresolved)) return getInApplication(unresolved, type, context);
    Value const value = resolved(unresolved, context);
    // What a reference of the script's own leads to may lie in an application.
    if (isInApplication(value)) return getInApplication(value, type, context);
    std::optional<Value> const direct = coercedItself(value, type, context);
    bool const isSingle = !direct && value.is(ValueKind::List) && value.items().size() == 1;
    return isSingle ? coerced(value.items().front(), type, context) : direct;
}

Value requireType(Value const& value, Code type, TextContext const& context) {
    std::optional<Value> made = coerced(value, type, context);
    if (!made) throw cannotMake(value, type);
    return *std::move(made);
}

Value requireOneOf(Value const& value, std::span<Code const> types, TextContext const& context) {
    if (types.size() == 1) return requireType(value, types.front(), context);
    Value const target = resolved(value, context);
    for (Code const type : types)
        if (isOfClass(target, type)) return target;
    for (Code const type : types)
        if (std::optional<Value> made = coerced(target, type, context)) return *std::move(made);
    throw cannotMake(target, types.front());
}

Value requireNumber(Value const& value, TextContext const& context) {
    if (value.isNumber()) return value;
    return requireType(value, codes::NumberType, context);
}

double requireReal(Value const& value, TextContext const& context) { return requireNumber(value, context).asNumber(); }

std::int32_t requireInteger(Value const& value, TextContext const& context) {
    if (value.is(ValueKind::Integer)) return value.asInteger();
    return requireType(value, codes::IntegerType, context).asInteger();
}

std::u16string requireText(Value const& value, TextContext const& context) {
    if (value.is(ValueKind::Text)) return value.units();
    return requireType(value, codes::TextType, context).units();
}

bool requireBoolean(Value const& value, TextContext const& context) {
    if (value.is(ValueKind::Boolean)) return value.asBoolean();
    return requireType(value, codes::BooleanType, context).asBoolean();
}

std::u16string requirePath(Value const& value, TextContext const& context) {
    Value const file = resolved(value, context);
    if (file.is(ValueKind::File)) return file.file().path;
    return posixPathOf(requireText(file, context));
}

Code classOfValue(Value const& value) {
    switch (value.kind()) {
    case ValueKind::Boolean:
        return codes::BooleanType;
    case ValueKind::Integer:
        return codes::IntegerType;
    case ValueKind::Real:
        return codes::RealType;
    case ValueKind::Constant:
        return codes::ConstantType;
    case ValueKind::AppleScript:
    case ValueKind::Script:
        return codes::ScriptType;
    case ValueKind::CurrentApplication:
    case ValueKind::Application:
        return codes::Application;
    case ValueKind::Text:
        return codes::TextType;
    case ValueKind::List:
        return codes::ListType;
    case ValueKind::Record:
        return codes::RecordType;
    case ValueKind::Date:
        return codes::DateType;
    case ValueKind::File:
        return value.file().kind == FileObject::Kind::Alias  ? codes::AliasType
               : value.file().kind == FileObject::Kind::File ? codes::File
                                                             : codes::FileURLType;
    case ValueKind::Handler:
        return codes::HandlerType;
    case ValueKind::Data:
        return value.data().type;
    case ValueKind::Specifier:
        return codes::ReferenceType;
    default:
        return codes::ClassType;
    }
}

bool isOfClass(Value const& value, Code type) {
    if (isTextClass(type)) return value.is(ValueKind::Text);
    if (type == codes::NumberType) return value.isNumber();
    if (type == codes::Item) return true;
    if (type == codes::POSIXFileType) return classOfValue(value) == codes::FileURLType;
    return classOfValue(value) == type;
}

} // namespace mac::applescript
