#include "platform/system/items/OpenItem.h"
#include "tests/support/Refusals.h"
#include "tests/support/TemporaryFolder.h"
#include <cerrno>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac::test {
namespace {

std::string nameOf(std::string const& path, bool followsLinks = true) {
    std::optional<OpenItem> const item = openItemAtPath(path, followsLinks);
    return item ? item->name : "-";
}

bool isItem(std::optional<OpenItem> const& item, std::string const& path) {
    struct stat expected {};
    struct stat found {};
    return item && ::lstat(path.c_str(), &expected) == 0 && ::fstat(item->item.number(), &found) == 0 &&
           expected.st_ino == found.st_ino && expected.st_dev == found.st_dev;
}

TEST(OpenItem, HasTheNameOfTheLastComponent) {
    TemporaryFolder const folder;
    folder.makeFile("a/file", "");
    EXPECT_EQ(nameOf(folder.path("a/file")), "file");
    EXPECT_EQ(nameOf(folder.path("a")), "a");
    EXPECT_EQ(nameOf(folder.path("a///")), "a");
    EXPECT_EQ(nameOf(folder.path("a/./.")), "a");
    EXPECT_EQ(nameOf(folder.path("a/../a/..//a/.")), "a");
    EXPECT_EQ(nameOf(folder.path("a/.")), "a");
    EXPECT_EQ(nameOf(folder.makeFolder("a/b") + "/.."), "a");
    EXPECT_EQ(nameOf("/"), "");
    EXPECT_EQ(nameOf("//./"), "");
    EXPECT_EQ(nameOf("/.."), "");
}

TEST(OpenItem, IsNoFileWhereThePathMeansAFolder) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    EXPECT_EQ(nameOf(file + "/"), "-");
    EXPECT_EQ(errno, ENOTDIR);
    EXPECT_EQ(nameOf(file + "/."), "-");
    EXPECT_EQ(nameOf(file + "/.."), "-");
    EXPECT_EQ(nameOf(folder.path("none")), "-");
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(nameOf(""), "-");
}

TEST(OpenItem, IsTheLinkOrWhatItLeadsTo) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("a/file", "");
    ASSERT_EQ(::symlink("a/file", folder.path("relative").c_str()), 0);
    ASSERT_EQ(::symlink(folder.path("relative").c_str(), folder.path("absolute").c_str()), 0);
    EXPECT_TRUE(isItem(openItemAtPath(folder.path("absolute"), true), file));
    EXPECT_EQ(nameOf(folder.path("absolute")), "file");
    EXPECT_TRUE(isItem(openItemAtPath(folder.path("absolute"), false), folder.path("absolute")));
    ASSERT_EQ(::symlink("a", folder.path("folder").c_str()), 0);
    EXPECT_EQ(nameOf(folder.path("folder"), false), "folder");
    // A slash at the end asks for the folder.
    EXPECT_EQ(nameOf(folder.path("folder/"), false), "a");
    ASSERT_EQ(::symlink("a/.", folder.path("dotted").c_str()), 0);
    EXPECT_EQ(nameOf(folder.path("dotted")), "a");
}

TEST(OpenItem, LiesBehindAsManyLinksAsTheSystemFollows) {
    TemporaryFolder const folder;
    folder.makeFile("file", "");
    std::string target = "file";
    for (int number = 1; number <= 41; ++number) {
        std::string const name = "link " + std::to_string(number);
        ASSERT_EQ(::symlink(target.c_str(), folder.path(name).c_str()), 0);
        target = name;
    }
    EXPECT_EQ(nameOf(folder.path("link 40")), "file");
    EXPECT_EQ(nameOf(folder.path("link 41")), "-");
    EXPECT_EQ(errno, ELOOP);
}

TEST(OpenItem, SaysWhyALinkCannotBeRead) {
    TemporaryFolder const folder;
    folder.makeFile("file", "");
    ASSERT_EQ(::symlink("file", folder.path("link").c_str()), 0);
    withRefusedCall(SYS_readlinkat, EIO, [&] {
        EXPECT_EQ(nameOf(folder.path("file")), "file");
        EXPECT_EQ(nameOf(folder.path("link")), "-");
        EXPECT_EQ(errno, EIO);
    });
}

TEST(OpenItem, StaysTheSameWhenItIsMoved) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    std::optional<OpenItem> const item = openItemAtPath(file, true);
    ASSERT_EQ(::rename(file.c_str(), folder.path("moved").c_str()), 0);
    folder.makeFile("file", "another");
    EXPECT_TRUE(isItem(item, folder.path("moved")));
    struct stat status {};
    ASSERT_EQ(::stat(item->systemPath().c_str(), &status), 0);
    EXPECT_EQ(status.st_size, 0);
}

} // namespace
} // namespace mac::test
