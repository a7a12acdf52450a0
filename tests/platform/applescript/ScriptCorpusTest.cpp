#include "fuzz/Trials.h"
#include "tests/support/Corpus.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(ScriptCorpus, Holds) { expectNoComplaints("ScriptFuzz", &fuzz::complaintAboutScript); }

TEST(ScriptCorpus, OfDatesHolds) { expectNoComplaints("DateTextFuzz", &fuzz::complaintAboutDateText); }

} // namespace mac::test
