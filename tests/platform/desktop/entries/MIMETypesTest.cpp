#include "platform/desktop/entries/MIMETypes.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

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

TEST(MIMETypes, OfItemsAreThoseOfNamesAndFirstBytes) {
    TemporaryFolder const folder;
    std::string const page = folder.makeFile("page", "%PDF-1.4");
    EXPECT_EQ(mimeTypeOfItem(page, LinkAtEnd::IsNotFollowed), "application/pdf");
    ASSERT_EQ(::symlink("page", folder.path("link").c_str()), 0);
    EXPECT_EQ(mimeTypeOfItem(folder.path("link"), LinkAtEnd::IsFollowed), "application/pdf");
    EXPECT_EQ(mimeTypeOfItem(folder.path("link"), LinkAtEnd::IsNotFollowed), mimeTypeOfNameAndBytes("link", ""));
    ASSERT_EQ(::mkfifo(folder.path("pipe.txt").c_str(), 0600), 0);
    EXPECT_EQ(mimeTypeOfItem(folder.path("pipe.txt"), LinkAtEnd::IsFollowed), "text/plain") << "it is never opened";
}

TEST(MIMETypes, AreListedWithAllThatTheyAreCasesOf) {
    EXPECT_EQ(mimeTypeAndAncestors("text/x-tex"), (Names{"text/x-tex", "text/plain", "application/octet-stream"}));
    EXPECT_EQ(mimeTypeAndAncestors("application/x-nobody"), Names{"application/x-nobody"});
}

} // namespace
} // namespace mac::test
