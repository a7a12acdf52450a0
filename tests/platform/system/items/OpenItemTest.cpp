#include "platform/system/items/OpenItem.h"
#include "platform/system/OpenItems.h"
#include "tests/support/Failures.h"
#include "tests/support/TemporaryFolder.h"
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mac::test {
namespace {

std::string nameOf(std::string const& path, LinkAtEnd linkAtEnd = LinkAtEnd::IsFollowed) {
    Result<OpenItem> const item = openItemAtPath(path, linkAtEnd);
    return item.hasValue() ? item.value().name : "-";
}

bool isItem(Result<OpenItem> const& item, std::string const& path) {
    struct stat expected {};
    struct stat found {};
    return item.hasValue() && ::lstat(path.c_str(), &expected) == 0 &&
           ::fstat(item.value().item.number(), &found) == 0 && expected.st_ino == found.st_ino &&
           expected.st_dev == found.st_dev;
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
    EXPECT_EQ(codeOf(openItemAtPath(file + "/", LinkAtEnd::IsFollowed)), ENOTDIR);
    EXPECT_EQ(nameOf(file + "/."), "-");
    EXPECT_EQ(nameOf(file + "/.."), "-");
    EXPECT_EQ(codeOf(openItemAtPath(folder.path("none"), LinkAtEnd::IsFollowed)), ENOENT);
    EXPECT_EQ(nameOf(""), "-");
}

TEST(OpenItem, IsTheLinkOrWhatItLeadsTo) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("a/file", "");
    ASSERT_EQ(::symlink("a/file", folder.path("relative").c_str()), 0);
    ASSERT_EQ(::symlink(folder.path("relative").c_str(), folder.path("absolute").c_str()), 0);
    EXPECT_TRUE(isItem(openItemAtPath(folder.path("absolute"), LinkAtEnd::IsFollowed), file));
    EXPECT_EQ(nameOf(folder.path("absolute")), "file");
    EXPECT_TRUE(isItem(openItemAtPath(folder.path("absolute"), LinkAtEnd::IsNotFollowed), folder.path("absolute")));
    ASSERT_EQ(::symlink("a", folder.path("folder").c_str()), 0);
    EXPECT_EQ(nameOf(folder.path("folder"), LinkAtEnd::IsNotFollowed), "folder");
    // A slash at the end asks for the folder.
    EXPECT_EQ(nameOf(folder.path("folder/"), LinkAtEnd::IsNotFollowed), "a");
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
    EXPECT_EQ(codeOf(openItemAtPath(folder.path("link 41"), LinkAtEnd::IsFollowed)), ELOOP);
}

TEST(OpenItem, SaysWhyALinkCannotBeRead) {
    TemporaryFolder const folder;
    folder.makeFile("file", "");
    ASSERT_EQ(::symlink("file", folder.path("link").c_str()), 0);
    withRefusedCall(SYS_readlinkat, EIO, [&] {
        EXPECT_EQ(nameOf(folder.path("file")), "file");
        EXPECT_EQ(codeOf(openItemAtPath(folder.path("link"), LinkAtEnd::IsFollowed)), EIO);
    });
}

TEST(OpenItem, StaysTheSameWhenItIsMoved) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    Result<OpenItem> const item = openItemAtPath(file, LinkAtEnd::IsFollowed);
    ASSERT_TRUE(item.hasValue());
    ASSERT_EQ(::rename(file.c_str(), folder.path("moved").c_str()), 0);
    folder.makeFile("file", "another");
    EXPECT_TRUE(isItem(item, folder.path("moved")));
    struct stat status {};
    ASSERT_EQ(::stat(item.value().systemPath().c_str(), &status), 0);
    EXPECT_EQ(status.st_size, 0);
}

TEST(OpenItem, IsFoundAgainInItsFolder) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    Result<OpenItem> const item = openItemAtPath(file, LinkAtEnd::IsFollowed);
    ASSERT_TRUE(item.hasValue());
    ASSERT_EQ(::rename(file.c_str(), folder.path("moved").c_str()), 0);
    Result<OpenItem> const found = openItemInItsFolder(item.value().item);
    EXPECT_TRUE(isItem(found, folder.path("moved")));
    EXPECT_EQ(found.value().name, "moved");
    ASSERT_EQ(::unlink(folder.path("moved").c_str()), 0);
    folder.makeFile("moved (deleted)", "another");
    Result<OpenItem> const another = openItemInItsFolder(item.value().item);
    ASSERT_FALSE(another.hasValue());
    EXPECT_EQ(another.problem().code, ESTALE);
}

// A process asks for its own descriptors, whatever those of its parent with the same numbers lead to.
TEST(SystemsPath, IsThatOfTheProcessAfterAFork) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    std::string const other = folder.makeFile("other", "");
    FileDescriptor const opened(::open(file.c_str(), O_PATH | O_CLOEXEC));
    ASSERT_EQ(systemsPath(opened).valueOr("-"), file);
    pid_t const child = ::fork();
    if (child == 0) {
        FileDescriptor const another(::open(other.c_str(), O_PATH | O_CLOEXEC));
        bool const isReplaced = ::dup2(another.number(), opened.number()) == opened.number();
        ::_exit(isReplaced && systemsPath(opened).valueOr("-") == other ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(systemsPath(opened).valueOr("-"), file);
}

TEST(SystemsPath, IsMissingForWhatIsNotOpen) { EXPECT_FALSE(systemsPath(FileDescriptor()).hasValue()); }

} // namespace
} // namespace mac::test
