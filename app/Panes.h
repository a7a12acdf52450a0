#pragma once

#include "platform/foundation/objects/Class.h"

namespace framekeeper {

using namespace mac;

// Which panes of the window are shown beside the table. Keys "showsDetails" and "showsUnreadableFolders" can be
// observed. Main thread.
class Panes : public Handle<Panes, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static Panes make();

    // Remembered in the user's defaults under "ShowsDetails".
    bool showsDetails() const;
    // The folders that could not be read; hidden at each start.
    bool showsUnreadableFolders() const;

    void toggleDetails_(id const& sender) const;
    void toggleUnreadableFolders_(id const& sender) const;
};

} // namespace framekeeper
