#include "platform/applescript/applications/FinderEvents.h"
#include "platform/applescript/applications/CommonTerms.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/RunLimits.h"
#include "platform/applescript/runtime/ScriptDescriptors.h"
#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/desktop/browser/FileBrowserSession.h"
#include "platform/events/DescriptorContents.h"
#include "platform/events/EventDispatch.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/items/ItemIdentity.h"
#include "platform/system/items/OpenItem.h"
#include <algorithm>
#include <cstring>
#include <new>

namespace mac {

namespace {

using namespace applescript;

// The item that a reference leads to now. Whatever is done to the file later finds that very item, or none.
Value fileOfReference(AEDesc const& reference) {
    std::vector<std::byte> const& bytes = contentsOf(reference).bytes;
    FSRef ref{};
    if (bytes.size() != sizeof ref) throw plainError(errors::CorruptData);
    std::memcpy(&ref, bytes.data(), sizeof ref);
    Result<ReferencedItem> const item = itemOfReference(ref);
    if (!item.hasValue()) throw plainError(errors::FileNotFound);
    Result<OpenItem> const open = openItemOfReference(ref);
    Result<IdentifiedItem> const identified =
        open.hasValue() ? identify(open.value().item) : Result<IdentifiedItem>(open.problem());
    if (!identified.hasValue()) throw plainError(errors::FileNotFound);
    Value file =
        makeObject<FileObject>(ValueKind::File, FileObject::Kind::Alias, unitsFromFileSystemBytes(item.value().path));
    file.file().identity = identified.value().identity;
    return file;
}

// Scripts have no references to files; events for the Finder may hold them anywhere.
Value fileIfReference(AEDesc const& desc) { return desc.descriptorType == typeFSRef ? fileOfReference(desc) : Value(); }

CommandTerm const& termOf(EventCode code) {
    Terminology const* const terms = terminologyOfApplication(finderItself().application().name);
    CommandTerm const* const term = terms ? terms->commandOf(code) : nullptr;
    return term ? *term : rawCommand(code);
}

// What the code of a class or type in a parameter is; 0 without one.
Code classIn(ApplicationCommand const& command, Code parameter) {
    Value const* const value = command.find(parameter);
    return value && value->is(ValueKind::Type) ? value->asCode() : 0;
}

// The value that a command of the core suite needs; -1701 if the event lacks it.
Value const& givenValue(Value const* value) {
    if (!value || value->isNothing()) throw plainError(errors::MissingParameter);
    return *value;
}

// What is asked about: an object of the Finder, also if the event names it as a file.
Value objectIn(Value const* value) {
    Value const& object = givenValue(value);
    if (object.is(ValueKind::File)) return fileInApplication(object, finderItself());
    if (!isToldTo(object)) throw plainError(errors::NotOfThisClass);
    return object;
}

Value performCommand(Evaluator& evaluator, ApplicationCommand const& command) {
    TextContext const& context = evaluator.context();
    switch (command.term.code) {
    case common::GetEvent:
        return getInApplication(objectIn(&command.direct), classIn(command, codes::RequestedTypeParameter), context);
    case common::SetEvent:
        setInApplication(objectIn(&command.direct), givenValue(command.find(codes::DataParameter)), context);
        return {};
    case common::ExistsEvent:
        return Value::boolean(existsInApplication(objectIn(&command.direct), context));
    case common::CountEvent: {
        Value const counted = command.direct.isNothing() ? command.subject : objectIn(&command.direct);
        std::size_t const count = countInApplication(counted, classIn(command, codes::NewClassParameter), context);
        return Value::number(static_cast<double>(count));
    }
    default:
        return performInApplication(evaluator, command.subject, command);
    }
}

Value perform(AppleEvent const& event, EventWait const& wait) {
    constexpr unsigned bitsOfCode = 32;
    EventCode const code =
        EventCode{codeAttribute(event, keyEventClassAttr)} << bitsOfCode | codeAttribute(event, keyEventIDAttr);
    ApplicationCommand command{.term = termOf(code), .subject = finderItself()};
    for (DescriptorEntry const& entry : contentsOf(event).entries) {
        Value const value = valueOfDescriptor(entry.desc, finderItself(), fileIfReference);
        if (entry.keyword == keyDirectObject)
            command.direct = value;
        else
            command.named.emplace_back(entry.keyword.value(), value);
    }
    // Kept apart from the state of a script that may run meanwhile, which has considerations and limits of its own.
    EngineState state;
    RunOptions const options;
    RunLimits const limits(wait.shouldContinue, wait.deadline);
    limits.stopIfAsked();
    Evaluator evaluator(state, options);
    return performCommand(evaluator, command);
}

AppleEvent replyWithError(AppleEvent const& event, ScriptError const& error) {
    AppleEvent reply = failedReply(event, error.number);
    std::u16string const message = error.message.empty() ? messageOfNumber(error.number) : error.message;
    putEntry(reply, keyErrorString, descriptorOfValue(Value::text(message)));
    return reply;
}

} // namespace

std::optional<AppleEvent> finderReplyTo(AppleEvent const& event, ProcessIdentity const& process,
                                        EventWait const& wait) {
    if (!isMainThread()) return std::nullopt;
    std::vector<ProcessIdentity> const browsers = fileBrowserProcesses();
    if (std::ranges::find(browsers, process) == browsers.end()) return std::nullopt;
    try {
        AppleEvent reply = makeReply(event);
        Value const result = perform(event, wait);
        if (!result.isNothing()) putEntry(reply, keyDirectObject, descriptorOfValue(result, finderItself()));
        return reply;
    } catch (ScriptError const& error) {
        return replyWithError(event, error);
    } catch (ScriptStopped const& stopped) {
        return replyWithError(event, stopped.error);
    } catch (std::bad_alloc const&) {
        return replyWithError(event, plainError(errors::OutOfMemory));
    }
}

} // namespace mac
