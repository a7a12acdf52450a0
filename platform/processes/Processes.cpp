#include "platform/processes/Processes.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSNumber.h"
#include "platform/processes/FileBrowser.h"
#include "platform/processes/ProcessList.h"
#include <algorithm>
#include <bit>
#include <unistd.h>

namespace mac {

namespace {

// The walk that is under way: the processes as they were at its beginning, and who the file browser was.
struct Walk {
    std::vector<ProcessIdentity> processes;
    std::optional<FileBrowser> fileBrowser;
    bool hasBegun{false};

    void begin() {
        processes.clear();
        for (RunningProcess const& process : runningProcesses())
            processes.push_back(process.identity);
        fileBrowser = defaultFileBrowser();
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

NSString pathString(std::string_view bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

// The innermost bundle that the path lies in the Contents of; empty for none.
std::string_view bundleHolding(std::string_view path) {
    constexpr std::string_view mark = ".app/Contents/";
    std::size_t const place = path.rfind(mark);
    // A bundle has a name before its extension.
    if (place == std::string_view::npos || place == 0 || path[place - 1] == '/') return {};
    return path.substr(0, place + std::string_view(".app").size());
}

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
    auto const rest = std::ranges::upper_bound(walk.processes, *last, &ProcessIdentity::isBefore);
    auto const next = std::find_if(rest, walk.processes.end(),
                                   [](ProcessIdentity const& process) { return runningProcess(process).has_value(); });
    if (next == walk.processes.end()) return procNotFound;
    *psn = serialNumberOf(*next);
    return noErr;
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
    std::optional<RunningProcess> const process = identity ? runningProcess(*identity) : std::nullopt;
    if (!process) return nil;
    NSString const executable = pathString(process->executable);
    NSMutableDictionary const information = NSMutableDictionary::dictionary();
    information.setObject_forKey_(boxed(serialNumberOf(*identity)), "PSN");
    information.setObject_forKey_(NSNumber::numberWithInt_(identity->pid), "pid");
    information.setObject_forKey_(executable, kCFBundleExecutableKey);
    information.setObject_forKey_(executable.lastPathComponent(), kCFBundleNameKey);
    addBundle(information, bundleHolding(process->executable));
    std::optional<FileBrowser> const& browser = knownFileBrowser();
    if (browser && browser->executable == process->executable) {
        information.setObject_forKey_("com.apple.finder", kCFBundleIdentifierKey);
        information.setObject_forKey_(pathString(browser->name), kCFBundleNameKey);
    }
    return NSDictionary::dictionaryWithDictionary_(information);
}

} // namespace mac
