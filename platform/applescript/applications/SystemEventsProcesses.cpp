#include "platform/applescript/applications/SystemEvents.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/desktop/FrontProcess.h"
#include "platform/foundation/Encodings.h"
#include "platform/foundation/NSNumber.h"
#include "platform/processes/SerialNumbers.h"
#include "platform/system/BytePath.h"
#include "platform/system/processes/ProcessList.h"
#include <algorithm>

// The running processes.

namespace mac::applescript::system_events {

namespace {

class Process final : public ModelObject {
public:
    explicit Process(RunningProcess process) : m_process(std::move(process)) {}

    Code type() const override { return codeOf("prcs"); }
    bool isOfType(Code sought) const override {
        return sought == codeOf("prcs") || sought == codeOf("pcap") || sought == codeOf("cobj");
    }
    Value specifier() const override {
        return elementSpecifier(Form::Name, codeOf("prcs"), itself(), Value::text(shownName()));
    }

    std::optional<Value> property(Code code) override {
        switch (code) {
        case codeOf("pcls"):
            return Value::type(codeOf("prcs"));
        case codeOf("pnam"):
        case codeOf("dnam"):
        case codeOf("cfbn"):
            return Value::text(shownName());
        case codeOf("idux"):
        case codeOf("ID  "):
            return Value::number(m_process.identity.pid);
        case codeOf("pisf"):
            return Value::boolean(frontProcessID() == m_process.identity.pid);
        case codeOf("bnid"):
            return text(kCFBundleIdentifierKey).value_or(Value::missing());
        case codeOf("file"):
        case codeOf("appf"):
            return makeObject<FileObject>(
                ValueKind::File, FileObject::Kind::Alias,
                unitsOf(kIOBundlePathKey).value_or(unitsFromFileSystemBytes(m_process.executable)));
        default:
            return {};
        }
    }

    bool setProperty(Code code, Value const& value, TextContext const& context) override {
        if (code != codeOf("pisf")) return false;
        // What is behind cannot be pushed back further.
        if (!requireBoolean(value, context)) return true;
        if (!runningProcess(m_process.identity)) throw plainError(procNotFound);
        if (!bringToFront(m_process.identity.pid)) throw plainError(appIsDaemon);
        return true;
    }

    std::vector<Code> propertyCodes() const override {
        return {codeOf("pcls"), codeOf("pnam"), codeOf("idux"), codeOf("bnid"), codeOf("file")};
    }

private:
    std::optional<std::u16string> unitsOf(char const* key) const {
        if (m_information == nil) {
            ProcessSerialNumber const number = serialNumberOf(m_process.identity);
            m_information = ProcessInformationCopyDictionary(&number, kProcessDictionaryIncludeAllInformationMask);
        }
        NSString const found = as<NSString>(m_information.objectForKey_(NSString::stringWithUTF8String_(key)));
        return found == nil ? std::nullopt : std::optional(std::u16string(found.codeUnits()));
    }

    std::optional<Value> text(char const* key) const {
        std::optional<std::u16string> units = unitsOf(key);
        return units ? std::optional(Value::text(*std::move(units))) : std::nullopt;
    }

    std::u16string shownName() const {
        std::string const& path = m_process.executable;
        return unitsOf(kCFBundleNameKey).value_or(unitsFromFileSystemBytes(BytePath(path).leaf()));
    }

    RunningProcess m_process;
    // Asked for when it is needed.
    mutable NSDictionary m_information{};
};

} // namespace

std::vector<ModelPointer> processes(Code /*elementType*/) {
    std::vector<ModelPointer> all;
    for (RunningProcess& process : runningProcesses())
        all.push_back(std::make_shared<Process>(std::move(process)));
    return all;
}

} // namespace mac::applescript::system_events
