#include "app/SessionLists.h"
#include "app/AppControllerBody.h"
#include "app/Undo.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/preferences/CFPreferences.h"
#include "platform/preferences/PreferenceDomains.h"

namespace framekeeper {

namespace {

// For people; nil if nothing failed. Holds paths, whose bytes need not be text.
NSString textOf(Result<void, Failure> const& outcome) {
    return outcome.isDone() ? NSString() : NSString::stringWithFileSystemRepresentation_(outcome.problem().reason);
}

} // namespace

ListRead listReadAnew(NSString const& domain, NSString const& key) {
    Result<void, Failure> const read = synchronizePreferences(domain, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
    id const items = CFPreferencesCopyValue(key, domain, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
    return {items == nil ? NSArray::array() : as<NSArray>(items), textOf(read)};
}

ListAccess accessTo(SessionList list) {
    if (list == SessionList::LoginItems)
        return {loginItemsReadAnew, &AppController::writeAllAutolaunchItems_, &AppController::syncIsAutolaunched};
    return {toolbarItemsReadAnew, &AppController::writeAllToolbarItems_, &AppController::syncIsInToolbar};
}

void keepReadingProblem(AppController const& controller, SessionList list, NSString const& problem) {
    AppController::Body& body = *bodyOf(controller);
    bool const isOfLoginItems = list == SessionList::LoginItems;
    NSString& kept = isOfLoginItems ? body._loginItemsProblem : body._placesProblem;
    if (problem == nil && kept == nil) return;
    {
        KeyChange const change(controller, isOfLoginItems ? NSString("loginItemsProblem") : NSString("placesProblem"));
        kept = problem;
    }
    if (problem == nil) return;
    NSMutableArray const lines = NSMutableArray::array();
    if (body._loginItemsProblem != nil)
        lines.addObject_(NSString::stringWithFormat_(NSLocalizedString("The login items could not be read: %@", nil),
                                                     body._loginItemsProblem));
    if (body._placesProblem != nil)
        lines.addObject_(NSString::stringWithFormat_(NSLocalizedString("The places could not be read: %@", nil),
                                                     body._placesProblem));
    tell(controller, lines.componentsJoinedByString_("; "), Offer::Nothing);
}

void tellWritingProblem(AppController const& controller, SessionList list) {
    NSString const problem = controller.writingProblem();
    if (problem == nil) return;
    NSString const format = list == SessionList::LoginItems
                                ? NSLocalizedString("The login items could not be changed: %@", nil)
                                : NSLocalizedString("The places could not be changed: %@", nil);
    tell(controller, NSString::stringWithFormat_(format, problem), Offer::Nothing);
}

bool writeList(AppController const& controller, NSString const& domain) {
    Result<void, Failure> const written =
        synchronizePreferences(domain, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
    bodyOf(controller)->_writingProblem = textOf(written);
    return written.isDone();
}

NSString AppController::writingProblem() const { return *this == nil ? NSString() : bodyOf(*this)->_writingProblem; }

NSString AppController::loginItemsProblem() const {
    return *this == nil ? NSString() : bodyOf(*this)->_loginItemsProblem;
}

NSString AppController::placesProblem() const { return *this == nil ? NSString() : bodyOf(*this)->_placesProblem; }

} // namespace framekeeper
