#include "platform/system/items/AppleDouble.h"
#include "tests/platform/files/Attributes.h"
#include "tests/support/Commands.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Failures.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

struct stat statusAt(std::string const& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

std::string const s_large(100'000, 'x');

// Writes the file of that name with these attributes.
void makeBeside(TemporaryFolder const& folder, std::string const& name, Names const& attributes) {
    AppleDouble beside;
    for (std::string const& attribute : attributes)
        ASSERT_TRUE(beside.setValue(attribute, std::as_bytes(std::span("beside", 6))));
    std::vector<std::byte> const bytes = beside.written().value();
    folder.makeFile(name, {reinterpret_cast<char const*>(bytes.data()), bytes.size()});
}

TEST(AttributesBeside, AreReadFromAnAppleDoubleFileAndTheFileSystemCountsFirst) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    makeBeside(folder, "._file", {"a", "b"});
    EXPECT_EQ(get(file, "a"), "beside");
    ASSERT_EQ(::setxattr(file.c_str(), "user.a", "here", 4, 0), 0);
    EXPECT_EQ(get(file, "a"), "here");
    EXPECT_EQ(list(file), (Names{"a", "b"}));
    // Neither of the two values is left.
    EXPECT_EQ(removeAttribute(file, "a"), 0);
    EXPECT_EQ(list(file), Names{"b"});
    EXPECT_EQ(set(file, "b", "new"), 0);
    EXPECT_EQ(get(file, "b"), "new");
    EXPECT_FALSE(isThere(folder.path("._file")));
}

// nullopt if the system does not count them.
std::optional<std::size_t> bytesReadByThisThread() {
    std::ifstream counts("/proc/thread-self/io");
    std::string what;
    std::size_t count = 0;
    if (!(counts >> what >> count) || what != "rchar:") return std::nullopt;
    return count;
}

TEST(AttributesBeside, AreReadWithoutTheResourceFork) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    constexpr std::size_t forkSize = std::size_t{8} << 20U;
    AppleDouble beside;
    beside.resourceFork.resize(forkSize, std::byte{'f'});
    ASSERT_TRUE(beside.setValue("first", std::as_bytes(std::span("1", 1))));
    std::vector<std::byte> const bytes = beside.written().value();
    folder.makeFile("._file", {reinterpret_cast<char const*>(bytes.data()), bytes.size()});
    std::optional<std::size_t> const before = bytesReadByThisThread();
    if (!before) GTEST_SKIP() << "the system does not count what is read";
    EXPECT_EQ(get(file, "first"), "1");
    EXPECT_FALSE(get(file, "none"));
    EXPECT_EQ(errno, ENODATA);
    EXPECT_LT(*bytesReadByThisThread() - *before, forkSize);
    EXPECT_EQ(get(file, XATTR_RESOURCEFORK_NAME).value_or("").size(), forkSize);
}

TEST(AttributesBeside, AreFoundBehindALargeOne) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    AppleDouble beside;
    ASSERT_TRUE(beside.setValue("large", std::as_bytes(std::span(s_large))));
    ASSERT_TRUE(beside.setValue("last", std::as_bytes(std::span("2", 1))));
    ASSERT_TRUE(beside.setValue("empty", {}));
    std::vector<std::byte> const bytes = beside.written().value();
    folder.makeFile("._file", {reinterpret_cast<char const*>(bytes.data()), bytes.size()});
    EXPECT_EQ(get(file, "large"), s_large);
    EXPECT_EQ(get(file, "last"), "2");
    EXPECT_EQ(get(file, "empty"), "");
    EXPECT_FALSE(get(file, "none"));
}

TEST(AttributesBeside, TouchNoFileBesideThatIsNotTheirs) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    std::string const theirs = folder.makeFile("._file", "somebody's notes");
    EXPECT_EQ(set(file, "a", s_large), -1);
    EXPECT_TRUE(list(file).empty());
    EXPECT_EQ(set(file, "a", "small"), 0);
    EXPECT_EQ(outputOf({"cat", theirs}), "somebody's notes");
    ASSERT_EQ(::unlink(theirs.c_str()), 0);
    std::string const target = folder.makeFile("target", "");
    ASSERT_EQ(::symlink("target", theirs.c_str()), 0);
    EXPECT_EQ(set(file, "a", s_large), -1);
    EXPECT_EQ(outputOf({"cat", target}), "");
    ASSERT_EQ(::unlink(theirs.c_str()), 0);
    ASSERT_EQ(::mkfifo(theirs.c_str(), 0600), 0);
    EXPECT_EQ(set(file, "a", s_large), -1);
    EXPECT_EQ(get(file, "a"), "small");
}

