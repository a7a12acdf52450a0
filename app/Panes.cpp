#include "app/Panes.h"
#include "platform/appkit/arrangement/KeyPathObserver.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/Weak.h"
#include "platform/preferences/NSUserDefaults.h"

namespace framekeeper {

namespace {

constexpr char ShowsDetailsDefault[] = "ShowsDetails";

} // namespace

class Panes::Body : public ObjectBody {
public:
    explicit Body(AppController const& followed)
        : m_controller(followed), m_gathering(followed, "query.isGathering", [this] { followSearch(); }) {}

    void followSearch();
    void showUnreadableFolders(bool shows);

    bool showsDetails = NSUserDefaults::standardUserDefaults().boolForKey_(ShowsDetailsDefault);
    bool showsUnreadableFolders = false;

private:
    Weak<AppController> m_controller;
    KeyPathObserver m_gathering;
};

// While a search is under way the list stays as the user left it: it may end with the same folders. One that was
// stopped says nothing of them, and another one stops it first.
void Panes::Body::followSearch() {
    NSMetadataQuery const query = m_controller.load().query();
    bool const isOver = !query.isGathering() && !query.isStopped();
    if (isOver && query.unreadableFolderCount() == 0) showUnreadableFolders(false);
}

void Panes::Body::showUnreadableFolders(bool shows) {
    if (shows == showsUnreadableFolders) return;
    KeyChange const change(id::retain(this), "showsUnreadableFolders");
    showsUnreadableFolders = shows;
}

ClassDescription Panes::describeClass() {
    return {
        .name = "Panes",
        .superclass = classOf<NSObject>(),
        .methods =
            {
                method<&Panes::toggleDetails_>("toggleDetails:"),
                method<&Panes::toggleUnreadableFolders_>("toggleUnreadableFolders:"),
            },
        .properties =
            {
                readOnlyProperty<&Panes::showsDetails>("showsDetails"),
                readOnlyProperty<&Panes::showsUnreadableFolders>("showsUnreadableFolders"),
            },
    };
}

Panes Panes::of(AppController const& controller) { return controller == nil ? nil : adopt<Panes>(controller); }

bool Panes::showsDetails() const { return *this != nil && bodyOf(*this)->showsDetails; }

bool Panes::showsUnreadableFolders() const { return *this != nil && bodyOf(*this)->showsUnreadableFolders; }

void Panes::toggleDetails_(id const&) const {
    if (*this == nil) return;
    bool const shows = !showsDetails();
    {
        KeyChange const change(*this, "showsDetails");
        bodyOf(*this)->showsDetails = shows;
    }
    NSUserDefaults::standardUserDefaults().setBool_forKey_(BOOL(shows), ShowsDetailsDefault);
}

void Panes::toggleUnreadableFolders_(id const&) const {
    if (*this != nil) bodyOf(*this)->showUnreadableFolders(!showsUnreadableFolders());
}

} // namespace framekeeper
