#include "platform/processes/Processes.h"
#include "platform/desktop/browser/FileBrowser.h"
#include "platform/desktop/session/FrontProcess.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/processes/ProcessBundles.h"
#include "platform/processes/SerialNumbers.h"
#include "platform/system/processes/ProcessList.h"
#include <algorithm>
#include <bit>
#include <unistd.h>

namespace mac {

namespace {

// The processes as they were when the walk that is under way began.
class Walk {
public:
    static Walk& current() {
        static Walk walk;
        return walk;
    }

    void begin() {
        m_fileBrowser.forget();
        m_processes = m_known.list();
        m_bundles.keepOnly(m_processes);
        m_hasBegun = true;
    }
    void beginOnce() {
        if (!m_hasBegun) begin();
    }

    // The first one after it that is still there.
    std::optional<ProcessIdentity> after(ProcessIdentity const& last) const {
        auto next = std::ranges::upper_bound(m_processes, last);
        while (next != m_processes.end() && !m_known.isThere(*next))
            ++next;
        return next == m_processes.end() ? std::nullopt : std::optional(*next);
    }

    std::optional<RunningProcess> process(ProcessIdentity const& identity) const { return m_known.read(identity); }
    ProcessBundle bundleOf(RunningProcess const& process) { return m_bundles.bundleOf(process); }
    std::optional<FileBrowser> const& fileBrowser() { return m_fileBrowser.get(); }

private:
    KnownProcesses m_known;
    ProcessBundles m_bundles;
    RecentFileBrowser m_fileBrowser;
    std::vector<ProcessIdentity> m_processes;
    bool m_hasBegun{false};
};

NSString pathString(std::string_view bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

// Strings shared by all processes, instead of new ones for each.
struct InformationKeys {
    NSString psn = "PSN";
    NSString pid = "pid";
    NSString bundlePath = kIOBundlePathKey;
    NSString identifier = kCFBundleIdentifierKey;
    NSString name = kCFBundleNameKey;
    NSString executable = kCFBundleExecutableKey;

    static InformationKeys const& shared() {
        static InformationKeys const keys;
        return keys;
    }
};

NSNumber boxed(ProcessSerialNumber const& psn) {
    return NSNumber::numberWithUnsignedLongLong_(std::bit_cast<std::uint64_t>(psn));
}

} // namespace

OSErr GetNextProcess(ProcessSerialNumber* psn) {
    if (!psn) return paramErr;
    bool const isStart = *psn == ProcessSerialNumber{0, kNoProcess};
    std::optional<ProcessIdentity> const last = isStart ? ProcessIdentity{} : identityOf(*psn);
    if (!last) return procNotFound;
    Walk& walk = Walk::current();
    if (isStart) walk.begin();
    walk.beginOnce();
    std::optional<ProcessIdentity> const next = walk.after(*last);
    if (!next) return procNotFound;
    *psn = serialNumberOf(*next);
    return noErr;
}

OSErr GetFrontProcess(ProcessSerialNumber* psn) {
    if (!psn) return paramErr;
    std::optional<std::int32_t> const pid = frontProcessID();
    return pid ? static_cast<OSErr>(GetProcessForPID(*pid, psn)) : procNotFound;
}

OSErr SetFrontProcess(ProcessSerialNumber const* psn) {
    std::int32_t pid = 0;
    OSStatus const status = GetProcessPID(psn, &pid);
    if (status != noErr) return static_cast<OSErr>(status);
    return bringToFront(pid) ? noErr : appIsDaemon;
}

OSErr GetCurrentProcess(ProcessSerialNumber* psn) { return static_cast<OSErr>(GetProcessForPID(::getpid(), psn)); }

OSStatus GetProcessPID(ProcessSerialNumber const* psn, std::int32_t* pid) {
    if (!psn || !pid) return paramErr;
    std::optional<ProcessIdentity> const identity = identityOf(*psn);
    if (!identity || !runningProcess(*identity)) return procNotFound;
    *pid = identity->pid;
    return noErr;
}

OSStatus GetProcessForPID(std::int32_t pid, ProcessSerialNumber* psn) {
    if (!psn) return paramErr;
    std::optional<RunningProcess> const process = runningProcess(pid);
    if (!process) return procNotFound;
    *psn = serialNumberOf(process->identity);
    return noErr;
}

OSErr SameProcess(ProcessSerialNumber const* first, ProcessSerialNumber const* second, bool* result) {
    if (!first || !second || !result) return paramErr;
    std::optional<ProcessIdentity> const one = identityOf(*first);
    std::optional<ProcessIdentity> const other = identityOf(*second);
    if (!one || !other || !runningProcess(*one) || !runningProcess(*other)) return procNotFound;
    *result = one == other;
    return noErr;
}

NSDictionary ProcessInformationCopyDictionary(ProcessSerialNumber const* psn, std::uint32_t) {
    std::optional<ProcessIdentity> const identity = psn ? identityOf(*psn) : std::nullopt;
    Walk& walk = Walk::current();
    std::optional<RunningProcess> const process = identity ? walk.process(*identity) : std::nullopt;
    if (!process) return nil;
    ProcessBundle const bundle = walk.bundleOf(*process);
    NSString const executable = pathString(bundle.path.empty() ? process->executable : bundle.program);
    InformationKeys const& keys = InformationKeys::shared();
    NSMutableDictionary const information = NSMutableDictionary::dictionary();
    information.setObject_forKey_(boxed(serialNumberOf(*identity)), keys.psn);
    information.setObject_forKey_(NSNumber::numberWithInt_(identity->pid), keys.pid);
    information.setObject_forKey_(executable, keys.executable);
    information.setObject_forKey_(executable.lastPathComponent(), keys.name);
    if (!bundle.path.empty()) information.setObject_forKey_(pathString(bundle.path), keys.bundlePath);
    if (bundle.information != nil) information.addEntriesFromDictionary_(bundle.information);
    std::optional<FileBrowser> const& browser = walk.fileBrowser();
    if (browser && isFileBrowser(*browser, bundle.program, *identity)) {
        information.setObject_forKey_("com.apple.finder", keys.identifier);
        information.setObject_forKey_(pathString(browser->application.name), keys.name);
    }
    return NSDictionary::dictionaryWithDictionary_(information);
}

std::optional<ProcessSerialNumber> processWith(NSString const& key, id const& value, bool (*isMeant)(std::int32_t)) {
    ProcessSerialNumber psn{0, kNoProcess};
    while (GetNextProcess(&psn) == noErr) {
        NSDictionary const information =
            ProcessInformationCopyDictionary(&psn, kProcessDictionaryIncludeAllInformationMask);
        if (!information.objectForKey_(key).isEqual_(value)) continue;
        if (!isMeant || isMeant(as<NSNumber>(information.objectForKey_(InformationKeys::shared().pid)).intValue()))
            return psn;
    }
    return std::nullopt;
}

} // namespace mac
