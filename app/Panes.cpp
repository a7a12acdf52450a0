#include "app/Panes.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/Method.h"
#include "platform/preferences/NSUserDefaults.h"

namespace framekeeper {

namespace {

constexpr char ShowsDetailsDefault[] = "ShowsDetails";

} // namespace

class Panes::Body : public ObjectBody {
public:
    bool showsDetails = NSUserDefaults::standardUserDefaults().boolForKey_(ShowsDetailsDefault);
    bool showsUnreadableFolders = false;
};

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

Panes Panes::make() { return adopt<Panes>(); }

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
    if (*this == nil) return;
    KeyChange const change(*this, "showsUnreadableFolders");
    bodyOf(*this)->showsUnreadableFolders = !showsUnreadableFolders();
}

} // namespace framekeeper
