#include "app/ScanChanges.h"
#include "app/RecordBuilding.h"
#include "platform/appkit/arrangement/KeyPathObserver.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/Weak.h"
#include "platform/foundation/text/NSLocalizedString.h"

namespace framekeeper {

class ScanChanges::Body : public ObjectBody {
public:
    explicit Body(AppController const& followed)
        : controller(followed), paths(followed, "paths", [this] {
              if (follows) lookAgain();
          }) {}

    void lookAgain();
    void set(NSUInteger newOnes, NSUInteger goneOnes);

    Weak<AppController> controller;
    NSUInteger newCopies{0};
    NSUInteger goneCopies{0};
    // From the first update on, until the next scan.
    bool follows{false};
    // An action of the window may be what made the difference, or takes it away.
    KeyPathObserver paths;
};

namespace {

// The trash names a folder with a slash at its end, which a query's results lack.
bool holdsPath(NSSet const& paths, NSString const& path) {
    return paths.containsObject_(path) || paths.containsObject_(path.stringByAppendingString_("/"));
}

NSString pathOfResult(id const& result) {
    return as<NSString>(as<NSMetadataItem>(result).valueForAttribute_(kMDItemPath));
}

NSUInteger countNew(NSArray const& results, NSSet const& known) {
    NSUInteger count = 0;
    for (id const& result : results) {
        NSString const path = pathOfResult(result);
        if (!holdsPath(known, path) && isCompanion(lookAtBundle(path))) ++count;
    }
    return count;
}

NSUInteger countGone(NSArray const& results, NSSet const& known) {
    NSMutableSet const there = NSMutableSet::set();
    for (id const& result : results)
        there.addObject_(pathOfResult(result));
    NSUInteger count = 0;
    for (id const& element : known.allObjects()) {
        NSString const path = as<NSString>(element);
        // A copy that an action moved may lie where the query watches nothing.
        if (!there.containsObject_(path) && !isCompanion(lookAtBundle(path))) ++count;
    }
    return count;
}

} // namespace

void ScanChanges::Body::lookAgain() {
    AppController const followed = controller.load();
    NSSet const known = followed.isOnHarddiskPaths();
    if (followed == nil || known == nil) return;
    NSArray const results = followed.query().results();
    set(countNew(results, known), countGone(results, known));
}

void ScanChanges::Body::set(NSUInteger newOnes, NSUInteger goneOnes) {
    if (newOnes == newCopies && goneOnes == goneCopies) return;
    ScanChanges const self = uncheckedCast<ScanChanges>(id::retain(this));
    KeyChange const newChange(self, "newCopies");
    KeyChange const goneChange(self, "goneCopies");
    KeyChange const anyChange(self, "isAny");
    KeyChange const textChange(self, "text");
    newCopies = newOnes;
    goneCopies = goneOnes;
}

ClassDescription ScanChanges::describeClass() {
    return {
        .name = "ScanChanges",
        .superclass = classOf<NSObject>(),
        .methods =
            {
                method<&ScanChanges::scanBegan_>("scanBegan:"),
                method<&ScanChanges::resultsChanged_>("resultsChanged:"),
            },
        .properties =
            {
                readOnlyProperty<&ScanChanges::newCopies>("newCopies"),
                readOnlyProperty<&ScanChanges::goneCopies>("goneCopies"),
                readOnlyProperty<&ScanChanges::isAny>("isAny"),
                readOnlyProperty<&ScanChanges::text>("text"),
            },
    };
}

ScanChanges ScanChanges::of(AppController const& controller) {
    if (controller == nil) return nil;
    ScanChanges const changes = adopt<ScanChanges>(controller);
    NSNotificationCenter const center = NSNotificationCenter::defaultCenter();
    center.addObserver_selector_name_object_(changes, "scanBegan:", NSMetadataQueryDidStartGatheringNotification,
                                             controller.query());
    center.addObserver_selector_name_object_(changes, "resultsChanged:", NSMetadataQueryDidUpdateNotification,
                                             controller.query());
    return changes;
}

NSUInteger ScanChanges::newCopies() const { return *this == nil ? 0 : bodyOf(*this)->newCopies; }

NSUInteger ScanChanges::goneCopies() const { return *this == nil ? 0 : bodyOf(*this)->goneCopies; }

bool ScanChanges::isAny() const { return newCopies() > 0 || goneCopies() > 0; }

NSString ScanChanges::text() const {
    if (!isAny()) return "";
    NSString const newOnes = localizedCount(newCopies(), "%n new", "%n new", "Copies that appeared since the scan");
    NSString const goneOnes = localizedCount(goneCopies(), "%n gone", "%n gone", "Copies that went since the scan");
    if (newCopies() > 0 && goneCopies() > 0)
        return NSString::stringWithFormat_(
            NSLocalizedString("%@, %@ since the scan.", "Such as: 1 new, 2 gone since the scan."), newOnes, goneOnes);
    return NSString::stringWithFormat_(NSLocalizedString("%@ since the scan.", "Such as: 2 gone since the scan."),
                                       newCopies() > 0 ? newOnes : goneOnes);
}

void ScanChanges::scanBegan_(NSNotification const&) const {
    if (*this == nil) return;
    bodyOf(*this)->follows = false;
    bodyOf(*this)->set(0, 0);
}

void ScanChanges::resultsChanged_(NSNotification const&) const {
    if (*this == nil) return;
    bodyOf(*this)->follows = true;
    bodyOf(*this)->lookAgain();
}

} // namespace framekeeper
