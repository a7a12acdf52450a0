#include "app/DetailFacts.h"
#include "platform/files/volumes/Volumes.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "tests/app/Controller.h"
#include "tests/support/Companion.h"
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

TEST(DetailFacts, AreReadFromTheDisk) {
    TemporaryFolder const folder;
    DiskFacts const facts = diskFactsOf(folder.path());
    ASSERT_FALSE(facts.modified == nil);
    EXPECT_LT(facts.modified.timeIntervalSinceNow(), 60);
    EXPECT_GT(facts.modified.timeIntervalSinceNow(), -3600);
    EXPECT_EQ(text(facts.volumePath).substr(0, 1), "/");
}

// A name of another system's making says nothing to the user of this one; the mount point does.
TEST(DetailFacts, NameTheStartupVolumeByItsLabelAlone) {
    DiskFacts const facts = diskFactsOf("/");
    EXPECT_EQ(text(facts.volumePath), "/");
    bool const hasLabel = startupVolumeName() != UnlabeledStartupVolumeName;
    EXPECT_EQ(facts.volumeName != nil, hasLabel);
}

TEST(DetailFacts, AreUnknownForAMissingCopy) {
    TemporaryFolder const folder;
    DiskFacts const facts = diskFactsOf(folder.path("missing"));
    EXPECT_TRUE(facts.created == nil);
    EXPECT_TRUE(facts.modified == nil);
    EXPECT_TRUE(facts.volumePath == nil);
}

TEST(DetailFacts, OfTheSessionAreNoneForARecordWithoutAProcessAnEntryOrAPlace) {
    SessionFacts const none = sessionFactsOf(nil);
    EXPECT_FALSE(none.process.has_value());
    SessionFacts const facts =
        sessionFactsOf(NSDictionary::dictionaryWithObjectsAndKeys_({"/a/Mirror Frame.app", "path"}));
    EXPECT_FALSE(facts.process.has_value());
    EXPECT_TRUE(facts.program == nil);
    EXPECT_TRUE(facts.loginItemFile == nil);
    EXPECT_TRUE(facts.placeFile == nil);
}

} // namespace
} // namespace framekeeper::test