TEST(AttributesBeside, AreReadByWhoMayReadTheItem) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    ASSERT_EQ(::chmod(file.c_str(), 0600), 0);
    ASSERT_EQ(set(file, "a", s_large), 0);
    struct stat status {};
    ASSERT_EQ(::stat(folder.path("._file").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST(AttributesBeside, OfANameThatLeavesNoPlaceBesideIt) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile(std::string(254, 'n'), "");
    EXPECT_EQ(set(file, "a", "small"), 0);
    EXPECT_EQ(set(file, "a", s_large), -1);
    EXPECT_EQ(get(file, "a"), "small");
}

TEST(AttributesBeside, HaveTheItemsOwnerGroupAndPermissions) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    bool const mayGive = ::chown(file.c_str(), 12'345, 23'456) == 0;
    EXPECT_EQ(mayGive, ::geteuid() == 0);
    ASSERT_EQ(::chmod(file.c_str(), 0764), 0);
    ASSERT_EQ(set(file, "a", s_large), 0);
    struct stat const status = statusAt(folder.path("._file"));
    EXPECT_EQ(status.st_uid, statusAt(file).st_uid);
    EXPECT_EQ(status.st_gid, statusAt(file).st_gid);
    EXPECT_EQ(status.st_mode & 07777U, 0664U);
    std::string const other = folder.makeFile("other", "");
    ASSERT_EQ(::chmod(other.c_str(), 0664), 0);
    withRefusedCall(SYS_fchown, EPERM, [&] { EXPECT_EQ(set(other, "a", s_large), 0); });
    EXPECT_EQ(statusAt(folder.path("._other")).st_mode & 07777U, 0644U);
}

TEST(AttributesBeside, AreNotMadeForAFileWithSeveralNames) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    std::string const other = folder.path("other");
    ASSERT_EQ(::link(file.c_str(), other.c_str()), 0);
    ASSERT_EQ(set(file, "a", "old"), 0);
    EXPECT_EQ(set(file, "a", s_large), -1);
    EXPECT_EQ(errno, EMLINK);
    EXPECT_EQ(get(file, "a"), "old");
    EXPECT_EQ(get(other, "a"), "old");
    EXPECT_FALSE(isThere(folder.path("._file")));
    // What lies there from elsewhere is read and goes, piece by piece.
    makeBeside(folder, "._file", {"b", "c"});
    EXPECT_EQ(get(file, "b"), "beside");
    EXPECT_EQ(removeAttribute(file, "b"), 0);
    EXPECT_EQ(get(file, "c"), "beside");
    ASSERT_EQ(::unlink(other.c_str()), 0);
    EXPECT_EQ(set(file, "a", s_large), 0);
}

TEST(AttributesBeside, ThatCannotBeReadAreErrors) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    ASSERT_EQ(set(file, "on item", "1"), 0);
    makeBeside(folder, "._file", {"a"});
    withRefusedCall(SYS_read, EIO, [&] {
        EXPECT_FALSE(get(file, "a"));
        EXPECT_EQ(errno, EIO);
        EXPECT_EQ(get(file, "on item"), "1");
        EXPECT_EQ(listxattr(file.c_str(), nullptr, 0, 0), -1);
        EXPECT_EQ(errno, EIO);
        EXPECT_EQ(set(file, "a", "2", XATTR_CREATE), -1);
        EXPECT_EQ(errno, EIO);
        EXPECT_EQ(removeAttribute(file, "on item"), -1);
        EXPECT_EQ(errno, EIO);
    });
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(file.c_str(), 0644), 0);
    ASSERT_EQ(::chmod(folder.path("._file").c_str(), 0), 0);
    {
        OrdinaryUser const user;
        EXPECT_FALSE(get(file, "a"));
        EXPECT_EQ(errno, EACCES);
        EXPECT_EQ(list(file), Names{"on item"});
    }
    ASSERT_EQ(::chmod(folder.path("._file").c_str(), 0600), 0);
    EXPECT_EQ(get(file, "a"), "beside");
    ASSERT_EQ(removeAttribute(file, "on item"), 0);
    ASSERT_EQ(::chmod(folder.path("._file").c_str(), 0), 0);
    OrdinaryUser const user;
    EXPECT_EQ(listxattr(file.c_str(), nullptr, 0, 0), -1) << "nothing tells that there are none";
    EXPECT_EQ(errno, EACCES);
}

