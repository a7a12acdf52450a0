#include "platform/applescript/applications/SystemEvents.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/desktop/session/FrontProcess.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/processes/SerialNumbers.h"
#include "platform/system/BytePath.h"
#include "platform/system/processes/ProcessList.h"
#include <array>

// The running processes.

namespace mac::applescript::system_events {

namespace {

class Process final : public ModelObject {
public:
    Process(RunningProcess process, Value application)
        : m_process(std::move(process)), m_application(std::move(application)) {}

    ClassRow const& row() const override;
    Value specifier() const override { return elementSpecifier(Form::Name, codes::Process, m_application, name()); }

    Value name() const {
        std::string const& path = m_process.executable;
        return Value::text(unitsOf(kCFBundleNameKey).value_or(unitsFromFileSystemBytes(BytePath(path).leaf())));
    }
    Value identifier() const { return Value::number(m_process.identity.pid); }
    Value bundleIdentifier() const {
        std::optional<std::u16string> units = unitsOf(kCFBundleIdentifierKey);
        return units ? Value::text(*std::move(units)) : Value::missing();
    }
    Value file() const {
        return makeObject<FileObject>(
            ValueKind::File, FileObject::Kind::Alias,
            unitsOf(kIOBundlePathKey).value_or(unitsFromFileSystemBytes(m_process.executable)));
    }

    Value isFrontmost() const { return Value::boolean(frontProcessID() == m_process.identity.pid); }
    bool setFrontmost(Value const& value, TextContext const& context) {
        // What is behind cannot be pushed back further.
        if (!requireBoolean(value, context)) return true;
        requireRunning();
        if (!bringToFront(m_process.identity.pid)) throw plainError(appIsDaemon);
        return true;
    }

    // Linux: only an X11 display with a window manager tells about windows; without one a process has none of these.
    std::optional<Value> isBackgroundOnly() const { return isWith(ProcessWindows::None); }
    std::optional<Value> isVisible() const { return isWith(ProcessWindows::Shown); }
    std::optional<Value> isHidden() const { return isWith(ProcessWindows::Minimized); }

    bool setVisible(Value const& value, TextContext const& context) { return show(requireBoolean(value, context)); }
    bool setHidden(Value const& value, TextContext const& context) { return show(!requireBoolean(value, context)); }

private:
    std::optional<Value> isWith(ProcessWindows sought) const {
        std::optional<ProcessWindows> const windows = windowsOfProcess(m_process.identity.pid);
        return windows ? std::optional(Value::boolean(*windows == sought)) : std::nullopt;
    }

    bool show(bool isVisible) {
        requireRunning();
        std::optional<ProcessWindows> const windows = windowsOfProcess(m_process.identity.pid);
        if (!windows) return false;
        if (windows == ProcessWindows::None) throw plainError(appIsDaemon);
        if ((windows == ProcessWindows::Shown) == isVisible) return true;
        return isVisible ? restoreWindows(m_process.identity.pid) : minimizeWindows(m_process.identity.pid);
    }

    void requireRunning() const {
        if (!runningProcess(m_process.identity)) throw plainError(procNotFound);
    }

    std::optional<std::u16string> unitsOf(char const* key) const {
        if (m_information == nil) {
            ProcessSerialNumber const number = serialNumberOf(m_process.identity);
            m_information = ProcessInformationCopyDictionary(&number, kProcessDictionaryIncludeAllInformationMask);
        }
        NSString const found = as<NSString>(m_information.objectForKey_(NSString::stringWithUTF8String_(key)));
        return found == nil ? std::nullopt : std::optional(std::u16string(found.codeUnits()));
    }

    RunningProcess m_process;
    Value m_application;
    // Asked for when it is needed.
    mutable NSDictionary m_information{};
};

constexpr auto ProcessProperties = std::to_array<PropertyRow>({
    {u"name", codes::Name, codes::TextType, reading<&Process::name>},
    {u"displayed name", codes::DisplayedName, codes::TextType, reading<&Process::name>, nullptr, Unlisted},
    {u"short name", codes::ShortName, codes::TextType, reading<&Process::name>, nullptr, Unlisted},
    {u"unix id", codeOf("idux"), codes::NumberType, reading<&Process::identifier>},
    {u"id", codes::Identifier, codes::NumberType, reading<&Process::identifier>, nullptr, Unlisted},
    {u"bundle identifier", codes::BundleIdentifier, codes::TextType, reading<&Process::bundleIdentifier>},
    {u"file", codes::File, codes::AliasType, reading<&Process::file>},
    {u"application file", codes::ApplicationFile, codes::AliasType, reading<&Process::file>, nullptr, Unlisted},
    {u"frontmost", codes::Frontmost, codes::BooleanType, reading<&Process::isFrontmost>,
     writing<&Process::setFrontmost>, Unlisted},
    {u"background only", codeOf("bkgo"), codes::BooleanType, reading<&Process::isBackgroundOnly>, nullptr, Unlisted},
    {u"visible", codes::Visible, codes::BooleanType, reading<&Process::isVisible>, writing<&Process::setVisible>,
     Unlisted},
    {u"hidden", codes::Hidden, codes::BooleanType, reading<&Process::isHidden>, writing<&Process::setHidden>, Unlisted},
});

// Every process answers as an application too, so a process is a kind of it.
constexpr ClassRow ApplicationProcessRow{.name = u"application process",
                                         .plural = u"application processes",
                                         .code = codes::ApplicationProcess,
                                         .properties = ProcessProperties};
constexpr ClassRow ProcessRow{
    .name = u"process", .plural = u"processes", .code = codes::Process, .parent = &ApplicationProcessRow};
constexpr auto ProcessKinds = std::to_array<ClassRow const*>({&ProcessRow, &ApplicationProcessRow});

ClassRow const& Process::row() const { return ProcessRow; }

} // namespace

std::vector<ModelPointer> processes(Value const& application) {
    std::vector<ModelPointer> all;
    for (RunningProcess& process : runningProcesses())
        all.push_back(std::make_shared<Process>(std::move(process), application));
    return all;
}

std::span<ClassRow const* const> processKinds() { return ProcessKinds; }

} // namespace mac::applescript::system_events
