#include "app/AppController.h"
#include "app/AppControllerBody.h"
#include "app/Undo.h"
#include "platform/appkit/workspace/NSWorkspace.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/Beep.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/foundation/urls/NSURL.h"
#include "platform/preferences/CFPreferences.h"

namespace framekeeper {

namespace {

constexpr char FinderIdentifier[] = "com.apple.finder";
constexpr char ToolbarItems[] = "FXToolbarItems";

// How the text of an item names its file; items of other types are skipped.
enum URLStringType { PlainPath = 0, FullURL = 15 };

NSURL urlOfItem(id const& item) {
    NSDictionary const data = as<NSDictionary>(as<NSDictionary>(item).objectForKey_("file-data"));
    NSNumber const type = as<NSNumber>(data.objectForKey_("_CFURLStringType"));
    NSString const text = as<NSString>(data.objectForKey_("_CFURLString"));
    if (type == nil || text == nil) return nil;
    if (type.intValue() == PlainPath) return NSURL::fileURLWithPath_(text);
    if (type.intValue() == FullURL) return NSURL::URLWithString_(text);
    return nil;
}

// Nil for an item that points at no copy of the companion.
NSString pathOfCopyInItem(id const& item) {
    NSString const path = urlOfItem(item).path().stringByStandardizingPath();
    bool const isCopy =
        path.length() > 0 && path.lastPathComponent().caseInsensitiveCompare_(CompanionFileName) == NSOrderedSame;
    return isCopy ? path : NSString();
}

void report(NSString const& problem) {
    NSBeep();
    NSLog("%@", problem);
}

} // namespace

ListRead toolbarItemsReadAnew() { return listReadAnew(FinderIdentifier, ToolbarItems); }

NSArray AppController::readAllToolbarItems() const {
    if (*this == nil) return nil;
    ListRead const read = toolbarItemsReadAnew();
    if (read.problem != nil) report("Error: CFPreferencesSynchronize");
    keepReadingProblem(*this, SessionList::ToolbarItems, read.problem);
    return read.items;
}

bool AppController::writeAllToolbarItems_(NSArray const& items) const {
    if (*this == nil) return false;
    CFPreferencesSetValue(ToolbarItems, items, FinderIdentifier, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
    return writeList(*this, FinderIdentifier);
}

void AppController::syncIsInToolbar() const {
    if (*this == nil) return;
    NSArray const items = readAllToolbarItems();
    setAllToolbarItems_(items);
    NSMutableSet const entries = NSMutableSet::set();
    for (NSUInteger index = 0; index < items.count(); ++index) {
        id const item = items.objectAtIndex_(index);
        NSString const path = pathOfCopyInItem(item);
        if (path == nil) continue;
        entries.addObject_(NSDictionary::dictionaryWithObjectsAndKeys_({path, "path", item, "toolbarItem"}));
    }
    setIsInToolbarPaths_(entries);
}

void AppController::unToolbarAction_(id const& sender) const {
    NSArray const selected = pathsArrayController().selectedObjects();
    if (selected.count() != 1) return;
    NSMutableArray const items = NSMutableArray::arrayWithArray_(allToolbarItems());
    NSUInteger const index = items.indexOfObjectIdenticalTo_(selected.objectAtIndex_(0).valueForKey_("toolbarItem"));
    if (items == nil || index == NSNotFound) {
        report("Item is not in toolbar.");
        return;
    }
    ListChange change{.list = SessionList::ToolbarItems, .removed = {removedItem(items, index)}};
    items.removeObjectAtIndex_(index);
    bool const isWritten = writeAllToolbarItems_(NSArray::arrayWithArray_(items));
    if (!isWritten) report("Could remove toolbar item.");
    syncIsInToolbar();
    reSync();
    if (!isWritten) return tellWritingProblem(*this, SessionList::ToolbarItems);
    remember(*this, std::move(change));
    tell(*this, NSLocalizedString("Removed from the places.", nil), Offer::Undo);
    quitFinderAction_(sender);
}

void AppController::quitFinderAction_(id const&) const {
    if (*this == nil) return;
    if (!quitProcess(bodyOf(*this)->_lookUpFinder(), bodyOf(*this)->_pause)) {
        report("Could not quit Finder.");
        return;
    }
    bool const isLaunched =
        NSWorkspace::sharedWorkspace()
            .launchAppWithBundleIdentifier_options_additionalEventParamDescriptor_launchIdentifier_(
                FinderIdentifier, NSWorkspaceLaunchDefault, NSAppleEventDescriptor::nullDescriptor(), {});
    if (!isLaunched) report("Could not re-launch Finder.");
}

} // namespace framekeeper
