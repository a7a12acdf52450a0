#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ExpressionEvaluation.h"
#include "platform/applescript/runtime/ReferenceEvaluation.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/applescript/runtime/SourceForm.h"

namespace mac::applescript {

namespace {

// What an application answers for the property need not be a boolean.
bool isRunning(Value const& running, Code type, TextContext const& context) {
    return requireBoolean(getInApplication(running, type, context), context);
}

} // namespace

Value evaluateDate(Evaluator& evaluator, DateExpression const& date) {
    TextContext const& context = evaluator.context();
    Value written = resolved(valueOf(evaluator, *date.text), context);
    if (written.is(ValueKind::Date)) return written;
    std::u16string const text = requireText(written, context);
    std::int64_t base = currentDate();
    if (date.day) {
        Value const day = resolved(valueOf(evaluator, *date.day), context);
        if (!day.is(ValueKind::Date)) throw cannotMake(day, codes::DateType);
        base = day.seconds();
    }
    std::optional<std::int64_t> const found = dateInText(text, base);
    if (found) return Value::date(*found);
    throw ScriptError{.number = errors::InvalidDate,
                      .message = u"Invalid date and time date " + sourceForm(Value::text(text)) + u"."};
}

Value evaluateFile(Evaluator& evaluator, FileReference const& file) {
    TextContext const& context = evaluator.context();
    Value const written = resolved(valueOf(evaluator, *file.path), context);
    if (file.fileClass == codes::POSIXFileType)
        return makeObject<FileObject>(ValueKind::File, FileObject::Kind::PosixFile, requireText(written, context));
    bool const isAlias = file.fileClass == codes::AliasType;
    FileObject::Kind const kind = isAlias ? FileObject::Kind::Alias : FileObject::Kind::File;
    Value made = makeObject<FileObject>(ValueKind::File, kind, requirePath(written, context));
    if (isAlias && !existsAt(made.file().path)) throw fileNotFound(made);
    return made;
}

Value evaluateApplication(Evaluator& evaluator, ApplicationReference const& application) {
    std::u16string const name = requireText(valueOf(evaluator, *application.name), evaluator.context());
    bool const isIdentifier = application.naming == ApplicationReference::Naming::Identifier;
    return makeObject<ApplicationObject>(ValueKind::Application, name, isIdentifier);
}

Value evaluateRunning(Evaluator& evaluator, RunningTest const& test) {
    TextContext const& context = evaluator.context();
    Value const left = unaskedValue(evaluator, *test.application);
    Value const running = propertySpecifier(termSymbol(codes::Running, u"running"), left);
    bool const asks = test.operation == Operation::Running;
    if (isInApplication(left)) return Value::boolean(isRunning(running, 0, context) == asks);
    Value const application = resolved(left, context);
    if (!application.is(ValueKind::Application)) throw cannotGet(running);
    bool const isKnown = application.application().byIdentifier || applicationOf(application.application());
    if (!isKnown) return Value::boolean(!asks);
    return Value::boolean(isRunning(running, codes::BooleanType, context) == asks);
}

Value evaluateCount(Evaluator& evaluator, CountExpression const& count) {
    TextContext const& context = evaluator.context();
    Value const& it = evaluator.frame().it;
    Value counted = count.counted ? unaskedValue(evaluator, *count.counted) : it;
    if (counted.is(ValueKind::File) && isToldTo(it)) counted = fileInApplication(counted, it);
    if (!isToldTo(counted)) counted = resolved(counted, context);
    if (isToldTo(counted))
        return Value::number(static_cast<double>(countInApplication(counted, count.elementClass, context)));
    std::optional<std::size_t> const number = countOf(counted, count.elementClass, context);
    if (!number) throw notUnderstood(counted, u"count");
    return Value::number(static_cast<double>(*number));
}

} // namespace mac::applescript
