#include "platform/applescript/language/LanguageCodes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/ScriptObject.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/PathSlashes.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <numbers>

namespace mac::applescript {

namespace {

constexpr std::u16string_view LanguageVersion = u"2.8";

Value countValue(std::size_t count) { return Value::number(static_cast<double>(count)); }

// 'text', with each quote as '\''.
std::u16string quotedForm(std::u16string_view text) {
    std::u16string form = u"'";
    for (char16_t const unit : text) {
        if (unit == u'\'')
            form += u"'\\''";
        else
            form += unit;
    }
    return form + u"'";
}

Value identifiersOf(std::u16string_view text) {
    std::vector<Value> points;
    for (std::size_t index = 0; index < text.size();) {
        char32_t const point = codePointAt(text, index);
        points.push_back(Value::integer(static_cast<std::int32_t>(point)));
        index += unitCount(point);
    }
    if (points.size() == 1) return points.front();
    return Value::list(std::move(points));
}

std::optional<Value> propertyOfText(Value const& text, Symbol name, TextContext const& context) {
    switch (name->code) {
    case codes::Length:
        return countValue(*countOf(text, 0, context));
    case codes::QuotedForm:
        return Value::text(quotedForm(text.units()));
    case codes::Identifier:
        return identifiersOf(text.units());
    case codes::POSIXPath:
    case codes::POSIXPathOfFile:
        return Value::text(posixPathOf(text.units()));
    default:
        return {};
    }
}

std::optional<Value> propertyOfList(Value const& list, Symbol name) {
    ValueList const& items = list.items();
    switch (name->code) {
    case codes::Length:
        return countValue(items.size());
    case codes::Reverse:
        return Value::list(std::vector<Value>(items.rbegin(), items.rend()));
    case codes::Rest:
        if (items.empty()) return {};
        return Value::list(std::vector<Value>(items.begin() + 1, items.end()));
    default:
        return {};
    }
}

std::optional<Value> propertyOfDate(Value const& date, Symbol name) {
    std::int64_t const seconds = date.seconds();
    DateParts const parts = partsOfDate(seconds);
    switch (name->code) {
    case codes::Year:
        return Value::number(static_cast<double>(parts.year));
    case codes::MonthType:
        return Value::type(Months.at(static_cast<std::size_t>(parts.month) - 1));
    case codes::Day:
        return Value::integer(parts.day);
    case codes::WeekdayType:
        return Value::type(Weekdays.at(static_cast<std::size_t>(weekdayOfDate(seconds))));
    case codes::Time:
        return Value::integer(parts.hour * 3600 + parts.minute * 60 + parts.second);
    case codes::Hours:
        return Value::integer(parts.hour);
    case codes::Minutes:
        return Value::integer(parts.minute);
    case codes::Seconds:
        return Value::integer(parts.second);
    case codes::DateString:
        return Value::text(longDateText(seconds));
    case codes::ShortDateString:
        return Value::text(shortDateText(seconds));
    case codes::TimeString:
        return Value::text(timeText(seconds));
    default:
        return {};
    }
}

bool setPropertyOfDate(Value const& date, Symbol name, Value const& value, TextContext const& context) {
    DateParts parts = partsOfDate(date.seconds());
    // Far beyond what anybody means, so that nothing overflows.
    std::int32_t const number = requireInteger(value, context);
    switch (name->code) {
    case codes::Year:
        parts.year = number;
        break;
    case codes::MonthType:
        parts.month = number;
        break;
    case codes::Day:
        parts.day = number;
        break;
    case codes::Hours:
        parts.hour = number;
        break;
    case codes::Minutes:
        parts.minute = number;
        break;
    case codes::Seconds:
        parts.second = number;
        break;
    case codes::Time:
        parts.hour = parts.minute = 0;
        parts.second = number;
        break;
    default:
        return false;
    }
    date.seconds() = dateOfParts(parts);
    return true;
}

std::optional<Value> propertyOfScript(Value const& value, Symbol name, TextContext const& context) {
    // A chain of parents that closes is a script's mistake; it has an end here.
    constexpr int longestChain = 1000;
    Value current = value;
    for (int step = 0; step < longestChain && current.is(ValueKind::Script); ++step) {
        ScriptObject& script = current.script();
        if (Value const* const property = script.propertyNamed(name)) return *property;
        if (name->code == codes::Parent) return script.parent().isNothing() ? Value::appleScript() : script.parent();
        Value const handler = name->code == 0 ? script.handlerValue(name) : Value();
        if (!handler.isNothing()) return handler;
        if (name->code == codes::Name && script.definition().name)
            return Value::text(script.definition().name->spelling);
        Value const next = script.parent();
        current = next;
    }
    if (current.isNothing()) return propertyOfAppleScript(name, context);
    return current.is(ValueKind::Script) ? std::nullopt : propertyOf(current, name, context);
}

std::optional<Value> propertyOfFile(Value const& file, Symbol name) {
    std::u16string path = file.file().path;
    switch (name->code) {
    case codes::POSIXPath:
    case codes::POSIXPathOfFile:
        if (file.file().kind == FileObject::Kind::Alias && isFolderAt(path) && !path.ends_with(u'/')) path += u'/';
        return Value::text(std::move(path));
    case codes::Name: {
        std::u16string_view const plain = withoutTrailingSlashes(path);
        std::u16string component(plain.substr(plain.rfind(u'/') + 1));
        std::ranges::replace(component, u':', u'/');
        return Value::text(std::move(component));
    }
    default:
        return {};
    }
}

// The program that the script runs in.
std::optional<Value> propertyOfCurrentApplication(Symbol name) {
    auto const ofBundle = [](char const* key) -> std::optional<Value> {
        NSString const text =
            as<NSString>(NSBundle::mainBundle().objectForInfoDictionaryKey_(NSString::stringWithUTF8String_(key)));
        if (text == nil) return {};
        return Value::text(std::u16string(text.codeUnits()));
    };
    switch (name->code) {
    case codes::Name: {
        std::optional<Value> const named = ofBundle("CFBundleName");
        return named ? *named : Value::text(unitsFromFileSystemBytes(program_invocation_short_name));
    }
    case codes::Version:
        return ofBundle("CFBundleShortVersionString");
    case codes::Identifier:
        return ofBundle("CFBundleIdentifier");
    case codes::Running:
        return Value::boolean(true);
    default:
        return {};
    }
}

} // namespace

std::optional<Value> propertyOfAppleScript(Symbol name, TextContext const& context) {
    switch (name->code) {
    case codes::Pi:
        return Value::real(std::numbers::pi);
    case codes::Space:
        return Value::text(u" ");
    case codes::Tab:
        return Value::text(u"\t");
    case codes::Linefeed:
        return Value::text(u"\n");
    case codes::Quote:
        return Value::text(u"\"");
    case codes::Minutes:
        return Value::integer(60);
    case codes::Hours:
        return Value::integer(3600);
    case codes::Days:
        return Value::integer(86400);
    case codes::Weeks:
        return Value::integer(604800);
    case codes::TextItemDelimiters:
        return context.delimitersValue;
    case codes::Version:
        return Value::text(std::u16string(LanguageVersion));
    case codes::Name:
        return Value::text(u"AppleScript");
    default:
        return {};
    }
}

std::optional<Value> propertyOf(Value const& container, Symbol name, TextContext const& context) {
    if (container.is(ValueKind::Record)) {
        for (auto const& [key, value] : container.fields())
            if (isSameName(key, name)) return value;
    }
    bool const isScript = container.is(ValueKind::Script);
    if (isScript && container.script().propertyNamed(name)) return *container.script().propertyNamed(name);
    if (name->code == codes::Class) return Value::type(classOfValue(container));
    if (name->code == codes::Contents && !isScript) return container;
    switch (container.kind()) {
    case ValueKind::Text:
        if (std::optional<Value> const found = propertyOfText(container, name, context)) return found;
        // `text of x` is the text itself.
        if (name->code == codes::TextType || name->code == codes::StringType || name->code == codes::UnicodeTextType)
            return container;
        return {};
    case ValueKind::List:
        return propertyOfList(container, name);
    case ValueKind::Record:
        if (name->code == codes::Length) return countValue(container.fields().size());
        return {};
    case ValueKind::Date:
        return propertyOfDate(container, name);
    case ValueKind::Script:
        return propertyOfScript(container, name, context);
    case ValueKind::AppleScript:
        return propertyOfAppleScript(name, context);
    case ValueKind::CurrentApplication:
        return propertyOfCurrentApplication(name);
    case ValueKind::File:
        return propertyOfFile(container, name);
    case ValueKind::Application:
        if (name->code == codes::Name) return Value::text(container.application().name);
        return {};
    default:
        return {};
    }
}

void setTextItemDelimiters(Value const& value, TextContext& context) {
    Value const set = resolved(value, context);
    std::vector<std::u16string> delimiters;
    if (set.is(ValueKind::List)) {
        for (Value const& item : set.items())
            delimiters.push_back(requireText(item, context));
    } else if (!set.isMissing()) {
        delimiters.push_back(requireText(set, context));
    }
    if (delimiters.empty()) delimiters.emplace_back();
    context.delimiters = std::move(delimiters);
    context.delimitersValue = set;
}

namespace {

// Its own or, where it has none, that of the nearest ancestor that does.
bool setPropertyOfScript(Value const& script, Symbol name, Value const& value) {
    constexpr int longestChain = 1000;
    Value current = script;
    for (int step = 0; step < longestChain && current.is(ValueKind::Script); ++step) {
        if (Value* const property = current.script().propertyNamed(name)) {
            *property = value;
            return true;
        }
        Value const next = current.script().parent();
        current = next;
    }
    return false;
}

} // namespace

bool setPropertyOf(Value const& container, Symbol name, Value const& value, TextContext& context) {
    switch (container.kind()) {
    case ValueKind::Record:
        for (auto& [key, field] : container.fields()) {
            if (!isSameName(key, name)) continue;
            field = value;
            return true;
        }
        return false;
    case ValueKind::Date:
        return setPropertyOfDate(container, name, value, context);
    case ValueKind::AppleScript:
        if (name->code != codes::TextItemDelimiters) return false;
        setTextItemDelimiters(value, context);
        return true;
    case ValueKind::Script:
        return setPropertyOfScript(container, name, value) || setPropertyOf(Value::appleScript(), name, value, context);
    default:
        return false;
    }
}

} // namespace mac::applescript
