#include "benchmarks/StartUpRun.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/running/NSNotificationCenter.h"
#include "platform/spotlight/NSMetadataQuery.h"
#include <QCoreApplication>
#include <QTimer>

// Linked into the program: tells the memory that the process holds when the search has ended and its window has been
// painted, and ends the process.

namespace {

using namespace mac;

class SearchEnd : public Handle<SearchEnd, NSObject> {
public:
    class Body : public ObjectBody {};
    using Handle::Handle;
    static ClassDescription describeClass() {
        return {
            .name = "SearchEnd", .superclass = classOf<NSObject>(), .methods = {method<&SearchEnd::take_>("take:")}};
    }
    // Long enough after the last rows for them to be painted.
    void take_(NSNotification const&) const { QTimer::singleShot(200, &benchmarks::tellMemoryAndEnd); }
};

void watchForTheEndOfTheSearch() {
    static SearchEnd const watch = adopt<SearchEnd>();
    NSNotificationCenter::defaultCenter().addObserver_selector_name_object_(
        watch, "take:", NSMetadataQueryDidFinishGatheringNotification, nil);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watchForTheEndOfTheSearch)
