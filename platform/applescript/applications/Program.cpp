#include "platform/applescript/applications/Program.h"
#include "platform/applescript/applications/CommonTerms.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/runtime/RunLimits.h"
#include "platform/applescript/runtime/ScriptDescriptors.h"
#include "platform/events/EventSending.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/processes/SerialNumbers.h"
#include <map>

namespace mac::applescript {

namespace {

constexpr std::int32_t NotRunning = -600;
constexpr std::int32_t CannotStartProgram = -10810;

AEKeyword keywordOf(Code code) { return AEKeyword(code); }

// A program that is told things by Apple events.
class Program final : public Application {
public:
    Program(std::u16string name, bool byIdentifier) : m_name(std::move(name)), m_byIdentifier(byIdentifier) {}

    std::u16string name() const override {
        if (std::optional<NamedProcess> const process = running()) return process->name;
        std::optional<InstalledProgram> const program = installed();
        return program ? program->name : m_name;
    }
    std::u16string identifier() const override {
        std::optional<NamedProcess> const process = running();
        if (process && !process->identifier.empty()) return process->identifier;
        std::optional<InstalledProgram> const program = installed();
        return program ? program->identifier : std::u16string();
    }
    Terminology const* terms() const override { return nullptr; }
    bool isRunning() const override { return running().has_value(); }
    bool isKnown() const { return isRunning() || installed(); }

    Value get(Value const& specifier, Code type, TextContext const& context) override {
        if (std::optional<Value> const own = ownProperty(specifier))
            return type == 0 ? *own : requireType(*own, type, context);
        std::vector<std::pair<Code, Value>> parameters{{codes::DirectParameter, specifier}};
        if (type != 0) parameters.emplace_back(codes::RequestedTypeParameter, Value::type(type));
        Value const answer = send(common::GetEvent, parameters);
        bool const isAsWanted = type == 0 || type == codes::ReferenceType || isOfClass(answer, type);
        return isAsWanted || isToldTo(answer) ? answer : requireType(answer, type, context);
    }

    void set(Value const& specifier, Value const& value, TextContext const& /*context*/) override {
        send(common::SetEvent, {{codes::DirectParameter, specifier}, {codes::DataParameter, value}});
    }

    bool exists(Value const& specifier, TextContext const& context) override {
        return requireBoolean(send(common::ExistsEvent, {{codes::DirectParameter, specifier}}), context);
    }

    std::size_t count(Value const& specifier, Code elementClass, TextContext const& context) override {
        Code const type = elementClass == 0 ? codes::Item : elementClass;
        std::int32_t const count =
            requireInteger(send(common::CountEvent,
                                {{codes::DirectParameter, specifier}, {codes::NewClassParameter, Value::type(type)}}),
                           context);
        return count < 0 ? 0 : static_cast<std::size_t>(count);
    }

    Value perform(Evaluator& /*evaluator*/, ApplicationCommand const& command) override {
        switch (command.term.code) {
        case eventOf("aevtquit"):
            if (!isRunning()) return {};
            break;
        case eventOf("ascrnoop"):
        case eventOf("aevtoapp"):
        case eventOf("miscactv"):
        case eventOf("aevtrapp"):
            return start(command);
        default:
            break;
        }
        std::vector<std::pair<Code, Value>> parameters;
        // The application itself is not a parameter.
        if (!command.direct.isNothing() && !command.direct.is(ValueKind::Application))
            parameters.emplace_back(codes::DirectParameter, command.direct);
        parameters.insert(parameters.end(), command.named.begin(), command.named.end());
        return send(command.term.code, parameters);
    }

private:
    // All processes are gone through only when the one that was found has ended.
    std::optional<NamedProcess> running() const {
        std::optional<RunningProcess> const known = m_process ? runningProcess(m_process->identity) : std::nullopt;
        bool const isStillIt = known && known->executable == m_process->executable;
        if (!isStillIt) m_process = m_byIdentifier ? processIdentified(m_name) : processNamed(m_name);
        return m_process;
    }
    std::optional<InstalledProgram> installed() const {
        return m_byIdentifier ? installedProgramIdentified(m_name) : installedProgramNamed(m_name);
    }

