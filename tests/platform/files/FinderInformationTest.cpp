#include "platform/files/FinderInformation.h"
#include "platform/files/ExtendedAttributes.h"
#include "tests/support/FinderInformation.h"
#include "tests/support/TemporaryFolder.h"
#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac::test {
namespace {

FinderInformation informationFrom(std::string_view first) {
    FinderInformation information;
    for (std::size_t index = 0; index < first.size(); ++index)
        information.bytes[index] = static_cast<std::byte>(first[index]);
    return information;
}

TEST(FinderInformation, HoldsTypeCreatorFlagsAndLabel) {
    FinderInformation information = informationFrom("TEXTttxt\x44\x0A");
    EXPECT_EQ(information.fileType(), OSType("TEXT"));
    EXPECT_EQ(information.fileCreator(), OSType("ttxt"));
    EXPECT_EQ(information.finderFlags(), 0x440A);
    EXPECT_EQ(information.labelIndex(), 5);
    information.setFinderFlags(0x8100);
    EXPECT_EQ(information, informationFrom(std::string_view("TEXTttxt\x81\0", 10)));
    EXPECT_EQ(information.labelIndex(), 0);
}

TEST(FinderInformation, IsThirtyTwoBytes) {
    std::array<std::byte, 33> bytes{};
    bytes[31] = std::byte{7};
    EXPECT_EQ(finderInformationFromBytes(std::span(bytes).first(32))->bytes[31], std::byte{7});
    EXPECT_FALSE(finderInformationFromBytes(bytes));
    EXPECT_FALSE(finderInformationFromBytes(std::span(bytes).first(31)));
    EXPECT_FALSE(finderInformationFromBytes({}));
}

TEST(FinderInformation, IsKeptWithTheItem) {
    TemporaryFolder const folder;
    FinderInformation const information = informationFrom("TEXTttxt\x44\x0A");
    for (std::string const& item : {folder.makeFile("file", ""), folder.makeFolder("folder")}) {
        EXPECT_EQ(readFinderInformation(item), FinderInformation());
        EXPECT_TRUE(writeFinderInformation(item, information));
        EXPECT_EQ(readFinderInformation(item), information);
        EXPECT_EQ(::getxattr(item.c_str(), "user.com.apple.FinderInfo", nullptr, 0), 32);
        EXPECT_TRUE(writeFinderInformation(item, FinderInformation()));
        EXPECT_EQ(::getxattr(item.c_str(), "user.com.apple.FinderInfo", nullptr, 0), -1);
        EXPECT_TRUE(writeFinderInformation(item, FinderInformation()));
    }
}

TEST(FinderInformation, OfAnotherSizeIsNone) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    for (std::size_t const size : {1, 31, 33, 1000}) {
        std::string const bytes(size, 'x');
        ASSERT_EQ(::setxattr(file.c_str(), "user.com.apple.FinderInfo", bytes.data(), bytes.size(), 0), 0);
        EXPECT_EQ(readFinderInformation(file), FinderInformation()) << size;
    }
}

TEST(FinderInformation, OfALinkIsNone) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    ASSERT_EQ(::symlink("file", folder.path("link").c_str()), 0);
    ASSERT_TRUE(writeFinderInformation(file, informationFrom("TEXT")));
    EXPECT_EQ(readFinderInformation(folder.path("link")), FinderInformation());
    Result<OpenItem> const link = openItemAtPath(folder.path("link"), LinkAtEnd::IsNotFollowed);
    Result<void> const written = mac::writeFinderInformation(link.value(), informationFrom("TEXT"));
    ASSERT_FALSE(written.isDone());
    EXPECT_TRUE(written.problem().is(EPERM));
}

TEST(FinderInformation, OfNothingCannotBeRead) {
    TemporaryFolder const folder;
    EXPECT_FALSE(readFinderInformation(folder.path("none")));
    EXPECT_FALSE(writeFinderInformation(folder.path("none"), informationFrom("TEXT")));
}

} // namespace
} // namespace mac::test