TEST(AttributesBeside, ThatAreClosedKeepNoneOnTheItem) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    ASSERT_EQ(set(file, "on item", "1"), 0);
    makeBeside(folder, "._file", {"a"});
    ASSERT_EQ(::chmod(folder.path("._file").c_str(), 0), 0);
    for (std::string const& path : {folder.path(), file, folder.path("._file")})
        OrdinaryUser::own(path);
    OrdinaryUser const user;
    EXPECT_EQ(removeAttribute(file, "a"), -1);
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(removeAttribute(file, "on item"), 0);
    EXPECT_FALSE(get(file, "on item"));
    EXPECT_EQ(set(file, XATTR_RESOURCEFORK_NAME, ""), -1) << "the sidecar may hold one";
    EXPECT_EQ(errno, EACCES);
}

TEST(AttributesBeside, AreRemovedFromAFileThatCannotBeWrittenTo) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    makeBeside(folder, "._file", {"a", "b"});
    ASSERT_EQ(::setxattr(file.c_str(), "user.on item", "1", 1, 0), 0);
    ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
    for (std::string const& path : {folder.path(), file, folder.path("._file")})
        OrdinaryUser::own(path);
    OrdinaryUser const user;
    EXPECT_EQ(removeAttribute(file, "a"), 0);
    EXPECT_EQ(list(file), (Names{"on item", "b"}));
    EXPECT_EQ(removeAttribute(file, "on item"), -1);
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(list(file), (Names{"on item", "b"}));
}

TEST(AttributesBeside, AreListedWithoutTheirValues) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    constexpr std::size_t large = std::size_t{8} << 20U;
    AppleDouble beside;
    beside.resourceFork.resize(large, std::byte{'f'});
    beside.attributes.push_back({"large", std::vector<std::byte>(large, std::byte{'v'})});
    beside.attributes.push_back({"last", {std::byte{'2'}}});
    std::vector<std::byte> const bytes = beside.written().value();
    folder.makeFile("._file", {reinterpret_cast<char const*>(bytes.data()), bytes.size()});
    std::optional<std::size_t> const before = bytesReadByThisThread();
    if (!before) GTEST_SKIP() << "the system does not count what is read";
    EXPECT_EQ(list(file), (Names{XATTR_RESOURCEFORK_NAME, "large", "last"}));
    EXPECT_LT(*bytesReadByThisThread() - *before, large);
    EXPECT_EQ(get(file, "last"), "2");
    EXPECT_EQ(get(file, "large").value_or("").size(), large);
}

TEST(AttributesBeside, AreThereAlsoBesideWhatALinkLeadsTo) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    makeBeside(folder, "._file", {"a"});
    ASSERT_EQ(::symlink("file", folder.path("link").c_str()), 0);
    EXPECT_EQ(list(folder.path("link")), Names{"a"});
    EXPECT_EQ(list(folder.path("link"), XATTR_NOFOLLOW), Names());
    EXPECT_EQ(get(folder.path("link"), "a"), "beside");
    ASSERT_EQ(::setxattr(file.c_str(), "user.b", "1", 1, 0), 0);
    EXPECT_EQ(list(folder.path("link")), (Names{"b", "a"}));
    EXPECT_EQ(get(folder.path("link"), "b"), "1");
    EXPECT_FALSE(get(folder.path("link"), "b", XATTR_NOFOLLOW));
    EXPECT_EQ(list(folder.path(".")), Names());
}

TEST(AttributesBeside, StayAsTheyWereWhenTheItemKeepsItsValue) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    ASSERT_EQ(set(file, "a", "old"), 0);
    withRefusedCall(SYS_removexattr, EIO, [&] {
        EXPECT_EQ(set(file, "a", s_large), -1);
        EXPECT_EQ(errno, EIO);
    });
    EXPECT_EQ(get(file, "a"), "old");
    EXPECT_FALSE(isThere(folder.path("._file")));
}

