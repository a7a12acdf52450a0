#include "platform/system/items/AppleDouble.h"
#include "tests/platform/files/Attributes.h"
#include "tests/platform/system/LongFolder.h"
#include "tests/support/Commands.h"
#include "tests/support/DiskContents.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

TEST(ExtendedAttributes, AreWrittenReadListedAndRemoved) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "contents");
    EXPECT_TRUE(list(file).empty());
    EXPECT_EQ(set(file, "a", "1"), 0);
    EXPECT_EQ(set(file, "b", std::string("\0two", 4)), 0);
    EXPECT_EQ(get(file, "a"), "1");
    EXPECT_EQ(get(file, "b"), std::string("\0two", 4));
    Names names = list(file);
    std::ranges::sort(names);
    EXPECT_EQ(names, (Names{"a", "b"}));
    EXPECT_EQ(set(file, "a", "other"), 0);
    EXPECT_EQ(get(file, "a"), "other");
    EXPECT_EQ(removeAttribute(file, "a"), 0);
    EXPECT_EQ(list(file), Names{"b"});
    EXPECT_FALSE(isThere(folder.path("._file")));
}

TEST(ExtendedAttributes, BelongToFoldersToo) {
    TemporaryFolder const folder;
    std::string const inner = folder.makeFolder("inner");
    for (std::string const& path : {inner, inner + "/", inner + "//.", inner + "/../inner", inner + "/."}) {
        EXPECT_EQ(set(path, "a", path), 0) << path;
        EXPECT_EQ(get(inner, "a"), path);
    }
    ASSERT_EQ(set(inner + "/.", "large", std::string(100'000, 'x')), 0);
    EXPECT_TRUE(isThere(folder.path("._inner")));
    EXPECT_TRUE(get(inner + "/../inner", "large") == std::string(100'000, 'x'));
}

TEST(ExtendedAttributes, ThatAreMissingSaySo) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    EXPECT_FALSE(get(file, "a"));
    EXPECT_EQ(errno, ENODATA);
    EXPECT_EQ(removeAttribute(file, "a"), -1);
    EXPECT_EQ(errno, ENODATA);
}

TEST(ExtendedAttributes, OfNothingAreErrors) {
    TemporaryFolder const folder;
    std::string const none = folder.path("none");
    EXPECT_EQ(listxattr(none.c_str(), nullptr, 0, 0), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(get(none, "a"));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(set(none, "a", "1"), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(removeAttribute(none, "a"), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(set(folder.makeFile("file", "") + "/", "a", "1"), -1);
    EXPECT_EQ(errno, ENOTDIR);
    EXPECT_EQ(set("", "a", "1"), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST(ExtendedAttributes, FillNoBufferThatIsTooSmall) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    ASSERT_EQ(set(file, "name", "value"), 0);
    std::string buffer(4, '?');
    EXPECT_EQ(getxattr(file.c_str(), "name", buffer.data(), 4, 0, 0), -1);
    EXPECT_EQ(errno, ERANGE);
    EXPECT_EQ(getxattr(file.c_str(), "name", buffer.data(), 0, 0, 0), -1);
    EXPECT_EQ(errno, ERANGE);
    EXPECT_EQ(listxattr(file.c_str(), buffer.data(), 4, 0), -1);
    EXPECT_EQ(errno, ERANGE);
    EXPECT_EQ(buffer, "????");
    EXPECT_EQ(getxattr(file.c_str(), "name", nullptr, 3, 0, 0), 5);
    EXPECT_EQ(listxattr(file.c_str(), nullptr, 3, 0), 5);
}

TEST(ExtendedAttributes, KnowTheirOptionsAndNoPosition) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    char byte = 0;
    EXPECT_EQ(set(file, "a", "1", XATTR_REPLACE), -1);
    EXPECT_EQ(errno, ENODATA);
    EXPECT_EQ(set(file, "a", "1", XATTR_CREATE), 0);
    EXPECT_EQ(set(file, "a", "2", XATTR_CREATE), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(set(file, "a", "3", XATTR_REPLACE), 0);
    EXPECT_EQ(get(file, "a"), "3");
    EXPECT_EQ(set(file, "a", "4", XATTR_CREATE | XATTR_REPLACE), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(set(file, "a", "4", 0x100), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_FALSE(get(file, "a", XATTR_CREATE));
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(removeAttribute(file, "a", 0x20), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(listxattr(file.c_str(), nullptr, 0, 0x40), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(getxattr(file.c_str(), "a", nullptr, 0, 1, 0), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(setxattr(file.c_str(), "a", &byte, 1, 1, 0), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(get(file, "a"), "3");
}

TEST(ExtendedAttributes, KnowTheSameOptionsBesideTheItem) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    std::string const large(100'000, 'x');
    ASSERT_EQ(set(file, "a", large, XATTR_CREATE), 0);
    EXPECT_EQ(set(file, "a", "1", XATTR_CREATE), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(set(file, "b", large, XATTR_REPLACE), -1);
    EXPECT_EQ(errno, ENODATA);
    EXPECT_EQ(set(file, "a", "1", XATTR_REPLACE), 0);
    EXPECT_EQ(get(file, "a"), "1");
    EXPECT_FALSE(isThere(folder.path("._file")));
}

TEST(ExtendedAttributes, OfALinkAreThoseOfWhatItLeadsTo) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("real/file", "");
    std::string const link = folder.path("link");
    ASSERT_EQ(::symlink("real/file", link.c_str()), 0);
    EXPECT_EQ(set(link, "a", "1"), 0);
    EXPECT_EQ(get(file, "a"), "1");
    EXPECT_EQ(list(link), Names{"a"});
    ASSERT_EQ(set(link, "large", std::string(100'000, 'x')), 0);
    EXPECT_TRUE(isThere(folder.path("real/._file")));
    EXPECT_FALSE(isThere(folder.path("._link")));
    EXPECT_EQ(get(link, "large"), get(file, "large"));
    EXPECT_EQ(removeAttribute(link, "a"), 0);
    EXPECT_FALSE(get(file, "a"));
}

TEST(ExtendedAttributes, OfALinkItselfCannotBe) {
    TemporaryFolder const folder;
    ASSERT_EQ(set(folder.makeFile("file", ""), "a", "1"), 0);
    std::string const link = folder.path("link");
    ASSERT_EQ(::symlink("file", link.c_str()), 0);
    EXPECT_TRUE(list(link, XATTR_NOFOLLOW).empty());
    EXPECT_FALSE(get(link, "a", XATTR_NOFOLLOW));
    EXPECT_EQ(errno, ENODATA);
    EXPECT_EQ(set(link, "a", "2", XATTR_NOFOLLOW), -1);
    EXPECT_EQ(errno, EPERM);
    EXPECT_EQ(removeAttribute(link, "a", XATTR_NOFOLLOW), -1);
    EXPECT_EQ(errno, EPERM);
    ASSERT_EQ(::symlink("nowhere", folder.path("lost").c_str()), 0);
    EXPECT_EQ(set(folder.path("lost"), "a", "1"), -1);
    EXPECT_EQ(errno, ENOENT);
    ASSERT_EQ(::symlink("loop", folder.path("loop").c_str()), 0);
    EXPECT_EQ(set(folder.path("loop"), "a", "1"), -1);
    EXPECT_EQ(errno, ELOOP);
}

TEST(ExtendedAttributes, OfAPipeCannotBeAndNobodyWaits) {
    TemporaryFolder const folder;
    std::string const pipe = folder.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(set(pipe, "a", "1"), -1);
    EXPECT_EQ(errno, EPERM);
    EXPECT_TRUE(list(pipe).empty());
}

TEST(ExtendedAttributes, OfOtherNamespacesDoNotShow) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    ASSERT_EQ(set(file, "a", "1"), 0);
    if (::setxattr(file.c_str(), "trusted.hidden", "1", 1, 0) != 0) GTEST_SKIP() << "only root sets trusted attributes";
    EXPECT_EQ(list(file), Names{"a"});
    EXPECT_FALSE(get(file, "trusted.hidden"));
    EXPECT_EQ(set(file, "trusted.hidden", "2"), 0);
    EXPECT_EQ(::getxattr(file.c_str(), "user.trusted.hidden", nullptr, 0), 1);
}

TEST(ExtendedAttributes, HaveNamesOfAnyBytesAndAtMost254) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    for (std::string const& name : {std::string("n\xC3\xA9"), std::string("\xFF\x80"), std::string(250, 'n'),
                                    std::string("user.a"), std::string("a b/c")}) {
        EXPECT_EQ(set(file, name, "1"), 0) << name;
        EXPECT_EQ(list(file), Names{name});
        EXPECT_EQ(removeAttribute(file, name), 0);
    }
    EXPECT_EQ(set(file, std::string(255, 'n'), "1"), -1);
    EXPECT_EQ(errno, ENAMETOOLONG);
    EXPECT_EQ(set(file, "", "1"), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(setxattr(file.c_str(), nullptr, "1", 1, 0, 0), -1);
    EXPECT_EQ(errno, EFAULT);
    EXPECT_EQ(setxattr(nullptr, "a", "1", 1, 0, 0), -1);
    EXPECT_EQ(errno, EFAULT);
    EXPECT_EQ(setxattr(file.c_str(), "a", nullptr, 1, 0, 0), -1);
    EXPECT_EQ(errno, EFAULT);
}

TEST(ExtendedAttributes, LieWhereOtherProgramsFindThem) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    std::string const information(AppleDouble::FinderInformationSize, 'F');
    ASSERT_EQ(set(file, XATTR_FINDERINFO_NAME, information), 0);
    ASSERT_EQ(set(file, XATTR_RESOURCEFORK_NAME, "fork"), 0);
    EXPECT_EQ(outputOf({"getfattr", "--absolute-names", "--only-values", "-n", "user.com.apple.FinderInfo", file}),
              information);
    EXPECT_EQ(outputOf({"getfattr", "--absolute-names", "--only-values", "-n", "user.com.apple.ResourceFork", file}),
              "fork");
    outputOf({"setfattr", "-n", "user.theirs", "-v", "0x00ff0a", file});
    EXPECT_EQ(get(file, "theirs"), std::string("\0\xFF\n", 3));
    outputOf({"setfattr", "-x", "user.theirs", file});
    EXPECT_FALSE(get(file, "theirs"));
    std::string const listing = outputOf({"getfattr", "--absolute-names", file});
    for (std::string const& name : list(file))
        EXPECT_NE(listing.find("\nuser." + name + "\n"), std::string::npos) << name;
}

TEST(ExtendedAttributes, OfTheFinderAreOfOneSize) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    for (std::size_t const size : {0, 31, 33})
        EXPECT_EQ(set(file, XATTR_FINDERINFO_NAME, std::string(size, 'F')), -1);
    EXPECT_EQ(errno, ERANGE);
    EXPECT_TRUE(list(file).empty());
}

TEST(ExtendedAttributes, NeedNoShortPath) {
    LongFolder folder;
    folder.makeFile("file", "");
    std::string const file = folder.path() + "/file";
    EXPECT_EQ(set(file, "a", "1"), 0);
    EXPECT_EQ(get(file, "a"), "1");
    EXPECT_EQ(set(file, "large", std::string(100'000, 'x')), 0);
    EXPECT_EQ(list(file), (Names{"a", "large"}));
    EXPECT_EQ(removeAttribute(file, "large"), 0);
}

} // namespace
} // namespace mac::test
