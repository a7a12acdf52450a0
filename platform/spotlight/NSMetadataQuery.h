#pragma once

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/predicates/NSPredicate.h"
#include "platform/foundation/text/NSString.h"
#include "platform/spotlight/NSMetadataItem.h"

namespace mac {

// All local volumes of this computer.
inline constexpr char NSMetadataQueryLocalComputerScope[] = "kMDQueryScopeComputer";

inline constexpr char NSMetadataQueryDidStartGatheringNotification[] = "NSMetadataQueryDidStartGatheringNotification";
inline constexpr char NSMetadataQueryGatheringProgressNotification[] = "NSMetadataQueryGatheringProgressNotification";
inline constexpr char NSMetadataQueryDidFinishGatheringNotification[] = "NSMetadataQueryDidFinishGatheringNotification";
inline constexpr char NSMetadataQueryDidUpdateNotification[] = "NSMetadataQueryDidUpdateNotification";

// A search for items by their attributes, whose results stay up to date after the first pass. It posts its
// notifications, with itself as the object, on the main thread's run loop: start of gathering, progress, end of
// gathering, and updates from then on. Results of an earlier search that were looked at again may be there when the
// start is told. Main thread; a nil query answers nil, 0 or false.
//
// Linux: the items are application bundles (folders named *.app) found by a walk over the volumes, not by an index.
class NSMetadataQuery : public Handle<NSMetadataQuery, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    NSMetadataQuery init() const;

    NSPredicate predicate() const;
    void setPredicate_(NSPredicate const& predicate) const;
    // Scope constants, or paths of folders as strings.
    NSArray searchScopes() const;
    void setSearchScopes_(NSArray const& scopes) const;
    // The longest time between a find and the notification that tells it, in seconds; 1 unless set.
    NSTimeInterval notificationBatchingInterval() const;
    void setNotificationBatchingInterval_(NSTimeInterval interval) const;

    // Linux: whether the results stay as they are once gathering has ended, for the next start: to watch the folders
    // around very many finds takes as long as to find them. What was found since the last notification is then taken in
    // without a break. False unless set.
    bool endsWithGathering() const;
    void setEndsWithGathering_(bool ends) const;

    // Begins to gather. False without a predicate, if the query runs already, and if no scope names a place to search.
    // A new start clears the results.
    bool startQuery() const;
    // Ends gathering and updates; the results stay as they are.
    void stopQuery() const;
    // Linux: waits until what a gathering that has ended read is kept for the next one, which stopping would cut short.
    // False if that takes longer, in seconds: it is kept on a disk, which may not answer.
    bool waitUntilRemembered(NSTimeInterval longest) const;
    bool isStarted() const;
    bool isGathering() const;
    bool isStopped() const;

    // While updates are disabled, the results stay as they are; calls nest.
    void disableUpdates() const;
    void enableUpdates() const;

    NSUInteger resultCount() const;
    // The result at the index, which stays valid until control returns to the run loop. Raises NSRangeException past
    // the end.
    NSMetadataItem resultAtIndex_(NSUInteger index) const;
    NSUInteger indexOfResult_(NSMetadataItem const& result) const;
    NSArray results() const;

    // Linux: how many folders the last gathering could not read. Keys "isGathering", "unreadableFolderCount" and
    // "unreadableFolders" can be observed.
    NSUInteger unreadableFolderCount() const;
    // Linux: the folders that could not be read, at most the first 1,000, as dictionaries with the strings "path" and
    // "reason", which is a text for people.
    NSArray unreadableFolders() const;
};

}