TEST(AttributesBeside, AreListedOnlyWithThoseOfTheItem) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    withRefusedCall(SYS_listxattr, EIO, [&] {
        refuseCallOnThisThread(SYS_llistxattr, EIO);
        EXPECT_EQ(listxattr(file.c_str(), nullptr, 0, 0), -1);
        EXPECT_EQ(errno, EIO);
    });
    withRefusedCall(SYS_listxattr, EOPNOTSUPP, [&] {
        refuseCallOnThisThread(SYS_llistxattr, EOPNOTSUPP);
        EXPECT_EQ(listxattr(file.c_str(), nullptr, 0, 0), 0);
    });
}

TEST(AttributesBeside, MayHaveLongerNames) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    for (std::size_t const length : {251, 254}) {
        std::string const name(length, 'n');
        EXPECT_FALSE(get(file, name));
        EXPECT_EQ(errno, ENODATA);
        EXPECT_EQ(set(file, name, "1", XATTR_REPLACE), -1);
        EXPECT_EQ(errno, ENODATA);
        EXPECT_EQ(set(file, name, "1", XATTR_CREATE), 0);
        EXPECT_EQ(get(file, name), "1");
        EXPECT_EQ(list(file), Names{name});
        EXPECT_EQ(set(file, name, "2", XATTR_CREATE), -1);
        EXPECT_EQ(errno, EEXIST);
        EXPECT_EQ(removeAttribute(file, name), 0);
        EXPECT_EQ(removeAttribute(file, name), -1);
        EXPECT_EQ(errno, ENODATA);
        EXPECT_FALSE(isThere(folder.path("._file")));
    }
}

TEST(AttributesBeside, ThatAreReplacedMayFitOnTheItem) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    makeBeside(folder, "._file", {"a"});
    EXPECT_EQ(set(file, "a", "1", XATTR_CREATE), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(set(file, "a", "1", XATTR_REPLACE), 0);
    EXPECT_EQ(get(file, "a"), "1");
    EXPECT_FALSE(isThere(folder.path("._file")));
    EXPECT_EQ(set(file, "a", s_large, XATTR_CREATE), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(get(file, "a"), "1");
}

struct Nothing {
    char const* name;
    std::string value;
    std::string something;
};

class AttributesThatAreNone : public testing::TestWithParam<Nothing> {};

TEST_P(AttributesThatAreNone, AreNotThereWhereverTheyAreWritten) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    Nothing const& nothing = GetParam();
    std::string const onSystem = std::string("user.") + nothing.name;
    auto const expectNone = [&] {
        EXPECT_FALSE(get(file, nothing.name));
        EXPECT_EQ(errno, ENODATA);
        EXPECT_TRUE(list(file).empty());
        EXPECT_FALSE(isThere(folder.path("._file")));
    };
    EXPECT_EQ(set(file, nothing.name, nothing.value), 0);
    expectNone();
    EXPECT_EQ(set(file, nothing.name, nothing.value, XATTR_CREATE), 0);
    EXPECT_EQ(set(file, nothing.name, nothing.value, XATTR_REPLACE), -1);
    EXPECT_EQ(errno, ENODATA);
    ASSERT_EQ(set(file, nothing.name, nothing.something), 0);
    EXPECT_EQ(set(file, nothing.name, nothing.value, XATTR_CREATE), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(set(file, nothing.name, nothing.value), 0);
    expectNone();
    // As another program may have left it.
    ASSERT_EQ(::setxattr(file.c_str(), onSystem.c_str(), nothing.value.data(), nothing.value.size(), 0), 0);
    expectNone();
    EXPECT_EQ(removeAttribute(file, nothing.name), -1);
    EXPECT_EQ(errno, ENODATA);
    ASSERT_EQ(::setxattr(file.c_str(), onSystem.c_str(), nothing.value.data(), nothing.value.size(), 0), 0);
    EXPECT_EQ(set(file, nothing.name, nothing.something, XATTR_REPLACE), -1);
    EXPECT_EQ(set(file, nothing.name, nothing.something, XATTR_CREATE), 0);
    EXPECT_EQ(get(file, nothing.name), nothing.something);
}

INSTANTIATE_TEST_SUITE_P(ExtendedAttributes, AttributesThatAreNone,
                         testing::Values(Nothing{XATTR_FINDERINFO_NAME, std::string(32, '\0'), std::string(32, 'F')},
                                         Nothing{XATTR_RESOURCEFORK_NAME, "", "fork"}),
                         [](auto const& parameter) { return parameter.index == 0 ? "FinderInformation" : "Fork"; });

} // namespace
} // namespace mac::test
