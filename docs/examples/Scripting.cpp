#include "docs/examples/Example.h"
#include "platform/foundation/urls/NSURL.h"
#include "scripting/AppleEventDescriptors.h"
#include "scripting/AppleScriptExecution.h"
#include "scripting/FileReferences.h"
#include "scripting/ProcessesAndFinder.h"
#include "scripting/URLUtilities.h"

using namespace mac;

namespace examples {

namespace {

// scripting/AppleScriptExecution: the answer as text, and why there is none.
void showAppleScriptExecution() {
    expect(pxExecuteAsAppleScript("6 * 7").isEqualToString_("42"));
    NSString error;
    expect(pxExecuteAsAppleScript_("6 *", &error) == nil && error != nil);
    expect(pxQuotedForm("it's").length() > 4);
}

// scripting/AppleEventDescriptors: an event descriptor's value as an object of the framework.
void showAppleEventDescriptors() {
    NSAppleEventDescriptor const text = NSAppleEventDescriptor::descriptorWithString_("Anna");
    expect(as<NSString>(pxObject(text)).isEqualToString_("Anna"));
}

// scripting/ProcessesAndFinder: nothing is revealed where there is nothing.
void showProcessesAndFinder(NSString const& folder) {
    expect(!KRAPathRevealInFinder(folder.stringByAppendingPathComponent_("missing")));
}

// scripting/FileReferences: a reference finds its item, and the item its path.
void showFileReferences(NSString const& folder) {
    FSRef reference{};
    expect(KRCPathGetFSRef_(folder, &reference));
    expect(KRCPathWithFSRef_(&reference).isEqualToString_(folder));
}

// scripting/URLUtilities: a URL relative to a folder.
void showURLUtilities(NSString const& folder) {
    FSRef reference{};
    NSURL const base = NSURL::fileURLWithPath_(folder.stringByDeletingLastPathComponent());
    expect(KRCPathGetFSRef_(folder, &reference));
    expect(KRCURLRelativeURLWithFSRef_(base, &reference) != nil);
}

} // namespace

void showScripting(NSString const& folder) {
    showAppleScriptExecution();
    showAppleEventDescriptors();
    showProcessesAndFinder(folder);
    showFileReferences(folder);
    showURLUtilities(folder);
}

} // namespace examples
