#include "app/AppController.h"
#include "app/IconSwap.h"
#include "app/Undo.h"
#include "pathutils/FileOperations.h"
#include "platform/foundation/running/Beep.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "scripting/ProcessesAndFinder.h"

namespace framekeeper {

namespace {

// The message is the format: a percent sign in it asks for an argument, and there is none.
void fail(NSString const& message) {
    NSBeep();
    NSLog(message);
}

// A message of the file manager in the language of the window: what lies behind its last colon is a reason, which may
// be one of the system's.
NSString localizedMessage(NSString const& message) {
    constexpr char separator[] = ": ";
    NSRange const colon = message.rangeOfString_options_(separator, NSBackwardsSearch);
    if (colon.location == NSNotFound) return NSLocalizedString(message, nil);
    NSUInteger const reason = colon.location + colon.length;
    return message.substringToIndex_(reason).stringByAppendingString_(
        NSLocalizedString(message.substringFromIndex_(reason), nil));
}

} // namespace

std::optional<NSString> AppController::onlySelectedPath() const {
    NSArray const selected = pathsArrayController().selectedObjects();
    if (selected.count() != 1) return std::nullopt;
    return as<NSString>(selected.objectAtIndex_(0).valueForKey_("path"));
}

void AppController::revealAction_(id const&) const {
    if (*this == nil) return;
    NSArray const paths = as<NSArray>(pathsArrayController().selectedObjects().valueForKey_("path"));
    if (!pxRevealItemsInFinder(paths.objectEnumerator())) NSBeep();
}

void AppController::trashAction_(id const&) const {
    std::optional<NSString> const selected = onlySelectedPath();
    if (!selected) return;
    NSString const& path = *selected;
    bool const wasOnHarddisk = isOnHarddiskPaths().containsObject_(path);
    NSString const pathInTrash = pxMoveToTrash(path);
    if (pathInTrash == nil) return fail("Could not move to trash.");
    isOnHarddiskPaths().removeObject_(path);
    // As the script tells it: a folder's path ends with a slash until the next search tells the path without one.
    isOnHarddiskPaths().addObject_(pathInTrash);
    rememberTrashing(*this, path, pathInTrash, wasOnHarddisk ? WasOnHarddisk::Yes : WasOnHarddisk::No);
    reSync();
}

void AppController::putBackAction_(id const&) const {
    NSString const path = onlySelectedPath().value_or(nil);
    if (path == nil) return;
    Result<std::string, TrashProblem> const back = putBackItemAtPath(path.fileSystemRepresentation().value_or(""));
    if (!back.hasValue()) {
        NSBeep();
        return tell(*this, NSString::stringWithUTF8String_(back.problem().localizedText().c_str()), Offer::Nothing);
    }
    NSString const former = NSString::stringWithFileSystemRepresentation_(back.value());
    isOnHarddiskPaths().removeObject_(path);
    isOnHarddiskPaths().addObject_(former);
    forgetTrashing(*this, path);
    reSync();
    selectIfNothingIs(*this, former);
    tell(*this, NSLocalizedString("Put back.", nil), Offer::Nothing);
}

void AppController::deleteAction_(id const&) const {
    NSString const path = onlySelectedPath().value_or(nil);
    if (path == nil) return;
    NSString const message = pxRemoveFile2(path);
    if (message != nil) {
        fail(message);
        NSString const text = NSString::stringWithFormat_(NSLocalizedString("The copy could not be deleted: %@", nil),
                                                          localizedMessage(message));
        return tell(*this, text, Offer::Nothing);
    }
    isOnHarddiskPaths().removeObject_(path);
    reSync();
    tell(*this, NSLocalizedString("Deleted for good.", nil), Offer::Nothing);
}

void AppController::swapIconAction_(id const&) const {
    std::optional<NSString> const selected = onlySelectedPath();
    if (!selected) return;
    NSString const& path = *selected;
    IconSwap const swap = swapIcon(path);
    if (swap.isWritten()) remember(*this, SwappedIcon{path, swap.formerName, swap.newName});
    if (swap.failure != nil) return fail(swap.failure);
    if (!KRAPathRevealInFinder(path)) return fail("Could not reveal in Finder.");
    tell(*this, NSLocalizedString("Icon swapped.", nil), Offer::Undo);
}

} // namespace framekeeper
