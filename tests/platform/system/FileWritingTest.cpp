#include "platform/system/FileWriting.h"
#include "tests/support/Commands.h"
#include "tests/support/Failures.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac::test {
namespace {

using ByteSpan = std::span<std::byte const>;

ByteSpan bytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

struct stat statusAt(std::string const& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

unsigned modeAt(std::string const& path) { return statusAt(path).st_mode & 07777U; }

std::string attributeAt(std::string const& path, char const* name) {
    std::array<char, 256> value;
    ssize_t const length = ::getxattr(path.c_str(), name, value.data(), value.size());
    return length < 0 ? "-" : std::string(value.data(), static_cast<std::size_t>(length));
}

Result<void> doneIf(bool isDone) { return isDone ? Result<void>() : lastSystemError("test"); }

class ReplacingAFile : public testing::Test {
protected:
    std::string contents() const { return outputOf({"cat", m_file}); }
    // The names in the folder, which show whether a temporary file is left.
    std::string names() const { return outputOf({"ls", "-A", m_folder.path()}); }

    TemporaryFolder const m_folder{};
    std::string const m_file{m_folder.makeFile("file", "old")};
    FileDescriptor const m_open{openPath(m_folder.path(), O_PATH | O_DIRECTORY).takeValue()};
};

TEST_F(ReplacingAFile, KeepsItsPermissionsAndAttributes) {
    ASSERT_EQ(::chmod(m_file.c_str(), 0640), 0);
    ASSERT_EQ(::setxattr(m_file.c_str(), "user.note", "kept", 4, 0), 0);
    ASSERT_EQ(::setxattr(m_file.c_str(), "user.empty", "", 0, 0), 0);
    ASSERT_EQ(codeOf(replaceFileAtPath(m_file, bytesOf("new"))), 0);
    EXPECT_EQ(contents(), "new");
    EXPECT_EQ(modeAt(m_file), 0640U);
    EXPECT_EQ(attributeAt(m_file, "user.note"), "kept");
    EXPECT_EQ(attributeAt(m_file, "user.empty"), "");
    EXPECT_EQ(names(), "file\n");
}

// An access list of version 2 with entries of the owner, of one user, of the group, of the mask and of others.
std::string accessList(char userPermissions) {
    std::string list("\2\0\0\0", 4);
    for (std::string const& entry :
         {std::string("\1\0\6\0\xFF\xFF\xFF\xFF", 8),
          std::string("\2\0", 2) + userPermissions + std::string("\0\7\7\0\0", 5),
          std::string("\4\0\4\0\xFF\xFF\xFF\xFF", 8), std::string("\x10\0\6\0\xFF\xFF\xFF\xFF", 8),
          std::string("\x20\0\0\0\xFF\xFF\xFF\xFF", 8)})
        list += entry;
    return list;
}

TEST_F(ReplacingAFile, KeepsItsAccessList) {
    std::string const list = accessList('\6');
    if (::setxattr(m_file.c_str(), "system.posix_acl_access", list.data(), list.size(), 0) != 0)
        GTEST_SKIP() << "there are no access lists in " << m_folder.path();
    ASSERT_EQ(codeOf(replaceFileAtPath(m_file, bytesOf("new"))), 0);
    EXPECT_EQ(attributeAt(m_file, "system.posix_acl_access"), list);
    EXPECT_EQ(modeAt(m_file), 0660U);
}

TEST_F(ReplacingAFile, TakesNoAccessListFromTheFolder) {
    std::string const list = accessList('\6');
    if (::setxattr(m_folder.path().c_str(), "system.posix_acl_default", list.data(), list.size(), 0) != 0)
        GTEST_SKIP() << "there are no access lists in " << m_folder.path();
    ASSERT_EQ(codeOf(replaceFileAtPath(m_file, bytesOf("new"))), 0);
    EXPECT_EQ(attributeAt(m_file, "system.posix_acl_access"), "-");
}

TEST_F(ReplacingAFile, LetsNobodyReadTheNewOneBefore) {
    ASSERT_EQ(::chmod(m_file.c_str(), 0666), 0);
    std::string during;
    auto const restrict = [&](FileDescriptor const& file) {
        during = contents();
        return doneIf(::fchmod(file.number(), 0600) == 0);
    };
    FileReplacement const how{.newFileMode = 0666, .beforeFlushing = restrict};
    EXPECT_EQ(codeOf(replaceFileAtPath(m_file, bytesOf("new"), how)), 0);
    EXPECT_EQ(during, "old");
    EXPECT_EQ(modeAt(m_file), 0600U);
    withRefusedCall(SYS_fchmod, EPERM, [&] { EXPECT_NE(codeOf(replaceFileAtPath(m_file, bytesOf("newer"))), 0); });
    EXPECT_EQ(contents(), "new");
}

TEST_F(ReplacingAFile, GivesOurGroupNoMoreThanEverybody) {
    ASSERT_EQ(::chmod(m_file.c_str(), 06674), 0);
    withRefusedCall(SYS_fchown, EPERM, [&] { EXPECT_EQ(codeOf(replaceFileAtPath(m_file, bytesOf("new"))), 0); });
    EXPECT_EQ(modeAt(m_file), 0644U);
}

TEST_F(ReplacingAFile, GivesItToItsOwnerAndGroup) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root gives files away";
    ASSERT_EQ(::chown(m_file.c_str(), 12'345, 23'456), 0);
    ASSERT_EQ(::chmod(m_file.c_str(), 0664), 0);
    ASSERT_EQ(codeOf(replaceFileAtPath(m_file, bytesOf("new"))), 0);
    EXPECT_EQ(statusAt(m_file).st_uid, 12'345U);
    EXPECT_EQ(statusAt(m_file).st_gid, 23'456U);
    EXPECT_EQ(modeAt(m_file), 0664U);
}

TEST_F(ReplacingAFile, SaysWhatTheDiskSays) {
    for (long const call : {SYS_fsync, SYS_close, SYS_write, SYS_renameat, SYS_listxattr}) {
        withRefusedCall(call, EIO, [&] { EXPECT_EQ(codeOf(replaceFileAtPath(m_file, bytesOf("new"))), EIO) << call; });
        EXPECT_EQ(contents(), "old");
        EXPECT_EQ(names(), "file\n");
    }
}

TEST_F(ReplacingAFile, GivesANewOneThePermissionsOfTheUmask) {
    std::string const file = m_folder.path("new");
    mode_t const before = ::umask(0027);
    int const code = codeOf(replaceFileAtPath(file, bytesOf("new")));
    ::umask(before);
    ASSERT_EQ(code, 0);
    EXPECT_EQ(modeAt(file), 0640U);
}

TEST_F(ReplacingAFile, MakesANewOneLikeAnother) {
    bool const mayGive = ::chown(m_file.c_str(), 12'345, 23'456) == 0;
    EXPECT_EQ(mayGive, ::geteuid() == 0);
    ASSERT_EQ(::chmod(m_file.c_str(), 0751), 0);
    FileDescriptor const model = openPath(m_file, O_PATH).takeValue();
    ASSERT_EQ(codeOf(replaceFileAtPath(m_folder.path("new"), bytesOf("new"), {.newFileIsLike = &model})), 0);
    EXPECT_EQ(modeAt(m_folder.path("new")), 0640U);
    EXPECT_EQ(statusAt(m_folder.path("new")).st_uid, statusAt(m_file).st_uid);
    EXPECT_EQ(statusAt(m_folder.path("new")).st_gid, statusAt(m_file).st_gid);
    withRefusedCall(SYS_fchown, EPERM, [&] {
        EXPECT_EQ(codeOf(replaceFileAtPath(m_folder.path("ours"), bytesOf("new"), {.newFileIsLike = &model})), 0);
    });
    EXPECT_EQ(modeAt(m_folder.path("ours")), 0600U);
}

TEST_F(ReplacingAFile, LeavesOneThatHasChanged) {
    FileStatus const state = fileStatusInFolder(m_open, "file").value();
    m_folder.makeFile("other", "somebody's");
    ASSERT_EQ(::rename(m_folder.path("other").c_str(), m_file.c_str()), 0);
    EXPECT_EQ(codeOf(replaceFileInFolder(m_open, "file", bytesOf("new"), {.hasToBe = true, .state = state})), EAGAIN);
    EXPECT_EQ(contents(), "somebody's");
    EXPECT_EQ(codeOf(replaceFileInFolder(m_open, "file", bytesOf("new"), {.hasToBe = true})), EEXIST);
    ASSERT_EQ(::unlink(m_file.c_str()), 0);
    EXPECT_EQ(codeOf(replaceFileInFolder(m_open, "file", bytesOf("new"), {.hasToBe = true, .state = state})), EAGAIN);
    EXPECT_EQ(codeOf(replaceFileInFolder(m_open, "file", bytesOf("new"), {.hasToBe = true})), 0);
    EXPECT_EQ(contents(), "new");
}

TEST_F(ReplacingAFile, LeavesOneThatChangesMeanwhile) {
    FileStatus const state = fileStatusInFolder(m_open, "file").value();
    auto const change = [&](FileDescriptor const&) {
        m_folder.makeFile("other", "somebody's");
        return doneIf(::rename(m_folder.path("other").c_str(), m_file.c_str()) == 0);
    };
    EXPECT_EQ(codeOf(replaceFileInFolder(m_open, "file", bytesOf("new"),
                                         {.hasToBe = true, .state = state, .beforeRenaming = change})),
              EAGAIN);
    EXPECT_EQ(contents(), "somebody's");
    ASSERT_EQ(::unlink(m_file.c_str()), 0);
    EXPECT_EQ(codeOf(replaceFileInFolder(m_open, "file", bytesOf("new"), {.hasToBe = true, .beforeRenaming = change})),
              EEXIST);
    EXPECT_EQ(contents(), "somebody's");
    EXPECT_EQ(names(), "file\n");
}

TEST_F(ReplacingAFile, IsFlushedBeforeTheOldOneIsLookedAtForTheLastTime) {
    bool wasLookedAt = false;
    auto const look = [&](FileDescriptor const&) {
        wasLookedAt = true;
        return Result<void>();
    };
    withRefusedCall(SYS_fsync, EIO, [&] {
        EXPECT_EQ(codeOf(replaceFileAtPath(m_file, bytesOf("new"), {.beforeRenaming = look})), EIO);
        EXPECT_FALSE(wasLookedAt);
        EXPECT_EQ(codeOf(replaceFileAtPath(m_file, bytesOf("new"), {.beforeFlushing = look})), EIO);
        EXPECT_TRUE(wasLookedAt);
    });
    EXPECT_EQ(contents(), "old");
}

TEST_F(ReplacingAFile, ReplacesNothingWhereTheSystemCannotPromiseIt) {
    withRefusedCall(SYS_renameat2, EINVAL, [&] {
        EXPECT_NE(codeOf(replaceFileInFolder(m_open, "file", bytesOf("new"), {.hasToBe = true})), 0);
        EXPECT_EQ(codeOf(replaceFileInFolder(m_open, "new", bytesOf("new"), {.hasToBe = true})), 0);
    });
    EXPECT_EQ(contents(), "old");
    EXPECT_EQ(names(), "file\nnew\n");
}

TEST_F(ReplacingAFile, FollowsAsManyLinksAsTheSystem) {
    std::string target = "file";
    for (int number = 1; number <= 41; ++number) {
        std::string const name = "link " + std::to_string(number);
        ASSERT_EQ(::symlink(target.c_str(), m_folder.path(name).c_str()), 0);
        target = name;
    }
    EXPECT_EQ(::access(m_folder.path("link 40").c_str(), F_OK), 0);
    EXPECT_EQ(codeOf(replaceFileAtPath(m_folder.path("link 40"), bytesOf("new"))), 0);
    EXPECT_EQ(contents(), "new");
    EXPECT_EQ(::access(m_folder.path("link 41").c_str(), F_OK), -1);
    EXPECT_EQ(codeOf(replaceFileAtPath(m_folder.path("link 41"), bytesOf("newer"))), ELOOP);
    EXPECT_EQ(contents(), "new");
}

TEST_F(ReplacingAFile, IsGivenUpWhenTheCallerFails) {
    auto const fail = [](FileDescriptor const&) { return Result<void>(SystemError{.code = EOWNERDEAD}); };
    EXPECT_EQ(codeOf(replaceFileAtPath(m_file, bytesOf("new"), {.beforeRenaming = fail})), EOWNERDEAD);
    EXPECT_EQ(contents(), "old");
    EXPECT_EQ(codeOf(replaceFileAtPath(m_file, bytesOf("new"), {.afterRenaming = fail})), EOWNERDEAD);
    EXPECT_EQ(contents(), "new");
    EXPECT_EQ(names(), "file\n");
}

TEST_F(ReplacingAFile, KeepsAttributesOrChangesNothing) {
    ASSERT_EQ(::setxattr(m_file.c_str(), "user.colour", "red", 3, 0), 0);
    ASSERT_EQ(::chmod(m_file.c_str(), 0200), 0);
    OrdinaryUser::own(m_folder.path());
    OrdinaryUser::own(m_file);
    {
        OrdinaryUser const user;
        EXPECT_EQ(codeOf(replaceFileAtPath(m_file, bytesOf("new"))), EACCES);
    }
    ASSERT_EQ(::chmod(m_file.c_str(), 0600), 0);
    EXPECT_EQ(contents(), "old");
    EXPECT_EQ(names(), "file\n");
    for (long const call : {SYS_getxattr, SYS_fsetxattr}) {
        withRefusedCall(call, EACCES, [&] { EXPECT_EQ(codeOf(replaceFileAtPath(m_file, bytesOf("new"))), EACCES); });
        EXPECT_EQ(contents(), "old");
        EXPECT_EQ(::getxattr(m_file.c_str(), "user.colour", nullptr, 0), 3);
    }
}

TEST_F(ReplacingAFile, TellsWhatFailedAndOnWhat) {
    Result<void> const replaced = replaceFileAtPath(m_folder.path("none/file"), bytesOf("new"));
    ASSERT_FALSE(replaced.isDone());
    EXPECT_EQ(replaced.problem().code, ENOENT);
    EXPECT_STREQ(replaced.problem().operation, "open");
    EXPECT_EQ(replaced.problem().item, m_folder.path("none/"));
    withRefusedCall(SYS_renameat, EACCES, [&] {
        Result<void> const refused = replaceFileAtPath(m_file, bytesOf("new"));
        ASSERT_FALSE(refused.isDone());
        EXPECT_STREQ(refused.problem().operation, "rename");
        EXPECT_EQ(refused.problem().item, "file");
    });
}

TEST_F(ReplacingAFile, LeavesWhatIsNoFile) {
    EXPECT_EQ(codeOf(replaceFileAtPath(m_folder.makeFolder("folder"), bytesOf("new"))), EISDIR);
    EXPECT_NE(codeOf(replaceFileAtPath(m_folder.path("folder/"), bytesOf("new"))), 0);
    ASSERT_EQ(::mkfifo(m_folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(codeOf(replaceFileAtPath(m_folder.path("pipe"), bytesOf("new"))), EINVAL);
    ASSERT_EQ(::symlink("file", m_folder.path("link").c_str()), 0);
    EXPECT_NE(codeOf(replaceFileInFolder(m_open, "link", bytesOf("new"))), 0);
    EXPECT_EQ(contents(), "old");
}

TEST(MakingAFolder, MakesThoseAboveItToo) {
    TemporaryFolder const folder;
    EXPECT_EQ(codeOf(makeFolderAtPath(folder.path("a/b//c/"))), 0);
    EXPECT_EQ(modeAt(folder.path("a")), 0700U);
    EXPECT_EQ(modeAt(folder.path("a/b/c")), 0700U);
    EXPECT_EQ(codeOf(makeFolderAtPath(folder.path("a/b/c"))), 0) << "it is there";
    EXPECT_EQ(codeOf(makeFolderAtPath("/")), 0);
}

TEST(MakingAFolder, LeavesWhatIsNoFolder) {
    TemporaryFolder const folder;
    folder.makeFile("file", "");
    EXPECT_EQ(codeOf(makeFolderAtPath(folder.path("file"))), ENOTDIR);
    EXPECT_EQ(codeOf(makeFolderAtPath(folder.path("file/a"))), ENOTDIR);
    ASSERT_EQ(::symlink("none", folder.path("link").c_str()), 0);
    EXPECT_EQ(codeOf(makeFolderAtPath(folder.path("link"))), ENOENT);
    ASSERT_EQ(::symlink(".", folder.path("here").c_str()), 0);
    EXPECT_EQ(codeOf(makeFolderAtPath(folder.path("here/a"))), 0);
    EXPECT_EQ(modeAt(folder.path("a")), 0700U);
}

} // namespace
} // namespace mac::test
