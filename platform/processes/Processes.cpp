#include "platform/processes/Processes.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSNumber.h"
#include "platform/processes/FileBrowser.h"
#include "platform/processes/FrontProcess.h"
#include "platform/processes/ProcessList.h"
#include <algorithm>
#include <bit>
#include <chrono>
#include <unistd.h>
#include <utility>

namespace mac {

namespace {

// The walk that is under way: the processes as they were at its beginning, and who the file browser was.
struct Walk {
    std::vector<std::int32_t> processes;
    std::optional<FileBrowser> fileBrowser;
    // The process that the walk has come to, and when.
    std::optional<RunningProcess> current;
    std::chrono::steady_clock::time_point readAt;
    bool hasBegun{false};

    void begin() {
        processes = processIDs();
        fileBrowser = defaultFileBrowser();
        current.reset();
        hasBegun = true;
    }
};

Walk& currentWalk() {
    static Walk walk;
    return walk;
}

std::optional<FileBrowser> const& knownFileBrowser() {
    Walk& walk = currentWalk();
    if (!walk.hasBegun) walk.begin();
    return walk.fileBrowser;
}

// What the walk read of the process a moment ago, else what it is now: whoever walks mostly asks for more of each
// process right away.
std::optional<RunningProcess> readOnce(ProcessIdentity const& identity) {
    constexpr std::chrono::milliseconds moment(1);
    Walk& walk = currentWalk();
    std::optional<RunningProcess> const read = std::exchange(walk.current, std::nullopt);
    bool const isNew = read && read->identity == identity && std::chrono::steady_clock::now() - walk.readAt < moment;
    return isNew ? read : runningProcess(identity);
}

NSString pathString(std::string_view bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

void addText(NSMutableDictionary const& information, NSString const& key, id const& value) {
    NSString const text = as<NSString>(value);
    if (text != nil) information.setObject_forKey_(text, key);
}

void addBundle(NSMutableDictionary const& information, std::string_view bundlePath) {
    if (bundlePath.empty()) return;
    information.setObject_forKey_(pathString(bundlePath), kIOBundlePathKey);
    NSBundle const bundle = NSBundle::bundleWithPath_(pathString(bundlePath));
    addText(information, kCFBundleIdentifierKey, bundle.bundleIdentifier());
    addText(information, kCFBundleNameKey, bundle.objectForInfoDictionaryKey_(kCFBundleNameKey));
    addText(information, "FileType", bundle.objectForInfoDictionaryKey_("CFBundlePackageType"));
    addText(information, "FileCreator", bundle.objectForInfoDictionaryKey_("CFBundleSignature"));
}

NSNumber boxed(ProcessSerialNumber const& psn) {
    return NSNumber::numberWithUnsignedLongLong_(std::bit_cast<std::uint64_t>(psn));
}

} // namespace

OSErr GetNextProcess(ProcessSerialNumber* psn) {
    if (!psn) return paramErr;
    Walk& walk = currentWalk();
    bool const isStart = *psn == ProcessSerialNumber{0, kNoProcess};
    if (isStart || !walk.hasBegun) walk.begin();
    std::optional<ProcessIdentity> const last = isStart ? ProcessIdentity{} : identityOf(*psn);
    if (!last) return procNotFound;
    auto next = std::ranges::upper_bound(walk.processes, last->pid);
    for (walk.current.reset(); next != walk.processes.end() && !walk.current; ++next)
        walk.current = runningProcess(*next);
    if (!walk.current) return procNotFound;
    walk.readAt = std::chrono::steady_clock::now();
    *psn = serialNumberOf(walk.current->identity);
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
    std::optional<RunningProcess> const process = identity ? readOnce(*identity) : std::nullopt;
    if (!process) return nil;
    std::optional<std::string> const program = programInBundle(*process);
    NSString const executable = pathString(program.value_or(process->executable));
    NSMutableDictionary const information = NSMutableDictionary::dictionary();
    information.setObject_forKey_(boxed(serialNumberOf(*identity)), "PSN");
    information.setObject_forKey_(NSNumber::numberWithInt_(identity->pid), "pid");
    information.setObject_forKey_(executable, kCFBundleExecutableKey);
    information.setObject_forKey_(executable.lastPathComponent(), kCFBundleNameKey);
    if (program) addBundle(information, bundleHolding(*program));
    std::optional<FileBrowser> const& browser = knownFileBrowser();
    if (browser && browser->executable == process->executable && !isInterpreter(process->executable)) {
        information.setObject_forKey_("com.apple.finder", kCFBundleIdentifierKey);
        information.setObject_forKey_(pathString(browser->name), kCFBundleNameKey);
    }
    return NSDictionary::dictionaryWithDictionary_(information);
}

} // namespace mac
