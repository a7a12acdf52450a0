#include "platform/applescript/additions/AdditionParameters.h"
#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/applications/Program.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/foundation/text/Encodings.h"
#include <algorithm>

// What the person at the screen chooses, and what the commands that ask have in common.

namespace mac::applescript::additions {

UserInterface& requireInterface() {
    if (UserInterface* const interface = userInterface()) return *interface;
    throw plainError(errors::NoUserInteraction);
}

Symbol keyOf(Code code) { return termSymbol(code, nameOfCode(code)); }

std::u16string textAt(CommandArguments const& arguments, Code code, TextContext const& context) {
    Value const* const value = arguments.find(code);
    return value ? requireText(*value, context) : std::u16string();
}

bool flagAt(CommandArguments const& arguments, Code code, TextContext const& context) {
    Value const* const flag = arguments.find(code);
    return flag && requireBoolean(*flag, context);
}

std::vector<std::u16string> textsIn(Value const& list, TextContext const& context) {
    std::vector<std::u16string> texts;
    Value const whole = requireType(list, codes::ListType, context);
    for (Value const& item : whole.items())
        texts.push_back(requireText(item, context));
    return texts;
}

// The items chosen, as they are; false where the person cancels.
Value chooseFromList(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    Value const list = requireType(arguments.direct, codes::ListType, context);
    ListRequest request;
    request.items = textsIn(list, context);
    if (request.items.empty()) throw plainError(errors::Parameter);
    request.title = textAt(arguments, codes::TitleParameter, context);
    request.text = arguments.find(codes::PromptParameter) ? textAt(arguments, codes::PromptParameter, context)
                                                          : std::u16string(u"Please make your selection:");
    request.acceptButton = textAt(arguments, parameters::OKButtonName, context);
    request.cancelButton = textAt(arguments, parameters::CancelButtonName, context);
    request.allowsSeveral = flagAt(arguments, codes::SeveralParameter, context);
    request.allowsNone = flagAt(arguments, parameters::EmptySelectionAllowed, context);
    if (Value const* const chosen = arguments.find(parameters::DefaultItems)) {
        for (std::u16string const& text : textsIn(*chosen, context)) {
            auto const found = std::ranges::find(request.items, text);
            if (found != request.items.end())
                request.chosen.push_back(static_cast<std::size_t>(found - request.items.begin()));
        }
    }
    std::optional<std::vector<std::size_t>> const chosen = requireInterface().chooseFromList(request);
    if (!chosen) return Value::boolean(false);
    std::vector<Value> items;
    for (std::size_t const index : *chosen)
        if (index < list.items().size()) items.push_back(list.items()[index]);
    return Value::list(std::move(items));
}

// Linux: a URL is typed; there is no browser of servers.
Value chooseURL(Evaluator& /*evaluator*/, CommandArguments const& /*arguments*/) {
    DialogRequest request;
    request.text = u"Enter a URL:";
    request.buttons = {u"Cancel", u"Choose"};
    request.cancelButton = 0;
    request.defaultButton = 1;
    request.answer = std::u16string();
    DialogOutcome const outcome = requireInterface().runDialog(request);
    if (outcome.button != request.defaultButton) throw plainError(errors::UserCanceled);
    return Value::text(outcome.answer);
}

// The applications that the desktop knows, by their names.
Value chooseApplication(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    ListRequest request;
    request.title = arguments.find(codes::TitleParameter) ? textAt(arguments, codes::TitleParameter, context)
                                                          : std::u16string(u"Choose Application");
    request.text = arguments.find(codes::PromptParameter) ? textAt(arguments, codes::PromptParameter, context)
                                                          : std::u16string(u"Select an application:");
    request.allowsSeveral = flagAt(arguments, codes::SeveralParameter, context);
    UserInterface& interface = requireInterface();
    for (InstalledProgram const& program : installedPrograms())
        request.items.push_back(program.name);
    std::ranges::sort(request.items, {}, &foldedName);
    request.items.erase(std::unique(request.items.begin(), request.items.end()), request.items.end());
    std::optional<std::vector<std::size_t>> const chosen = interface.chooseFromList(request);
    if (!chosen || chosen->empty()) throw plainError(errors::UserCanceled);
    Value const* const type = arguments.find(codes::RequestedTypeParameter);
    bool const isAlias = type && type->is(ValueKind::Type) && type->asCode() == codes::AliasType;
    std::vector<Value> answers;
    for (std::size_t const index : *chosen) {
        if (index >= request.items.size()) continue;
        std::u16string const& name = request.items[index];
        std::optional<std::string> const path = isAlias ? pathOfApplicationNamed(name) : std::nullopt;
        answers.push_back(
            path ? makeObject<FileObject>(ValueKind::File, FileObject::Kind::Alias, unitsFromFileSystemBytes(*path))
                 : makeObject<ApplicationObject>(ValueKind::Application, name, false));
    }
    return request.allowsSeveral ? Value::list(std::move(answers)) : answers.front();
}

// Three numbers from 0 to 65535: red, green and blue.
Value chooseColor(Evaluator& evaluator, CommandArguments const& arguments) {
    constexpr std::int32_t most = 65535;
    ColorComponents color{};
    if (Value const* const given = arguments.find(parameters::DefaultColor)) {
        Value const list = requireType(*given, codes::ListType, evaluator.context());
        if (list.items().size() != color.size()) throw plainError(errors::Parameter);
        for (std::size_t index = 0; index < color.size(); ++index)
            color.at(index) = static_cast<std::uint16_t>(
                std::clamp(requireInteger(list.items()[index], evaluator.context()), 0, most));
    }
    std::optional<ColorComponents> const chosen = requireInterface().chooseColor(color);
    if (!chosen) throw plainError(errors::UserCanceled);
    std::vector<Value> components;
    for (std::uint16_t const component : *chosen)
        components.push_back(Value::integer(component));
    return Value::list(std::move(components));
}

} // namespace mac::applescript::additions