    Value self() const { return makeObject<ApplicationObject>(ValueKind::Application, m_name, m_byIdentifier); }

    // What is known without asking the program.
    std::optional<Value> ownProperty(Value const& specifier) const {
        SpecifierObject const& part = specifier.specifier();
        if (part.form != Form::Property || !part.container.is(ValueKind::Application)) return {};
        switch (part.property->code) {
        case codes::Running:
            return Value::boolean(isRunning());
        case codes::Name:
            return Value::text(name());
        case codes::Identifier: {
            std::u16string const found = identifier();
            return found.empty() ? Value::missing() : Value::text(found);
        }
        case codes::Class:
            return Value::type(codes::Application);
        default:
            return {};
        }
    }

    // Linux: a program that runs already is asked to show itself; whether it does is its own affair.
    Value start(ApplicationCommand const& command) {
        if (isRunning()) {
            bool const isAsked = command.term.code != eventOf("ascrnoop");
            try {
                if (isAsked) send(command.term.code, {});
            } catch (ScriptError const& error) {
                bool const isUnheard = error.number == errors::NotUnderstood || error.number == NotRunning ||
                                       error.number == connectionInvalid;
                if (!isUnheard) throw;
            }
            return {};
        }
        std::optional<InstalledProgram> const program = installed();
        if (!program || !startProgram(program->words)) throw plainError(CannotStartProgram);
        return {};
    }

    Value send(EventCode event, std::vector<std::pair<Code, Value>> const& parameters) {
        std::optional<NamedProcess> const process = running();
        if (!process) throw plainError(NotRunning);
        ProcessSerialNumber const number = serialNumberOf(process->identity);
        NSAppleEventDescriptor const target = NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(
            typeProcessSerialNumber, &number, sizeof number);
        NSAppleEventDescriptor const made =
            NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
                keywordOf(static_cast<Code>(event >> 32U)), keywordOf(static_cast<Code>(event)), target,
                kAutoGenerateReturnID, kAnyTransactionID);
        for (auto const& [code, value] : parameters)
            made.setParamDescriptor_forKeyword_(
                NSAppleEventDescriptor::descriptorWithAEDesc(descriptorOfValue(value, self())), keywordOf(code));
        AEDesc reply;
        OSStatus const status = sendAndWait(*made.aeDesc(), reply, endOfReply(), [] {
            stopRunIfAsked();
            return true;
        });
        stopRunIfAsked();
        if (status != noErr) throw plainError(status);
        return valueOfReply(NSAppleEventDescriptor::descriptorWithAEDesc(reply));
    }

    Value valueOfReply(NSAppleEventDescriptor const& reply) const {
        NSAppleEventDescriptor const number = reply.paramDescriptorForKeyword_(keyErrorNumber);
        if (number != nil && number.int32Value() != 0) {
            ScriptError error = plainError(number.int32Value());
            NSString const message = reply.paramDescriptorForKeyword_(keyErrorString).stringValue();
            if (message != nil) error.message = message.codeUnits();
            throw ScriptError(std::move(error));
        }
        NSAppleEventDescriptor const direct = reply.paramDescriptorForKeyword_(keyDirectObject);
        return direct == nil ? Value() : valueOfDescriptor(*direct.aeDesc(), self());
    }

    std::u16string m_name;
    bool m_byIdentifier;
    mutable std::optional<NamedProcess> m_process{};
};

Application* program(std::u16string_view name, bool byIdentifier) {
    static std::map<std::pair<std::u16string, bool>, std::unique_ptr<Program>> programs;
    std::unique_ptr<Program>& known = programs[{foldedName(name), byIdentifier}];
    if (!known) known = std::make_unique<Program>(std::u16string(name), byIdentifier);
    return known->isKnown() ? known.get() : nullptr;
}

} // namespace

Application* programNamed(std::u16string_view name) { return program(name, false); }
Application* programIdentified(std::u16string_view identifier) { return program(identifier, true); }

} // namespace mac::applescript
