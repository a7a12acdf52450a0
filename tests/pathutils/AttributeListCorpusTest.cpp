#include "fuzz/AttributeListRoundTrip.h"
#include "tests/support/Corpus.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(AttributeListCorpus, Holds) {
    TemporaryFolder const home;
    std::string const item = home.makeFile("item", "");
    expectNoComplaints("AttributeListFuzz", [&](std::span<std::byte const> bytes) {
        return fuzz::complaintAboutAttributeList(item, bytes);
    });
}

} // namespace mac::test
