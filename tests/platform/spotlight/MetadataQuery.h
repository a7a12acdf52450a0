#pragma once

#include "platform/foundation/collections/NSSet.h"
#include "platform/spotlight/NSMetadataQuery.h"
#include "tests/platform/spotlight/QueryRecorder.h"
#include "tests/support/RunUntil.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace mac::test {

// For tests of a query for copies of the companion on a computer that is one folder, with a recorder of its
// notifications.
class MetadataQuery : public testing::Test {
public:
    void SetUp() override {
        ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", folder.path().c_str(), 1);
        query.setPredicate_(NSPredicate::predicateWithFormat_("%K = %@ AND %K = %@", kMDItemKind, "Application",
                                                              kMDItemFSName, "Mirror Frame.app"));
        query.setSearchScopes_(NSArray::arrayWithObject_(NSMetadataQueryLocalComputerScope));
        query.setNotificationBatchingInterval_(0.02);
        NSNotificationCenter::defaultCenter().addObserver_selector_name_object_(recorder, "take:", nil, query);
    }
    void TearDown() override {
        query.stopQuery();
        ::unsetenv("FRAMEKEEPER_LOCAL_COMPUTER");
    }

    std::vector<std::string> const& names() const { return bodyOf(recorder)->names; }
    bool runUntilNamed(char const* name, std::size_t times = 1) const {
        return runUntil(
            [&] { return static_cast<std::size_t>(std::ranges::count(names(), std::string(name))) >= times; });
    }
    // Runs the loop for a moment; the walk's finds are queued meanwhile.
    static void runForAMoment() {
        NSRunLoop::currentRunLoop().runUntilDate_(NSDate::dateWithTimeIntervalSinceNow_(0.1));
    }
    bool gather() const { return query.startQuery() && runUntilNamed(NSMetadataQueryDidFinishGatheringNotification); }
    NSSet foundPaths() const { return NSSet::setWithArray_(as<NSArray>(query.results().valueForKey_(kMDItemPath))); }
    static NSString string(std::string const& bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

    TemporaryFolder folder;
    NSMetadataQuery query = NSMetadataQuery::alloc().init();
    QueryRecorder recorder = adopt<QueryRecorder>();
};

} // namespace mac::test
