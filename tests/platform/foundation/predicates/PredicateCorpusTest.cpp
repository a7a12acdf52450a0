#include "fuzz/Trials.h"
#include "tests/support/Corpus.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(PredicateCorpus, Holds) { expectNoComplaints("PredicateFuzz", &fuzz::complaintAboutPredicate); }

} // namespace mac::test
