#include "platform/appkit/workspace/NSWorkspace.h"
#include "platform/Registration.h"
#include "platform/appkit/workspace/ColorModels.h"
#include "platform/appkit/workspace/NSColor.h"
#include "platform/appkit/workspace/NSGraphicsContext.h"
#include "platform/desktop/browser/FileBrowserSession.h"
#include "platform/desktop/entries/DesktopApplication.h"
#include "platform/desktop/session/FrontProcess.h"
#include "platform/desktop/session/Session.h"
#include "platform/events/EventSending.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/NSArchiver.h"
#include "platform/launchservices/Applications.h"
#include "platform/processes/Processes.h"
#include "platform/system/processes/DetachedProcess.h"
#include <algorithm>

namespace mac {

namespace {

constexpr char FinderIdentifier[] = "com.apple.finder";

// Brings a process of this session that runs the program to the front, as far as the display does that; false when none
// runs it.
bool activateProgram(std::string const& program) {
    std::vector<ProcessIdentity> const processes = sessionProcessesOf(program);
    bool const isInFront =
        std::ranges::any_of(processes, [](ProcessIdentity const& process) { return bringToFront(process.pid); });
    return isInFront || !processes.empty();
}

bool launchEntry(std::string const& path) {
    std::optional<DesktopApplication> const application = applicationOfEntry(DesktopEntry::readFile(path));
    if (!application || !hasDisplay()) return false;
    // The window around one that runs in a terminal is not its own.
    if (!application->needsTerminal && activateProgram(programOf(*application))) return true;
    return startApplication(*application, {}).isDone();
}

bool launchBundle(NSString const& path) {
    NSBundle const bundle = NSBundle::bundleWithPath_(path);
    std::optional<ProcessSerialNumber> const running =
        processWith(kCFBundleIdentifierKey, bundle.bundleIdentifier(), isOfThisSession);
    if (running) {
        // A display that does not bring it to the front does not keep it from running.
        SetFrontProcess(&*running);
        return true;
    }
    std::optional<std::string> const program = bundle.executablePath().fileSystemRepresentation();
    return program && startDetached(*program, {*program}).hasValue();
}

bool launchFinder() {
    if (!FileBrowserSession().launch().isDone()) return false;
    // A process that was started just now may have no window yet.
    bringFileBrowserToFront();
    return true;
}

} // namespace

class NSWorkspace::Body : public ObjectBody {};

ClassDescription NSWorkspace::describeClass() {
    return {
        .name = "NSWorkspace",
        .superclass = classOf<NSObject>(),
        .methods = {method<&NSWorkspace::openFile_>("openFile:"),
                    method<&NSWorkspace::selectFile_inFileViewerRootedAtPath_>("selectFile:inFileViewerRootedAtPath:"),
                    method<&NSWorkspace::iconForFile_>("iconForFile:"),
                    method<&NSWorkspace::iconForFileType_>("iconForFileType:")},
    };
}

void registerWorkspace() {
    registerClasses<NSBitmapImageRep, NSColor, NSGraphicsContext, NSImage, NSImageRep, NSWorkspace>();
    addArchivedForm(classOf<NSColor>(), {&archivedColor, &unarchivedColor});
    // Lets the event 'quit' reach the file browser, which receives no events, by the browser's own means.
    setUnansweredQuitHandler(askToQuit);
}

NSWorkspace NSWorkspace::sharedWorkspace() {
    static NSWorkspace const shared = adopt<NSWorkspace>();
    return shared;
}

bool NSWorkspace::selectFile_inFileViewerRootedAtPath_(NSString const& fullPath, NSString const&) const {
    std::optional<std::string> const path = fullPath.fileSystemRepresentation();
    return *this != nil && path && FileBrowserSession().revealItems({*path}).isDone();
}

bool NSWorkspace::openFile_(NSString const& fullPath) const {
    std::optional<std::string> const path = fullPath.fileSystemRepresentation();
    return *this != nil && path && FileBrowserSession().openItem(*path).isDone();
}

bool NSWorkspace::launchAppWithBundleIdentifier_options_additionalEventParamDescriptor_launchIdentifier_(
    NSString const& bundleIdentifier, NSWorkspaceLaunchOptions, NSAppleEventDescriptor const&, NSNumber*) const {
    CFURLRef url;
    if (*this == nil || bundleIdentifier == nil ||
        LSFindApplicationForInfo(kLSUnknownCreator, bundleIdentifier, nil, nullptr, &url) != noErr)
        return false;
    NSString const path = url.path();
    if (!path.pathExtension().isEqualToString_("desktop")) return launchBundle(path);
    if (bundleIdentifier.caseInsensitiveCompare_(FinderIdentifier) == NSOrderedSame) return launchFinder();
    std::optional<std::string> const entry = path.fileSystemRepresentation();
    return entry && launchEntry(*entry);
}

} // namespace mac
