#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/runtime/RunLimits.h"
#include "platform/applescript/runtime/SourceForm.h"
#include <algorithm>

namespace mac::applescript {

namespace {

Application& requireApplication(Value const& root, TextContext const& context) {
    if (!context.asksApplications) throw plainError(errors::AccessNotAllowed);
    Application* const application = applicationOf(root.application());
    if (!application) throw cannotGet(root);
    return *application;
}

// Puts the application's name before what it complains of.
template <class Action>
auto told(Value const& target, TextContext const& context, Action&& action) {
    Value const root = rootOf(target);
    Application& application = requireApplication(root, context);
    WithinApplication const within(root);
    try {
        auto answer = action(application);
        stopRunIfAsked();
        return answer;
    } catch (ScriptError& error) {
        if (!error.application.empty()) throw;
        if (error.message.empty()) error.message = messageOfNumber(error.number);
        error.application = application.name();
        error.message = error.application + u" got an error: " + error.message;
        throw;
    }
}

} // namespace

Value const* ApplicationCommand::find(Code code) const {
    auto const found = std::ranges::find_if(named, [&](auto const& argument) { return argument.first == code; });
    return found == named.end() ? nullptr : &found->second;
}

bool isToldTo(Value const& value) { return rootOf(value).is(ValueKind::Application); }
bool isInApplication(Value const& value) { return value.is(ValueKind::Specifier) && isToldTo(value); }

Value fileInApplication(Value const& file, Value const& told) {
    return elementSpecifier(Form::Name, codes::Item, rootOf(told), file);
}

bool hasTermFor(Value const& told, Code property) {
    Terminology const* const terms = termsOf(rootOf(told).application());
    return terms && !terms->nameOf(property).empty();
}

Value getInApplication(Value const& specifier, Code type, TextContext const& context) {
    return told(specifier, context,
                [&](Application& application) { return application.get(specifier, type, context); });
}

void setInApplication(Value const& specifier, Value const& value, TextContext const& context) {
    told(specifier, context, [&](Application& application) {
        application.set(specifier, value, context);
        return Value();
    });
}

bool existsInApplication(Value const& specifier, TextContext const& context) {
    return told(specifier, context, [&](Application& application) { return application.exists(specifier, context); });
}

std::size_t countInApplication(Value const& specifier, Code elementClass, TextContext const& context) {
    return told(specifier, context,
                [&](Application& application) { return application.count(specifier, elementClass, context); });
}

Value performInApplication(Evaluator& evaluator, Value const& target, ApplicationCommand const& command) {
    return told(target, evaluator.context(),
                [&](Application& application) { return application.perform(evaluator, command); });
}

void refuseCall(Value const& target, Symbol name, TextContext const& context) {
    told(target, context, [&](Application& /*application*/) -> Value {
        throw ScriptError{.number = errors::NotUnderstood, .message = u"Can’t continue " + name->spelling + u"."};
    });
    throw plainError(errors::NotUnderstood);
}

} // namespace mac::applescript
