#include "app/AppController.h"
#include "app/MembershipSources.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"

namespace framekeeper {

void AppController::queryDidStart_(NSNotification const&) const { syncQuery(); }

void AppController::queryGatheringProgress_(NSNotification const&) const { syncQuery(); }

void AppController::queryDidFinish_(NSNotification const&) const {}

void AppController::queryDidUpdate_(NSNotification const&) const {}

void AppController::syncQuery() const {
    syncIsOnHarddisk();
    reSync();
}

void AppController::syncIsOnHarddisk() const {
    NSMutableSet const found = NSMutableSet::set();
    NSUInteger const count = query().resultCount();
    for (NSUInteger index = 0; index < count; ++index) {
        NSString const path = as<NSString>(query().resultAtIndex_(index).valueForAttribute_(kMDItemPath));
        if (!NSFileManager::defaultManager().fileExistsAtPath_(path)) continue;
        if (NSBundle::bundleWithPath_(path).bundleIdentifier().isEqualToString_(CompanionIdentifier))
            found.addObject_(path);
    }
    setIsOnHarddiskPaths_(found);
}

void AppController::scanAction_(id const&) const {
    query().stopQuery();
    setPaths_(nil);
    syncMembershipSources(*this);
    startQuery();
}

void AppController::stopAction_(id const&) const { query().stopQuery(); }

} // namespace framekeeper
