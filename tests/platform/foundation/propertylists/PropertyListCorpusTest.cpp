#include "fuzz/Trials.h"
#include "tests/support/Corpus.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(PropertyListCorpus, OfXMLHolds) { expectNoComplaints("PropertyListXMLFuzz", &fuzz::complaintAboutXML); }
TEST(PropertyListCorpus, OfBinaryHolds) { expectNoComplaints("PropertyListBinaryFuzz", &fuzz::complaintAboutBinary); }
TEST(PropertyListCorpus, OfOldStyleHolds) {
    expectNoComplaints("PropertyListOldStyleFuzz", &fuzz::complaintAboutOldStyle);
}

} // namespace mac::test
