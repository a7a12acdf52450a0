#include "fuzz/Trials.h"
#include "tests/support/Corpus.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(ItemCorpus, OfBundlesHolds) { expectNoComplaints("BundleFuzz", &fuzz::complaintAboutBundle); }

TEST(ItemCorpus, OfContentTypesHolds) { expectNoComplaints("ContentTypeFuzz", &fuzz::complaintAboutContentType); }

TEST(ItemCorpus, OfDynamicTypesHolds) { expectNoComplaints("DynamicTypeFuzz", &fuzz::complaintAboutDynamicType); }

TEST(ItemCorpus, OfFinderInformationHolds) {
    expectNoComplaints("FinderInformationFuzz", &fuzz::complaintAboutFinderInformation);
}

} // namespace mac::test
