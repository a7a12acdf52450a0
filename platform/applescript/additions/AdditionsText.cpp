#include "platform/applescript/additions/AdditionKeys.h"
#include "platform/applescript/additions/AdditionParameters.h"
#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/ScalarText.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/applescript/runtime/TextComparison.h"
#include "platform/applescript/runtime/TextElements.h"
#include "platform/foundation/text/Encodings.h"
#include <algorithm>
#include <cmath>
#include <random>

namespace mac::applescript::additions {

namespace {

std::mt19937_64& generator() {
    static std::mt19937_64 numbers{std::random_device{}()};
    return numbers;
}

Value const& required(CommandArguments const& arguments, Code code, std::u16string_view label,
                      std::u16string_view command) {
    Value const* const found = arguments.find(code);
    if (!found) throw missingParameter(label, command);
    return *found;
}

double roundedAsIn(Code way, double number) {
    switch (way) {
    case constants::Up:
        return std::ceil(number);
    case constants::Down:
        return std::floor(number);
    case constants::TowardZero:
        return std::trunc(number);
    case constants::AsTaughtInSchool:
        return std::round(number);
    default:
        return roundedToEven(number);
    }
}

} // namespace

// The place of the first character; 0 for none.
Value offset(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    std::u16string const sought = requireText(required(arguments, parameters::OfText, u"of", u"offset"), context);
    std::u16string const text = requireText(required(arguments, parameters::InText, u"in", u"offset"), context);
    std::optional<TextMatch> const match = findText(text, sought, 0, context.considered);
    if (!match) return Value::integer(0);
    std::u16string_view const before = std::u16string_view(text).substr(0, match->start);
    return Value::number(static_cast<double>(textElements(before, codeOf("cha "), context).size()) + 1);
}

Value round(Evaluator& evaluator, CommandArguments const& arguments) {
    double const number = requireReal(arguments.direct, evaluator.context());
    Value const* const way = arguments.find(parameters::Rounding);
    return Value::number(
        roundedAsIn(way && way->is(ValueKind::Constant) ? way->asCode() : constants::ToNearest, number));
}

// Whole numbers between whole bounds, else reals; between 0 and 1 without bounds.
Value randomNumber(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    if (Value const* const seed = arguments.find(parameters::WithSeed))
        generator().seed(static_cast<std::uint64_t>(requireInteger(*seed, context)));
    Value const* const from = arguments.find(parameters::From);
    Value const* const to = arguments.find(codes::ToParameter);
    Value const low = from ? requireNumber(*from, context) : Value::integer(0);
    Value high = Value::integer(1);
    if (to)
        high = requireNumber(*to, context);
    else if (!arguments.direct.isNothing())
        high = requireNumber(arguments.direct, context);
    else if (from)
        high = Value::integer(100);
    bool const hasBounds = from || to || !arguments.direct.isNothing();
    double const least = std::min(low.asNumber(), high.asNumber());
    double const most = std::max(low.asNumber(), high.asNumber());
    if (hasBounds && low.is(ValueKind::Integer) && high.is(ValueKind::Integer))
        return Value::integer(std::uniform_int_distribution<std::int32_t>(
            static_cast<std::int32_t>(least), static_cast<std::int32_t>(most))(generator()));
    double const part = std::uniform_real_distribution<double>(0, 1)(generator());
    return Value::real(least + part * (most - least));
}

// The characters of Mac OS Roman.
Value asciiCharacter(Evaluator& evaluator, CommandArguments const& arguments) {
    std::int32_t const number = requireInteger(arguments.direct, evaluator.context());
    if (number < 0 || number > 255) throw plainError(errors::Parameter);
    std::string const byte(1, static_cast<char>(number));
    std::optional<std::u16string> const text = unitsFromBytes(byte, NSMacOSRomanStringEncoding);
    if (!text) throw plainError(errors::Parameter);
    return Value::text(*text);
}

Value asciiNumber(Evaluator& evaluator, CommandArguments const& arguments) {
    std::u16string const text = requireText(arguments.direct, evaluator.context());
    if (text.empty()) throw plainError(errors::Parameter);
    std::optional<std::string> const bytes = bytesFromUnits(text.substr(0, 1), NSMacOSRomanStringEncoding);
    if (!bytes || bytes->empty()) throw plainError(errors::Parameter);
    return Value::integer(static_cast<unsigned char>(bytes->front()));
}

// A key without a translation is its own.
Value localizedString(Evaluator& evaluator, CommandArguments const& arguments) {
    return Value::text(requireText(arguments.direct, evaluator.context()));
}

Value log(Evaluator& evaluator, CommandArguments const& arguments) {
    Value const shown = resolved(arguments.direct, evaluator.context());
    std::u16string const text = shown.is(ValueKind::Text) ? shown.units() : sourceForm(shown);
    if (evaluator.options().log) evaluator.options().log(u"(*" + text + u"*)");
    return {};
}

} // namespace mac::applescript::additions
