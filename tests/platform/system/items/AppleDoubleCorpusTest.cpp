#include "fuzz/Trials.h"
#include "tests/support/Corpus.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(AppleDoubleCorpus, Holds) { expectNoComplaints("AppleDoubleFuzz", &fuzz::complaintAboutAppleDouble); }

} // namespace mac::test
