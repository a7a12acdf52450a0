#pragma once

#include "app/AppController.h"

namespace framekeeper {

using namespace mac;

// Which panes of the window are shown beside the table. Keys "showsDetails" and "showsUnreadableFolders" can be
// observed. Main thread.
class Panes : public Handle<Panes, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Follows the controller's query without keeping the controller alive; nil for nil.
    static Panes of(AppController const& controller);

    // Remembered in the user's defaults under "ShowsDetails".
    bool showsDetails() const;
    // The folders that could not be read; hidden at each start, and once a search has ended that could read all.
    bool showsUnreadableFolders() const;

    void toggleDetails_(id const& sender) const;
    void toggleUnreadableFolders_(id const& sender) const;
};

} // namespace framekeeper
