#include "fuzz/Trials.h"
#include "tests/support/Corpus.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(TextCorpus, OfEncodingsHolds) { expectNoComplaints("EncodingFuzz", &fuzz::complaintAboutEncoding); }
TEST(TextCorpus, OfFormatsHolds) { expectNoComplaints("FormatFuzz", &fuzz::complaintAboutFormat); }
TEST(TextCorpus, OfNumbersHolds) { expectNoComplaints("NumberReadingFuzz", &fuzz::complaintAboutNumbers); }
TEST(TextCorpus, OfURLsHolds) { expectNoComplaints("URLComponentsFuzz", &fuzz::complaintAboutURL); }

} // namespace mac::test
