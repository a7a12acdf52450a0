#pragma once

#include "app/AppController.h"

namespace framekeeper {

// How the copies on the disk differ from those that the last scan found, told by the query's live updates. The
// inventory does not follow those updates; what the window's own actions change is no difference. Keys "newCopies",
// "goneCopies", "isAny" and "text" can be observed. Main thread.
class ScanChanges : public Handle<ScanChanges, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Follows the query that the controller has now; keeps neither alive.
    static ScanChanges of(AppController const& controller);

    // Copies on the disk that the inventory does not know, and those of it that are no longer there.
    NSUInteger newCopies() const;
    NSUInteger goneCopies() const;
    bool isAny() const;
    // "1 new, 2 gone since the scan."; empty without a difference.
    NSString text() const;

    // The query's notifications.
    void scanBegan_(NSNotification const& notification) const;
    void resultsChanged_(NSNotification const& notification) const;
};

} // namespace framekeeper
