#include "platform/desktop/MIMETypes.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

TEST(MIMETypes, AreThoseOfNames) {
    EXPECT_EQ(mimeTypesOfName("a.png"), Names{"image/png"});
    EXPECT_EQ(mimeTypesOfName("\xFF.png"), Names{"image/png"});
    EXPECT_EQ(mimeTypesOfName("a"), Names());
    EXPECT_EQ(mimeTypesOfName(""), Names());
}

TEST(MIMETypes, AreThoseOfNamesAndBytes) {
    EXPECT_EQ(mimeTypeOfNameAndBytes("a.png", ""), "image/png");
    EXPECT_EQ(mimeTypeOfNameAndBytes("a", "%PDF-1.4"), "application/pdf");
    EXPECT_EQ(mimeTypeOfNameAndBytes("a", std::string_view("\0\1\2", 3)), "application/octet-stream");
}

// The database's own reader runs out of its file on such a name, which is no file's.
TEST(MIMETypes, OfANameWithANULAreThoseOfNoName) {
    std::string const name("x\0\x1A\xA0.t", 6);
    EXPECT_EQ(mimeTypesOfName(name), Names());
    EXPECT_EQ(mimeTypesOfName(std::string("a\0.png", 6)), Names());
    EXPECT_EQ(mimeTypeOfNameAndBytes(name, "%PDF-1.4"), "application/pdf");
}

TEST(MIMETypes, AreCasesOfOthersAndHaveOtherNames) {
    EXPECT_EQ(parentsOfMIMEType("text/x-tex"), Names{"text/plain"});
    EXPECT_EQ(parentsOfMIMEType("application/x-nobody"), Names());
    EXPECT_EQ(canonicalMIMEType("application/x-gzip"), "application/gzip");
    EXPECT_EQ(canonicalMIMEType("application/x-nobody"), "application/x-nobody");
}

} // namespace
} // namespace mac::test
