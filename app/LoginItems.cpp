#include "app/AppControllerBody.h"
#include "app/MembershipSources.h"
#include "app/Undo.h"
#include "pathutils/AliasesAndContents.h"
#include "platform/desktop/session/Session.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/Beep.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/preferences/CFPreferences.h"
#include "scripting/AppleScriptExecution.h"

namespace framekeeper {

namespace {

constexpr char LoginItemsKey[] = "AutoLaunchedApplicationDictionary";
constexpr char LoginItemsDomain[] = "loginwindow";

void beepAndLog(NSString const& text) {
    NSBeep();
    NSLog("%@", text);
}

bool isCopy(NSString const& path) {
    return path.length() > 0 && path.lastPathComponent().caseInsensitiveCompare_(CompanionFileName) == NSOrderedSame;
}

// The entry's path as it is spelled there; nil if the element is no entry with a path.
NSString pathInEntry(id const& entry) { return as<NSString>(as<NSDictionary>(entry).objectForKey_("Path")); }

// nil unless the entry names a copy of the companion.
NSString pathOfCopy(id const& entry) {
    NSString const path = pathInEntry(entry).stringByStandardizingPath();
    return isCopy(path) ? path : NSString();
}

// Without alias data the list of values and keys ends before them.
NSDictionary newLoginItem(NSString const& path) {
    return NSDictionary::dictionaryWithObjectsAndKeys_({NSNumber::numberWithBool_(NO), "Hide",
                                                        path.stringByAbbreviatingWithTildeInPath(), "Path",
                                                        pxAliasDataOfPath(path), "AliasData"});
}

} // namespace

ListRead loginItemsReadAnew() { return listReadAnew(LoginItemsDomain, LoginItemsKey); }

NSArray AppController::readAllAutolaunchItems() const {
    if (*this == nil) return nil;
    ListRead const read = loginItemsReadAnew();
    if (read.problem != nil) beepAndLog("Error: CFPreferencesSynchronize");
    keepReadingProblem(*this, SessionList::LoginItems, read.problem);
    return read.items;
}

bool AppController::writeAllAutolaunchItems_(NSArray const& items) const {
    if (*this == nil) return false;
    CFPreferencesSetValue(LoginItemsKey, items, LoginItemsDomain, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
    return writeList(*this, LoginItemsDomain);
}

NSDictionary AppController::autoLaunchedApplicationsAnyMirrorFrameEntry_(NSArray const& entries) const {
    if (*this == nil) return nil;
    for (id const& entry : entries) {
        if (isCopy(pathInEntry(entry))) return as<NSDictionary>(entry);
    }
    return nil;
}

bool AppController::hasAutoLaunchedApplicationsEntry_(NSArray const& entries) const {
    return autoLaunchedApplicationsAnyMirrorFrameEntry_(entries) != nil;
}

void AppController::syncIsAutolaunched() const {
    if (*this == nil) return;
    NSArray const items = readAllAutolaunchItems();
    setAllAutolaunchItems_(items);
    NSMutableSet const entries = NSMutableSet::set();
    for (id const& item : items) {
        NSString const path = pathOfCopy(item);
        if (path == nil) continue;
        entries.addObject_(NSDictionary::dictionaryWithObjectsAndKeys_({path, "path", item, "autolaunchItem"}));
    }
    setIsAutolaunchedPaths_(entries);
}

void AppController::addToAutoLaunchAction_(id const&) const {
    NSArray const selected = pathsArrayController().selectedObjects();
    if (selected.count() != 1) return;
    id const record = selected.objectAtIndex_(0);
    NSMutableArray const items = NSMutableArray::arrayWithArray_(allAutolaunchItems());
    NSMutableArray const copies = NSMutableArray::array();
    ListChange change{.list = SessionList::LoginItems};
    for (NSUInteger index = 0; index < items.count(); ++index) {
        if (pathOfCopy(items.objectAtIndex_(index)) == nil) continue;
        copies.addObject_(items.objectAtIndex_(index));
        change.removed.push_back(removedItem(items, index));
    }
    items.removeObjectsInArray_(copies);
    NSString const path = as<NSString>(record.valueForKey_("path"));
    bool const exists = as<NSNumber>(record.valueForKey_("exists")).boolValue() && path != nil;
    if (exists) items.addObject_(newLoginItem(path));
    bool const isWritten = exists && writeAllAutolaunchItems_(NSArray::arrayWithArray_(items));
    if (!isWritten) {
        beepAndLog("ERROR: Could not add as Login Item.");
        if (exists) tellWritingProblem(*this, SessionList::LoginItems);
        return;
    }
    syncIsAutolaunched();
    reSync();
    for (id const& entry : isAutolaunchedPaths().allObjects()) {
        bool const isNew = entry.valueForKey_("path").isEqual_(path.stringByStandardizingPath());
        if (isNew) change.added.push_back(entry.valueForKey_("autolaunchItem"));
    }
    remember(*this, std::move(change));
    tell(*this, NSLocalizedString("Added to the login items.", nil), Offer::Undo);
}

void AppController::unAutoLaunchAction_(id const&) const {
    NSArray const selected = pathsArrayController().selectedObjects();
    if (selected.count() != 1) return;
    id const item = selected.objectAtIndex_(0).valueForKey_("autolaunchItem");
    NSMutableArray const items = NSMutableArray::arrayWithArray_(allAutolaunchItems());
    NSUInteger const index = item == nil ? NSUInteger{NSNotFound} : items.indexOfObjectIdenticalTo_(item);
    if (index == NSNotFound) {
        beepAndLog("Item is not auto-launched.");
        return;
    }
    ListChange change{.list = SessionList::LoginItems, .removed = {removedItem(items, index)}};
    items.removeObjectAtIndex_(index);
    bool const isWritten = writeAllAutolaunchItems_(NSArray::arrayWithArray_(items));
    if (!isWritten) beepAndLog("Could remove auto-launch entry.");
    syncIsAutolaunched();
    reSync();
    if (!isWritten) return tellWritingProblem(*this, SessionList::LoginItems);
    remember(*this, std::move(change));
    tell(*this, NSLocalizedString("Removed from the login items.", nil), Offer::Undo);
}

void AppController::showAccountsAction_(id const&) const {
    if (*this == nil) return;
    pxExecuteAsAppleScript(
        NSString("tell application \"System Preferences\"\nactivate\nset current pane to pane \"Accounts\"\nend tell"));
}

NSString AppController::logOutObstacle() const {
    if (*this == nil) return nil;
    std::optional<NSString>& known = bodyOf(*this)->_logOutObstacle;
    if (known) return *known;
    std::optional<std::string> const obstacle = obstacleToLoggingOut();
    known = obstacle ? NSString::stringWithUTF8String_(obstacle->c_str()) : NSString();
    return *known;
}

void AppController::logOutAction_(id const&) const {
    if (*this == nil) return;
    pxExecuteAsAppleScript(NSString("tell application \"System Events\" to log out"));
}

} // namespace framekeeper
