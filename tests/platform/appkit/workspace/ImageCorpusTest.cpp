#include "fuzz/Trials.h"
#include "tests/support/Corpus.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(ImageCorpus, OfImagesHolds) { expectNoComplaints("ImageFuzz", &fuzz::complaintAboutImage); }

TEST(ImageCorpus, OfArchivedColorsHolds) {
    expectNoComplaints("ArchivedColorFuzz", &fuzz::complaintAboutArchivedColor);
}

} // namespace mac::test
