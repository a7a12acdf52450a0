#include "platform/applescript/additions/AdditionKeys.h"
#include "platform/applescript/additions/AdditionParameters.h"
#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/foundation/running/Beep.h"
#include <algorithm>

namespace mac::applescript::additions {

namespace {

// A button by its name, or by its number counted from 1.
std::optional<std::size_t> buttonAt(CommandArguments const& arguments, Code code,
                                    std::vector<std::u16string> const& buttons, TextContext const& context) {
    Value const* const given = arguments.find(code);
    if (!given) return {};
    Value const button = resolved(*given, context);
    if (button.is(ValueKind::Text)) {
        auto const found = std::ranges::find(buttons, button.units());
        if (found == buttons.end()) throw plainError(errors::Parameter);
        return static_cast<std::size_t>(found - buttons.begin());
    }
    std::int32_t const number = requireInteger(button, context);
    if (number < 1 || number > static_cast<std::int32_t>(buttons.size())) throw plainError(errors::Parameter);
    return static_cast<std::size_t>(number) - 1;
}

double secondsAt(CommandArguments const& arguments, TextContext const& context) {
    Value const* const seconds = arguments.find(parameters::GivingUpAfter);
    return seconds ? std::max(requireReal(*seconds, context), 0.0) : 0;
}

DialogRequest::Icon iconOf(Value const* icon) {
    if (!icon || !icon->is(ValueKind::Constant)) return DialogRequest::Icon::None;
    switch (icon->asCode()) {
    case constants::Stop:
    case constants::Critical:
        return DialogRequest::Icon::Stop;
    case constants::Caution:
    case constants::Warning:
        return DialogRequest::Icon::Caution;
    default:
        return DialogRequest::Icon::Note;
    }
}

void takeButtons(DialogRequest& request, CommandArguments const& arguments, TextContext const& context) {
    constexpr std::size_t mostButtons = 3;
    if (Value const* const buttons = arguments.find(parameters::Buttons)) request.buttons = textsIn(*buttons, context);
    if (request.buttons.empty() || request.buttons.size() > mostButtons) throw plainError(errors::Parameter);
    if (auto const chosen = buttonAt(arguments, parameters::DefaultButton, request.buttons, context))
        request.defaultButton = chosen;
    if (auto const cancel = buttonAt(arguments, parameters::CancelButton, request.buttons, context))
        request.cancelButton = cancel;
}

Value answerOf(DialogRequest const& request, DialogOutcome const& outcome) {
    // A dialog closed without a button counts as cancelled, so that the script does not go on.
    bool const isUnanswered = !outcome.button && !outcome.isTimeOver;
    bool const isCanceled = outcome.button && outcome.button == request.cancelButton;
    if (isUnanswered || isCanceled) throw plainError(errors::UserCanceled);
    std::vector<std::pair<Symbol, Value>> fields;
    fields.emplace_back(keyOf(keys::ButtonReturned),
                        Value::text(outcome.button ? request.buttons.at(*outcome.button) : std::u16string()));
    if (request.answer) fields.emplace_back(keyOf(keys::TextReturned), Value::text(outcome.answer));
    if (request.seconds > 0) fields.emplace_back(keyOf(keys::GaveUp), Value::boolean(outcome.isTimeOver));
    return Value::record(std::move(fields));
}

} // namespace

Value displayDialog(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    DialogRequest request;
    request.text = requireText(arguments.direct, context);
    request.title = textAt(arguments, codes::TitleParameter, context);
    request.icon = iconOf(arguments.find(parameters::WithIcon));
    request.seconds = secondsAt(arguments, context);
    if (Value const* const answer = arguments.find(parameters::DefaultAnswer))
        request.answer = requireText(*answer, context);
    request.hidesAnswer = flagAt(arguments, parameters::HiddenAnswer, context);
    request.buttons = {u"Cancel", u"OK"};
    takeButtons(request, arguments, context);
    if (!arguments.find(parameters::Buttons) && !request.defaultButton) request.defaultButton = 1;
    auto const cancel = std::ranges::find(request.buttons, std::u16string(u"Cancel"));
    if (!request.cancelButton && cancel != request.buttons.end())
        request.cancelButton = static_cast<std::size_t>(cancel - request.buttons.begin());
    return answerOf(request, requireInterface().runDialog(request));
}

Value displayAlert(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    DialogRequest request;
    request.text = requireText(arguments.direct, context);
    request.details = textAt(arguments, parameters::Message, context);
    request.icon = iconOf(arguments.find(parameters::AsAlert));
    request.seconds = secondsAt(arguments, context);
    request.buttons = {u"OK"};
    takeButtons(request, arguments, context);
    if (!request.defaultButton) request.defaultButton = request.buttons.size() - 1;
    return answerOf(request, requireInterface().runDialog(request));
}

Value displayNotification(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    std::u16string text = arguments.direct.isNothing() ? std::u16string() : requireText(arguments.direct, context);
    std::u16string const subtitle = textAt(arguments, parameters::Subtitle, context);
    if (!subtitle.empty()) text = subtitle + u"\n" + text;
    requireInterface().notify(textAt(arguments, codes::TitleParameter, context), text);
    return {};
}

Value beep(Evaluator& evaluator, CommandArguments const& arguments) {
    constexpr std::int32_t most = 100;
    std::int32_t const count = arguments.direct.isNothing() ? 1 : requireInteger(arguments.direct, evaluator.context());
    for (std::int32_t left = std::min(count, most); left > 0; --left)
        NSBeep();
    return {};
}

Value theClipboard(Evaluator& evaluator, CommandArguments const& arguments) {
    Value const text = Value::text(requireInterface().clipboardText());
    Value const* const type = arguments.find(codes::RequestedTypeParameter);
    return type && type->is(ValueKind::Type) ? requireType(text, type->asCode(), evaluator.context()) : text;
}

// Linux: what is set is text, whatever it was.
Value setTheClipboard(Evaluator& evaluator, CommandArguments const& arguments) {
    std::u16string const text = requireText(arguments.direct, evaluator.context());
    requireInterface().setClipboardText(text);
    return {};
}

// The kinds of data on the clipboard and their sizes.
Value clipboardInfo(Evaluator& /*evaluator*/, CommandArguments const& /*arguments*/) {
    std::size_t const count = requireInterface().clipboardText().size();
    if (count == 0) return Value::list();
    return Value::list({Value::list(
        {Value::type(codes::UnicodeTextType), Value::number(static_cast<double>(count * sizeof(char16_t)))})});
}

} // namespace mac::applescript::additions
