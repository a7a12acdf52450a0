#include "pathutils/FileOperations.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Environment.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

namespace {

// The trash lies in a folder of the test's own, on the volume of the items.
class FileOperationsTrash : public testing::Test {
protected:
    NSString at(std::string_view name) const { return path(m_folder.path(name)); }
    std::string trashed(std::string_view name) const { return m_folder.path("data/Trash/files/") + std::string(name); }

    TemporaryFolder const m_folder{};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.makeFolder("data")};
};

TEST_F(FileOperationsTrash, AnswersWhereTheItemIsNow) {
    m_folder.makeFile("file", "contents");
    m_folder.makeFile("folder/file", "inner");
    EXPECT_EQ(fileSystemBytes(pxMoveToTrash(at("file"))), trashed("file"));
    EXPECT_EQ(textOf(trashed("file")), "contents");
    // The path of a folder ends with a slash in scripts.
    EXPECT_EQ(fileSystemBytes(pxMoveToTrash(at("folder/../folder"))), trashed("folder/"));
    EXPECT_EQ(textOf(trashed("folder/file")), "inner");
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>{"data"});
}

TEST_F(FileOperationsTrash, ALinkGoesItself) {
    m_folder.makeFile("folder/file", "contents");
    ASSERT_EQ(::symlink("folder", m_folder.path("folderLink").c_str()), 0);
    ASSERT_EQ(::symlink("folder/file", m_folder.path("link").c_str()), 0);
    EXPECT_EQ(fileSystemBytes(pxMoveToTrash(at("link"))), trashed("link"));
    EXPECT_EQ(fileSystemBytes(pxMoveToTrash(at("folderLink/"))), trashed("folderLink"));
    EXPECT_EQ(namesIn(m_folder.path("data/Trash/files")), (std::vector<std::string>{"folderLink", "link"}));
    EXPECT_EQ(textOf(m_folder.path("folder/file")), "contents");
}

TEST_F(FileOperationsTrash, AMissingItemIsNil) {
    ASSERT_EQ(::symlink("nowhere", m_folder.path("lost").c_str()), 0);
    for (NSString const& none : {at("none"), at("lost"), at("none/below"), NSString("none"), NSString(""), NSString()})
        EXPECT_TRUE(pxMoveToTrash(none) == nil);
    EXPECT_TRUE(isThere(m_folder.path("lost")));
    EXPECT_FALSE(isThere(m_folder.path("data/Trash")));
}

TEST_F(FileOperationsTrash, NeedsNeitherABusNorADisplay) {
    EnvironmentVariable const bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + m_folder.path("none"));
    EnvironmentVariable const runtime("XDG_RUNTIME_DIR", std::nullopt);
    EnvironmentVariable const display("DISPLAY", std::nullopt);
    m_folder.makeFile("file", "contents");
    EXPECT_EQ(fileSystemBytes(pxMoveToTrash(at("file"))), trashed("file"));
}

TEST_F(FileOperationsTrash, LeavesAnItemForWhichNoTrashCanBeMade) {
    EnvironmentVariable const none("XDG_DATA_HOME", m_folder.makeFile("no folder", "") + "/data");
    m_folder.makeFile("file", "contents");
    EXPECT_TRUE(pxMoveToTrash(at("file")) == nil);
    EXPECT_EQ(textOf(m_folder.path("file")), "contents");
}

TEST_F(FileOperationsTrash, LeavesALockedItem) {
    m_folder.makeFile("file", "contents");
    m_folder.makeFile("model", "");
    ASSERT_TRUE(pxPathSetNotWritable_locked_(at("file"), NO, YES));
    EXPECT_TRUE(pxMoveToTrash(at("file")) == nil);
    EXPECT_EQ(textOf(m_folder.path("file")), "contents");
    EXPECT_FALSE(isThere(m_folder.path("data/Trash"))) << "nothing was made";
    ASSERT_TRUE(pxSetFileAttributesFrom_(at("file"), at("model")));
    EXPECT_FALSE(pxMoveToTrash(at("file")) == nil);
}

TEST_F(FileOperationsTrash, LeavesAnOrdinaryUserWhatOthersOwn) {
    m_folder.makeFile("closed/file", "contents");
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(m_folder.path("closed").c_str(), 0555), 0);
    OrdinaryUser::own(m_folder.path("data"));
    OrdinaryUser const user;
    EXPECT_TRUE(pxMoveToTrash(at("closed/file")) == nil);
    EXPECT_EQ(textOf(m_folder.path("closed/file")), "contents");
}

TEST_F(FileOperationsTrash, TakesANameOfEveryPrintableCharacterAndOfOtherBytes) {
    std::string printable;
    for (char character = ' '; character <= '~'; ++character)
        if (character != '/') printable += character;
    for (std::string const& name :
         {printable, std::string("a\nb\tc\rd"), std::string("\xff\xfe\x80 bytes"), std::string("100%@%n"),
          std::string("\"; do shell script \"touch x\"; \""), std::string("\\"), std::string("\\\""),
          std::string(255, 'n'), std::string("a:b"), std::string("\x01\x7f"), std::string("é\xcc\x81 ")}) {
        SCOPED_TRACE(name);
        m_folder.makeFile(name, "contents");
        NSString const answer = pxMoveToTrash(at(name));
        EXPECT_FALSE(answer == nil);
        EXPECT_FALSE(isThere(m_folder.path(name)));
        EXPECT_EQ(textOf(fileSystemBytes(answer)), "contents") << fileSystemBytes(answer);
    }
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>{"data"});
}

} // namespace

} // namespace mac::test
