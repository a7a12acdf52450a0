#include "pathutils/ExtendedAttributes.h"
#include "pathutils/FileOperations.h"
#include "pathutils/FinderMetadata.h"
#include "platform/foundation/files/NSFileAttributes.h"
#include "platform/foundation/files/NSFileManager.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Environment.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

namespace {

using Names = std::vector<std::string>;

unsigned modeOf(std::string const& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

class FileOperationsCreating : public testing::Test {
protected:
    NSString at(std::string_view name) const { return path(m_folder.path(name)); }

    TemporaryFolder const m_folder{};
};

TEST_F(FileOperationsCreating, AnAliasFileHoldsItsRecordAndIsFlagged) {
    EXPECT_TRUE(pxCreateAliasFileWithContent_(at("alias"), bytes("record")));
    EXPECT_EQ(textOf(m_folder.path("alias")), "");
    EXPECT_EQ(bytesOf(pxExtendedAttributeDataForKey_(at("alias"), "com.apple.ResourceFork")), "record");
    std::uint16_t flags = 0;
    EXPECT_TRUE(pxFinderFlagsOfPath_(at("alias"), &flags));
    EXPECT_EQ(flags, 0x8000);
}

TEST_F(FileOperationsCreating, AnAliasFileStaysHalfMade) {
    EXPECT_FALSE(pxCreateAliasFileWithContent_(at("alias"), nil));
    EXPECT_TRUE(isThere(m_folder.path("alias")));
    EXPECT_FALSE(pxCreateAliasFileWithContent_(at("none/alias"), bytes("record")));
    EXPECT_FALSE(pxCreateAliasFileWithContent_(at(""), bytes("record"))) << "a folder";
    EXPECT_FALSE(pxCreateAliasFileWithContent_("", bytes("record")));
    EXPECT_FALSE(pxCreateAliasFileWithContent_(nil, bytes("record")));
}

TEST_F(FileOperationsCreating, AFolderIsMadeWithThoseAbove) {
    EXPECT_TRUE(pxCreateFolder(at("a/b \"%@\" \\/c\nd\xff")));
    EXPECT_EQ(namesIn(m_folder.path("a/b \"%@\" \\")), Names{"c\nd\xff"});
    EXPECT_TRUE(pxCreateFolder(at("a")));
    EXPECT_TRUE(pxCreateFolder(at("x/../y/./z/")));
    EXPECT_TRUE(isThere(m_folder.path("y/z")));
    EXPECT_FALSE(isThere(m_folder.path("x")));
    EXPECT_TRUE(pxCreateFolder("/"));
}

TEST_F(FileOperationsCreating, AFolderCannotBeMadeBelowAFileOrALostLink) {
    m_folder.makeFile("file", "contents");
    ASSERT_EQ(::symlink("nowhere", m_folder.path("lost").c_str()), 0);
    EXPECT_TRUE(pxCreateFolder(at("file"))) << "something is there";
    EXPECT_FALSE(pxCreateFolder(at("file/below/it")));
    EXPECT_FALSE(pxCreateFolder(at("lost")));
    EXPECT_FALSE(pxCreateFolder(at("lost/below")));
    EXPECT_FALSE(pxCreateFolder(at(std::string(256, 'x'))));
    EXPECT_FALSE(pxCreateFolder("relative/folder")) << "nothing exists at a relative path";
    EXPECT_FALSE(pxCreateFolder(""));
    EXPECT_FALSE(pxCreateFolder(nil));
    EXPECT_EQ(namesIn(m_folder.path()), (Names{"file", "lost"}));
}

TEST_F(FileOperationsCreating, AFolderIsMadeAtAPathOfAnyLength) {
    // Longer than the system takes in one call.
    std::string const component(100, 'f');
    std::string name = component;
    for (int level = 0; level < 60; ++level)
        name += "/" + component;
    EXPECT_TRUE(pxCreateFolder(at(name)));
    EXPECT_TRUE(pxRemoveFile(at(component)));
    EXPECT_TRUE(namesIn(m_folder.path()).empty());
}

TEST_F(FileOperationsCreating, AUniqueFolderGetsTheNextFreeName) {
    for (char const* const expected : {"f", "f-1", "f-2"})
        EXPECT_EQ(fileSystemBytes(pxCreateUniqueFolder(at("f"))), m_folder.path(expected));
    m_folder.makeFile("g", "");
    ASSERT_EQ(::symlink("nowhere", m_folder.path("g-1").c_str()), 0);
    EXPECT_EQ(fileSystemBytes(pxCreateUniqueFolder(at("g"))), m_folder.path("g-2"));
}

TEST_F(FileOperationsCreating, AUniqueFolderMayLieAtARelativePath) {
    m_folder.makeFolder("folder");
    CurrentFolder const current(m_folder.path());
    for (char const* const expected : {"folder/f", "folder/f-1", "folder/f-2"})
        EXPECT_EQ(fileSystemBytes(pxCreateUniqueFolder("folder/f")), expected);
    EXPECT_TRUE(pxCreateUniqueFolder("f") == nil) << "the empty path is no folder";
    EXPECT_EQ(namesIn(m_folder.path("folder")), (Names{"f", "f-1", "f-2"}));
}

TEST_F(FileOperationsCreating, NoUniqueFolderIsMadeWhereNoneCanBe) {
    m_folder.makeFile("file", "");
    for (NSString const& none : {at("none/f"), at("file/f"), NSString("")})
        EXPECT_TRUE(pxCreateUniqueFolder(none) == nil);
    EXPECT_TRUE(pxCreateUniqueFolder(nil) == nil);
    // The name is taken, and with a number behind it is too long.
    std::string const longest(255, 'x');
    EXPECT_EQ(fileSystemBytes(pxCreateUniqueFolder(at(longest))), m_folder.path(longest));
    EXPECT_TRUE(pxCreateUniqueFolder(at(longest)) == nil);
    EXPECT_TRUE(pxCreateUniqueFolder(at(std::string(256, 'x'))) == nil);
    EXPECT_EQ(namesIn(m_folder.path()).size(), 2U);
}

TEST_F(FileOperationsCreating, NoUniqueFolderIsMadeInAReadOnlyOne) {
    m_folder.makeFolder("closed/f");
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(m_folder.path("closed").c_str(), 0555), 0);
    OrdinaryUser const user;
    EXPECT_TRUE(pxCreateUniqueFolder(at("closed/f")) == nil);
    EXPECT_FALSE(pxCreateFolder(at("closed/g")));
}

class FileOperationsCreatingOnVolumes : public PrivateMounts {
protected:
    TemporaryFolder const m_point{};
};

TEST_F(FileOperationsCreatingOnVolumes, AFullVolumeEndsTheSearchForAName) {
    mountMemory(m_point.path(), "nr_inodes=3");
    m_point.makeFolder("f");
    m_point.makeFolder("g");
    EXPECT_TRUE(pxCreateUniqueFolder(path(m_point.path("f"))) == nil);
    EXPECT_FALSE(pxCreateFolder(path(m_point.path("h"))));
}

TEST_F(FileOperationsCreatingOnVolumes, AReadOnlyVolumeEndsTheSearchForAName) {
    mountMemory(m_point.path());
    m_point.makeFolder("f");
    makeReadOnly(m_point.path());
    EXPECT_TRUE(pxCreateUniqueFolder(path(m_point.path("f"))) == nil);
    EXPECT_FALSE(pxCreateFolder(path(m_point.path("h"))));
}

TEST_F(FileOperationsCreating, AFolderLikeAModelHasItsNameAndAttributes) {
    m_folder.makeFolder("models/one/two");
    ASSERT_EQ(::chmod(m_folder.path("models/one").c_str(), 0750), 0);
    ASSERT_EQ(::chmod(m_folder.path("models/one/two").c_str(), 0711), 0);
    EXPECT_TRUE(pxSetFinderFlagsOfPath_mask_(at("models/one/two"), 0x4000, 0x4000));
    m_folder.makeFolder("copies");
    EXPECT_TRUE(pxCreateFolderWithAttributesFrom_(at("copies/one/two"), at("models/one/two")));
    EXPECT_EQ(modeOf(m_folder.path("copies/one")), 0750U);
    EXPECT_EQ(modeOf(m_folder.path("copies/one/two")), 0711U);
    std::uint16_t flags = 0;
    EXPECT_TRUE(pxFinderFlagsOfPath_(at("copies/one/two"), &flags));
    EXPECT_EQ(flags, 0x4000);
    // The model's name is the one that counts.
    EXPECT_TRUE(pxCreateFolderWithAttributesFrom_(at("copies/three"), at("models/one/two")));
    EXPECT_EQ(namesIn(m_folder.path("copies")), (Names{"one", "two"}));
    EXPECT_TRUE(pxCreateFolderWithAttributesFrom_(at("copies"), at("none"))) << "something is there";
}

TEST_F(FileOperationsCreating, AFolderLikeALockedModelIsNotLocked) {
    m_folder.makeFolder("models/one");
    m_folder.makeFolder("copies");
    ASSERT_TRUE(pxPathSetNotWritable_locked_(at("models/one"), NO, YES));
    EXPECT_TRUE(pxCreateFolderWithAttributesFrom_(at("copies/one"), at("models/one")));
    EXPECT_TRUE(pxRemoveFile(at("copies/one")));
    EXPECT_FALSE(pxRemoveFile(at("models")));
    ASSERT_TRUE(pxSetFileAttributesFrom_(at("models/one"), at("copies")));
}

TEST_F(FileOperationsCreating, AFolderLikeNothingIsNotMade) {
    m_folder.makeFolder("copies");
    m_folder.makeFolder("models/one");
    for (NSString const& none : {at("none"), NSString("/"), NSString(""), NSString()})
        EXPECT_FALSE(pxCreateFolderWithAttributesFrom_(at("copies/one"), none));
    EXPECT_FALSE(pxCreateFolderWithAttributesFrom_("", at("models/one")));
    EXPECT_FALSE(pxCreateFolderWithAttributesFrom_("relative", at("models/one")));
    EXPECT_FALSE(pxCreateFolderWithAttributesFrom_(nil, at("models/one")));
    EXPECT_TRUE(namesIn(m_folder.path("copies")).empty());
}

TEST_F(FileOperationsCreating, AFolderGetsTheAttributesThatAreNamed) {
    m_folder.makeFolder("models/one/two");
    ASSERT_EQ(::chmod(m_folder.path("models/one").c_str(), 0750), 0);
    ASSERT_EQ(::chmod(m_folder.path("models/one/two").c_str(), 0700), 0);
    NSArray const keys = NSArray::arrayWithObjects_({NSFilePosixPermissions, NSFileModificationDate});
    NSDictionary const date =
        NSDictionary::dictionaryWithObject_forKey_(NSDate::dateWithTimeIntervalSince1970_(5), NSFileModificationDate);
    ASSERT_TRUE(NSFileManager::defaultManager().changeFileAttributes_atPath_(date, at("models/one/two")));
    m_folder.makeFolder("copies");
    EXPECT_TRUE(pxCreateFolderWithAttributes_from_(at("copies/1/2"), keys, at("models/one/two")));
    EXPECT_EQ(modeOf(m_folder.path("copies/1")), 0750U);
    EXPECT_EQ(modeOf(m_folder.path("copies/1/2")), 0700U);
    struct stat status {};
    ASSERT_EQ(::stat(m_folder.path("copies/1/2").c_str(), &status), 0);
    EXPECT_EQ(status.st_mtim.tv_sec, 5);
    ASSERT_TRUE(pxSetFileModificationDate_creationDate_(at("models/one/two"), NSDate::dateWithTimeIntervalSince1970_(9),
                                                        NSDate::dateWithTimeIntervalSince1970_(7)));
    EXPECT_TRUE(pxCreateFolderWithAttributes_from_(at("copies/dated"), NSArray::arrayWithObject_(NSFileCreationDate),
                                                   at("models/one/two")));
    NSDictionary const dated =
        NSFileManager::defaultManager().fileAttributesAtPath_traverseLink_(at("copies/dated"), NO);
    EXPECT_EQ(dated.fileCreationDate().timeIntervalSince1970(), 7);
    EXPECT_TRUE(pxCreateFolderWithAttributes_from_(at("copies/3"), nil, at("models/one/two")));
    EXPECT_TRUE(pxCreateFolderWithAttributes_from_(at("copies"), keys, at("none"))) << "something is there";
    EXPECT_FALSE(pxCreateFolderWithAttributes_from_(at("copies/4"), keys, at("none")));
    EXPECT_FALSE(pxCreateFolderWithAttributes_from_(at("copies/4"), keys, nil));
    EXPECT_FALSE(pxCreateFolderWithAttributes_from_(nil, keys, at("models/one")));
    EXPECT_EQ(namesIn(m_folder.path("copies")), (Names{"1", "3", "dated"}));
}

} // namespace

} // namespace mac::test
