#pragma once

#include "app/AppController.h"
#include "app/DetailFacts.h"

namespace framekeeper {

// What is known of the one selected copy while the window shows its details. The key "values" can be observed: the
// dictionary of detailValues, replaced whole. The disk is read in threads, which another selection stops. Main thread.
class CopyDetails : public Handle<CopyDetails, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Follows the controller's selection and its panes; does not keep it alive.
    static CopyDetails of(AppController const& controller);

    NSDictionary values() const;

    // Looks for the other copies that are the same byte for byte, one after the other.
    void compare_(id const& sender) const;
    // Keeps what was found so far.
    void stopComparing_(id const& sender) const;

    // Show the thing in the file browser: the folder where the volume is mounted, the program that the process runs,
    // the file of the login item, the file of the place. A beep if there is none or it could not be shown.
    void revealVolume_(id const& sender) const;
    void revealProcess_(id const& sender) const;
    void revealLoginItem_(id const& sender) const;
    void revealPlace_(id const& sender) const;
};

} // namespace framekeeper
