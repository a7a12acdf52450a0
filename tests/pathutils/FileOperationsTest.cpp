#include "pathutils/FileOperations.h"
#include "platform/foundation/objects/NSNull.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Environment.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

namespace {

class FileOperations : public testing::Test {
protected:
    NSString at(std::string_view name) const { return path(m_folder.path(name)); }

    TemporaryFolder const m_folder{};
};

TEST_F(FileOperations, RemovesAFileAndAFolderWithAllInIt) {
    m_folder.makeFile("file", "contents");
    m_folder.makeFile("folder/deep/er/file", "contents");
    EXPECT_TRUE(pxRemoveFile2(at("file")) == nil);
    EXPECT_TRUE(pxRemoveFile(at("folder")));
    EXPECT_TRUE(namesIn(m_folder.path()).empty());
}

TEST_F(FileOperations, RemovesALinkAndNotWhatItLeadsTo) {
    m_folder.makeFile("folder/file", "contents");
    for (char const* const name : {"link", "link/"}) {
        ASSERT_EQ(::symlink("folder", m_folder.path("link").c_str()), 0);
        EXPECT_TRUE(pxRemoveFile(at(name)));
        EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>{"folder"});
        EXPECT_EQ(textOf(m_folder.path("folder/file")), "contents");
    }
}

TEST_F(FileOperations, TellsWhyNothingIsRemoved) {
    m_folder.makeFile("file", "contents");
    EXPECT_EQ(fileSystemBytes(pxRemoveFile2(at("none"))), std::string("\"none\": ") + std::strerror(ENOENT));
    EXPECT_FALSE(pxRemoveFile(at("none")));
    EXPECT_FALSE(pxRemoveFile(at("file/below")));
    EXPECT_EQ(fileSystemBytes(pxRemoveFile2("")), "Could not delete file item.");
    EXPECT_FALSE(pxRemoveFile(""));
    EXPECT_FALSE(pxRemoveFile(at(".")));
    EXPECT_FALSE(pxRemoveFile(at("..")));
    EXPECT_EQ(textOf(m_folder.path("file")), "contents");
}

TEST_F(FileOperations, RemovesWhatExistsOrNothing) {
    m_folder.makeFile("file", "contents");
    ASSERT_EQ(::symlink("nowhere", m_folder.path("lost").c_str()), 0);
    EXPECT_TRUE(pxRemoveFileIfExists(at("none")));
    EXPECT_TRUE(pxRemoveFileIfExists(at("file/below")));
    EXPECT_TRUE(pxRemoveFileIfExists(""));
    EXPECT_EQ(namesIn(m_folder.path()), (std::vector<std::string>{"file", "lost"}));
    EXPECT_TRUE(pxRemoveFileIfExists(at("lost")));
    EXPECT_TRUE(pxRemoveFileIfExists(at("file")));
    EXPECT_TRUE(namesIn(m_folder.path()).empty());
}

TEST_F(FileOperations, FindsNothingToRemoveAtARelativePath) {
    m_folder.makeFile("file", "contents");
    CurrentFolder const current(m_folder.path());
    for (char const* const relative : {"file", "./file", "../", "~/file"})
        EXPECT_TRUE(pxRemoveFileIfExists(path(relative))) << relative;
    EXPECT_TRUE(pxRemoveFiles(NSArray::arrayWithObject_("file").objectEnumerator()));
    EXPECT_EQ(textOf(m_folder.path("file")), "contents");
}

TEST_F(FileOperations, DoesNotTakeWhatCannotBeLookedAtForRemoved) {
    m_folder.makeFile("closed/file", "contents");
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(m_folder.path("closed").c_str(), 0), 0);
    {
        OrdinaryUser const user;
        EXPECT_FALSE(pxRemoveFileIfExists(at("closed/file")));
    }
    ASSERT_EQ(::chmod(m_folder.path("closed").c_str(), 0700), 0);
    EXPECT_EQ(textOf(m_folder.path("closed/file")), "contents");
}

TEST_F(FileOperations, RemovesAllThatAnEnumeratorGives) {
    for (char const* const name : {"first", "locked", "last"})
        m_folder.makeFile(name, "contents");
    NSArray const paths = NSArray::arrayWithObjects_({at("first"), NSNull::null(), at("none"), at("x/../last")});
    EXPECT_TRUE(pxRemoveFiles(paths.objectEnumerator()));
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>{"locked"});
    EXPECT_TRUE(pxRemoveFiles(NSArray::array().objectEnumerator()));
    m_folder.makeFile("last", "contents");
    ASSERT_TRUE(pxPathSetNotWritable_locked_(at("locked"), NO, YES));
    EXPECT_FALSE(pxRemoveFiles(NSArray::arrayWithObjects_({at("locked"), at("last")}).objectEnumerator()));
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>{"locked"}) << "the rest went";
    EXPECT_FALSE(pxRemoveFiles(NSArray::arrayWithObject_(number(1)).objectEnumerator()));
    m_folder.makeFile("model", "");
    ASSERT_TRUE(pxSetFileAttributesFrom_(at("locked"), at("model")));
}

TEST_F(FileOperations, RemovesNothingOfAFolderThatHoldsALockedItem) {
    m_folder.makeFile("folder/first", "contents");
    m_folder.makeFile("folder/inner/locked", "kept");
    m_folder.makeFile("folder/last", "contents");
    ASSERT_TRUE(pxPathSetNotWritable_locked_(at("folder/inner/locked"), NO, YES));
    EXPECT_EQ(text(pxRemoveFile2(at("folder"))), "\"locked\": The item is locked");
    EXPECT_EQ(namesIn(m_folder.path("folder")), (std::vector<std::string>{"first", "inner", "last"}));
    ASSERT_TRUE(pxSetFileAttributesFrom_(at("folder/inner/locked"), at("folder/first")));
    EXPECT_TRUE(pxRemoveFile2(at("folder")) == nil);
}

TEST_F(FileOperations, RemovesNothingForAnOrdinaryUserWithoutPermission) {
    m_folder.makeFile("folder/file", "contents");
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(m_folder.path("folder").c_str(), 0555), 0);
    OrdinaryUser const user;
    EXPECT_EQ(text(pxRemoveFile2(at("folder/file"))), std::string("\"file\": ") + std::strerror(EACCES));
    EXPECT_FALSE(pxRemoveFile(at("folder")));
    EXPECT_EQ(textOf(m_folder.path("folder/file")), "contents");
}

TEST_F(FileOperations, RemovesItemsOfAnyName) {
    for (std::string const& name : {std::string(255, 'x'), std::string("\"q\" 'p' %@ %n \\"), std::string("a\nb"),
                                    std::string("\xff\x80"), std::string("...")}) {
        m_folder.makeFile(name, "odd");
        EXPECT_TRUE(pxRemoveFile2(at(name)) == nil);
    }
    EXPECT_TRUE(namesIn(m_folder.path()).empty());
}

TEST_F(FileOperations, ANilReceiverIsNilAndNo) {
    EXPECT_TRUE(pxRemoveFile2(nil) == nil);
    EXPECT_FALSE(pxRemoveFile(nil));
    EXPECT_FALSE(pxRemoveFileIfExists(nil));
    EXPECT_FALSE(pxRemoveFiles(nil));
}

} // namespace

} // namespace mac::test
