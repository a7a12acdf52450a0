#include "pathutils/FileOperations.h"
#include "platform/foundation/files/NSFileManager.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Environment.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

namespace {

class FileOperationsPlaces : public PrivateMounts {
protected:
    FileOperationsPlaces() { m_home.makeFolder("home"); }
    NSString at(std::string_view name) const { return path(m_home.path(name)); }
    NSString there(std::string_view name) const { return path(m_point.path(name)); }

    TemporaryFolder const m_home{};
    TemporaryFolder const m_point{};
    EnvironmentVariable const m_homePath{"HOME", m_home.path("home")};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_home.path("data")};
    EnvironmentVariable const m_cache{"XDG_CACHE_HOME", m_home.path("cache")};
    EnvironmentVariable const m_temporary{"TMPDIR", m_home.path("tmp/")};
};

TEST_F(FileOperationsPlaces, AFreePathIsUniqueAsItIs) {
    EXPECT_EQ(fileSystemBytes(pxUniquePathOfPath(at("x/../none.txt/"))), m_home.path("none.txt"));
    EXPECT_EQ(text(pxUniquePathOfPath("relative.txt")), "relative.txt");
    EXPECT_TRUE(pxUniquePathOfPath(nil) == nil);
}

TEST_F(FileOperationsPlaces, ATakenPathGetsANumberBeforeItsExtension) {
    m_home.makeFile("Report.txt", "");
    EXPECT_EQ(fileSystemBytes(pxUniquePathOfPath(at("Report.txt"))), m_home.path("Report-1.txt"));
    ASSERT_EQ(::symlink("nowhere", m_home.path("Report-1.txt").c_str()), 0);
    EXPECT_EQ(fileSystemBytes(pxUniquePathOfPath(at("Report.txt"))), m_home.path("Report-2.txt"));
    EXPECT_EQ(fileSystemBytes(pxUniquePathOfPath(at("Report-1.txt"))), m_home.path("Report-1-1.txt"));
    m_home.makeFile("plain", "");
    EXPECT_EQ(fileSystemBytes(pxUniquePathOfPath(at("plain"))), m_home.path("plain-1"));
    m_home.makeFolder("v1.2");
    EXPECT_EQ(fileSystemBytes(pxUniquePathOfPath(at("v1.2"))), m_home.path("v1.2-1"));
    m_home.makeFile("%@ \"\xff\".txt", "");
    EXPECT_EQ(fileSystemBytes(pxUniquePathOfPath(at("%@ \"\xff\".txt"))), m_home.path("%@ \"\xff\"-1.txt"));
    EXPECT_EQ(text(pxUniquePathOfPath("/")), "/-1") << "the root's name is a slash";
}

TEST_F(FileOperationsPlaces, TheTrashIsThatOfTheVolume) {
    mountMemory(m_point.path());
    EXPECT_TRUE(pxTrashFolderPathOfPath(at("home")) == nil) << "there is none, and none is made";
    EXPECT_FALSE(isThere(m_home.path("data")));
    m_home.makeFile("file", "");
    m_point.makeFile("file", "");
    ASSERT_FALSE(pxMoveToTrash(at("file")) == nil);
    EXPECT_EQ(fileSystemBytes(pxTrashFolderPathOfPath(at("home"))), m_home.path("data/Trash/files"));
    EXPECT_TRUE(pxTrashFolderPathOfPath(there("file")) == nil);
    ASSERT_FALSE(pxMoveToTrash(there("file")) == nil);
    EXPECT_EQ(fileSystemBytes(pxTrashFolderPathOfPath(there(""))),
              m_point.path(".Trash-" + std::to_string(::geteuid()) + "/files"));
    for (NSString const& none : {at("none"), NSString(""), NSString("relative"), NSString()})
        EXPECT_TRUE(pxTrashFolderPathOfPath(none) == nil);
}

TEST_F(FileOperationsPlaces, TemporaryItemsLieOnTheirVolume) {
    mountMemory(m_point.path());
    m_point.makeFile("file", "");
    EXPECT_EQ(fileSystemBytes(NSTemporaryDirectory()), m_home.path("tmp"));
    EXPECT_EQ(fileSystemBytes(pxTemporaryItemsFolderPathOfPath(at("home"))), m_home.path("tmp"));
    std::string const expected = m_point.path(".TemporaryItems-" + std::to_string(::geteuid()));
    EXPECT_EQ(fileSystemBytes(pxTemporaryItemsFolderPathOfPath(there("file"))), expected);
    EXPECT_EQ(fileSystemBytes(pxTemporaryItemsFolderPathOfPath(there(""))), expected);
    struct stat status {};
    ASSERT_EQ(::lstat(expected.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
    for (NSString const& none : {at("none"), NSString(""), NSString()})
        EXPECT_TRUE(pxTemporaryItemsFolderPathOfPath(none) == nil);
}

TEST_F(FileOperationsPlaces, AFolderThatOthersMayEnterHoldsNoTemporaryItems) {
    mountMemory(m_point.path());
    std::string const name = ".TemporaryItems-" + std::to_string(::geteuid());
    ASSERT_EQ(::mkdir(m_point.path(name).c_str(), 0700), 0);
    ASSERT_EQ(::chmod(m_point.path(name).c_str(), 0777), 0);
    EXPECT_TRUE(pxTemporaryItemsFolderPathOfPath(there("")) == nil);
    ASSERT_EQ(::rmdir(m_point.path(name).c_str()), 0);
    ASSERT_EQ(::symlink(m_home.path().c_str(), m_point.path(name).c_str()), 0);
    EXPECT_TRUE(pxTemporaryItemsFolderPathOfPath(there("")) == nil);
    ASSERT_EQ(::unlink(m_point.path(name).c_str()), 0);
    makeReadOnly(m_point.path());
    EXPECT_TRUE(pxTemporaryItemsFolderPathOfPath(there("")) == nil);
}

TEST_F(FileOperationsPlaces, TheUsersTemporaryItemsAreMade) {
    EXPECT_EQ(fileSystemBytes(pxTemporaryItemsFolderPath()), m_home.path("cache/TemporaryItems"));
    EXPECT_EQ(fileSystemBytes(pxTemporaryItemsFolderPath()), m_home.path("cache/TemporaryItems"));
    id const answer = classOf<NSString>().performClassSelector_("pxTemporaryItemsFolderPath");
    EXPECT_EQ(fileSystemBytes(answer), m_home.path("cache/TemporaryItems"));
    EnvironmentVariable const none("XDG_CACHE_HOME", "/dev/null/cache");
    EXPECT_TRUE(pxTemporaryItemsFolderPath() == nil);
}

} // namespace

} // namespace mac::test
