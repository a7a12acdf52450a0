#include "app/ScanChanges.h"
#include "app/AppControllerBody.h"
#include "app/RecordBuilding.h"
#include "platform/appkit/arrangement/KeyPathObserver.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/Weak.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include <utility>
#include <vector>

namespace framekeeper {

namespace {

// The most paths that the main thread looks at before it returns to the run loop.
constexpr std::size_t MostLooksInATurn = 256;

// The trash names a folder with a slash at its end, which a query's results lack.
bool holdsPath(NSSet const& paths, NSString const& path) {
    return paths.containsObject_(path) || paths.containsObject_(path.stringByAppendingString_("/"));
}

NSMutableSet pathsOfResults(NSArray const& results) {
    NSMutableSet const paths = NSMutableSet::set();
    for (id const& result : results)
        paths.addObject_(as<NSMetadataItem>(result).valueForAttribute_(kMDItemPath));
    return paths;
}

// Some paths, and which of them lead to a copy as far as they were looked at.
class LookedAtPaths {
public:
    // Keeps the answers of paths that stay.
    void replace(std::vector<NSString> paths) {
        NSMutableDictionary const kept = NSMutableDictionary::dictionary();
        m_pending.clear();
        m_count = paths.size();
        for (NSString& path : paths) {
            id const answer = m_answers.objectForKey_(path);
            if (answer == nil)
                m_pending.push_back(std::move(path));
            else
                kept.setObject_forKey_(answer, path);
        }
        m_answers = kept;
        m_copies = 0;
        for (id const& answer : m_answers.allValues())
            if (as<NSNumber>(answer).boolValue()) ++m_copies;
    }
    // Looks at some more, at most at as many as the number says, and lessens it.
    void look(std::size_t& most) {
        for (; most > 0 && !m_pending.empty(); --most) {
            bool const isCopy = isCompanion(lookAtBundle(m_pending.back()));
            m_answers.setObject_forKey_(NSNumber::numberWithBool_(BOOL(isCopy)), m_pending.back());
            m_pending.pop_back();
            if (isCopy) ++m_copies;
        }
    }
    void forget() { *this = {}; }
    // The next replacement asks again for those that lead to no copy. Not while some wait, which otherwise might never
    // be looked at.
    void forgetOthers() {
        if (!isDone()) return;
        NSMutableDictionary const kept = NSMutableDictionary::dictionary();
        for (id const& path : m_answers.allKeys())
            if (id const answer = m_answers.objectForKey_(path); as<NSNumber>(answer).boolValue())
                kept.setObject_forKey_(answer, path);
        m_answers = kept;
    }

    bool isDone() const { return m_pending.empty(); }
    NSUInteger copies() const { return static_cast<NSUInteger>(m_copies); }
    NSUInteger others() const { return static_cast<NSUInteger>(m_count - m_copies); }

private:
    std::vector<NSString> m_pending{};
    // Numbers by path.
    NSMutableDictionary m_answers = NSMutableDictionary::dictionary();
    std::size_t m_count{0};
    std::size_t m_copies{0};
};

} // namespace

class ScanChanges::Body : public ObjectBody {
public:
    explicit Body(AppController const& followed)
        : controller(followed), paths(followed, "paths", [this] {
              if (follows) lookAgain();
          }) {}

    void lookAgain();
    void lookOn();
    void set(NSUInteger newOnes, NSUInteger goneOnes);

    Weak<AppController> controller;
    // Results that the inventory does not know, and paths of the inventory that are not among the results. The latter
    // are looked at, since an action may have moved a copy to a folder that the query does not watch.
    LookedAtPaths unknown;
    LookedAtPaths missing;
    NSUInteger newCopies{0};
    NSUInteger goneCopies{0};
    // From the first update on, until the next scan.
    bool follows{false};
    // The run loop is going to look on.
    bool looksLater{false};
    // An action of the window may be what made the difference, or takes it away.
    KeyPathObserver paths;
};

void ScanChanges::Body::lookAgain() {
    AppController const followed = controller.load();
    NSSet const known = followed.isOnHarddiskPaths();
    if (followed == nil || known == nil) return;
    // The inventory is of another time than its paths until the last step, which tells it.
    if (bodyOf(followed)->_sync) return;
    NSSet const found = pathsOfResults(followed.query().results());
    std::vector<NSString> unknownPaths;
    for (id const& path : found.allObjects())
        if (!holdsPath(known, as<NSString>(path))) unknownPaths.push_back(as<NSString>(path));
    std::vector<NSString> missingPaths;
    for (id const& path : known.allObjects())
        if (!found.containsObject_(path)) missingPaths.push_back(as<NSString>(path));
    unknown.replace(std::move(unknownPaths));
    missing.replace(std::move(missingPaths));
    if (!looksLater) lookOn();
}

void ScanChanges::Body::lookOn() {
    std::size_t most = MostLooksInATurn;
    unknown.look(most);
    missing.look(most);
    if (unknown.isDone() && missing.isDone()) return set(unknown.copies(), missing.others());
    looksLater = true;
    Weak<ScanChanges> const later(uncheckedCast<ScanChanges>(id::retain(this)));
    performOnMainRunLoop([later] {
        ScanChanges const alive = later.load();
        if (alive == nil) return;
        bodyOf(alive)->looksLater = false;
        if (bodyOf(alive)->follows) bodyOf(alive)->lookOn();
    });
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
    bodyOf(*this)->unknown.forget();
    bodyOf(*this)->missing.forget();
    bodyOf(*this)->set(0, 0);
}

void ScanChanges::resultsChanged_(NSNotification const&) const {
    if (*this == nil) return;
    bodyOf(*this)->follows = true;
    // A bundle may appear before its information file is written.
    bodyOf(*this)->unknown.forgetOthers();
    bodyOf(*this)->lookAgain();
}

} // namespace framekeeper
