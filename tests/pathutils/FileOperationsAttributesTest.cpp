#include "pathutils/ExtendedAttributes.h"
#include "pathutils/FileOperations.h"
#include "pathutils/FinderMetadata.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/files/NSFileAttributes.h"
#include "platform/foundation/files/NSFileManager.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Failures.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/Protection.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <cerrno>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac::test {

namespace {

class FileOperationsAttributes : public testing::Test {
protected:
    FileOperationsAttributes() {
        m_folder.makeFile("file", "contents");
        m_folder.makeFile("model", "other contents");
        m_folder.makeFolder("folder/inner");
    }
    ~FileOperationsAttributes() override { setLocked(m_folder.path("file"), false); }

    NSString at(std::string_view name) const { return path(m_folder.path(name)); }
    struct stat statusOf(std::string_view name) const {
        struct stat status {};
        EXPECT_EQ(::lstat(m_folder.path(name).c_str(), &status), 0) << name;
        return status;
    }
    unsigned modeOf(std::string_view name) const { return statusOf(name).st_mode & 07777U; }
    void setMode(std::string_view name, mode_t mode) const { ASSERT_EQ(::chmod(m_folder.path(name).c_str(), mode), 0); }
    NSDictionary attributesOf(std::string_view name) const {
        return NSFileManager::defaultManager().fileAttributesAtPath_traverseLink_(at(name), NO);
    }

    TemporaryFolder const m_folder{};
};

NSDate date(double seconds) { return NSDate::dateWithTimeIntervalSince1970_(seconds); }

TEST_F(FileOperationsAttributes, OnlyTheOwnersPermissionToWriteIsTaken) {
    setMode("file", 0666);
    EXPECT_TRUE(pxPathSetNotWritable_locked_(at("file"), YES, NO));
    EXPECT_EQ(modeOf("file"), 0466U);
    EXPECT_FALSE(attributesOf("file").fileIsImmutable());
    EXPECT_TRUE(pxPathSetNotWritable_locked_(at("file"), NO, NO));
    EXPECT_EQ(modeOf("file"), 0466U);
}

TEST_F(FileOperationsAttributes, ALockIsSetAndNeverTaken) {
    EXPECT_TRUE(pxPathSetNotWritable_locked_(at("file"), YES, YES));
    EXPECT_TRUE(attributesOf("file").fileIsImmutable());
    EXPECT_EQ(modeOf("file"), 0444U);
    EXPECT_TRUE(pxPathSetNotWritable_locked_(at("file"), NO, NO));
    EXPECT_TRUE(attributesOf("file").fileIsImmutable());
    EXPECT_FALSE(pxRemoveFile(at("file")));
    EXPECT_EQ(text(pxRemoveFile2(at("file"))), "\"file\": The item is locked");
    EXPECT_EQ(textOf(m_folder.path("file")), "contents");
}

TEST_F(FileOperationsAttributes, AnOrdinaryUsersLockHoldsToo) {
    for (char const* const name : {"", "file", "model"})
        OrdinaryUser::own(m_folder.path(name));
    OrdinaryUser const user;
    EXPECT_TRUE(pxPathSetNotWritable_locked_(at("file"), YES, YES));
    EXPECT_TRUE(attributesOf("file").fileIsImmutable());
    EXPECT_EQ(modeOf("file"), 0444U);
    EXPECT_EQ(text(pxRemoveFile2(at("file"))), "\"file\": The item is locked");
    EXPECT_TRUE(pxMoveToTrash(at("file")) == nil);
    EXPECT_EQ(textOf(m_folder.path("file")), "contents");
    EXPECT_EQ(pxExtendedAttributesKeys(at("file")).count(), 0U) << "the lock is no attribute";
    EXPECT_TRUE(pxSetFileAttributesFrom_(at("file"), at("model")));
    EXPECT_FALSE(attributesOf("file").fileIsImmutable());
    EXPECT_TRUE(pxRemoveFile2(at("file")) == nil);
}

TEST_F(FileOperationsAttributes, NothingCannotBeProtected) {
    for (NSString const& none : {at("none"), at("file/below"), NSString(""), NSString()}) {
        EXPECT_FALSE(pxPathSetNotWritable_locked_(none, YES, YES));
        EXPECT_FALSE(pxPathSetNotWritable_locked_(none, NO, NO));
        EXPECT_FALSE(pxSetFileModificationDate_creationDate_(none, date(1), date(2)));
        EXPECT_FALSE(pxSetFileModificationDate_creationDate_(none, nil, nil));
    }
}

TEST_F(FileOperationsAttributes, BothDatesAreSetAsGiven) {
    EXPECT_TRUE(pxSetFileModificationDate_creationDate_(at("file"), date(1000.5), date(500)));
    EXPECT_EQ(statusOf("file").st_mtim.tv_sec, 1000);
    EXPECT_EQ(attributesOf("file").fileModificationDate().timeIntervalSince1970(), 1000.5);
    EXPECT_EQ(attributesOf("file").fileCreationDate().timeIntervalSince1970(), 500);
}

TEST_F(FileOperationsAttributes, OneDateAloneAsksToWriteTheOther) {
    ASSERT_TRUE(pxSetFileModificationDate_creationDate_(at("file"), date(1000), date(500)));
    // The flags are crossed: the fields that are written hold what they held.
    EXPECT_TRUE(pxSetFileModificationDate_creationDate_(at("file"), date(3000), nil));
    EXPECT_EQ(statusOf("file").st_mtim.tv_sec, 1000);
    EXPECT_EQ(attributesOf("file").fileCreationDate().timeIntervalSince1970(), 500);
    EXPECT_TRUE(pxSetFileModificationDate_creationDate_(at("file"), nil, date(2000)));
    EXPECT_EQ(statusOf("file").st_mtim.tv_sec, 1000);
    EXPECT_EQ(attributesOf("file").fileCreationDate().timeIntervalSince1970(), 500);
    // Without a kept creation date one can see that a modification date is written into the creation date's field
    // (specified so).
    EXPECT_EQ(pxExtendedAttributesKeys(at("model")).count(), 0U);
    EXPECT_TRUE(pxSetFileModificationDate_creationDate_(at("model"), nil, date(3000)));
    EXPECT_EQ(pxExtendedAttributesKeys(at("model")).count(), 0U);
    EXPECT_TRUE(pxSetFileModificationDate_creationDate_(at("model"), date(3000), nil));
    EXPECT_EQ(joined(pxExtendedAttributesKeys(at("model"))), "com.apple.FSCatalogInfo.createDate");
    EXPECT_NE(statusOf("model").st_mtim.tv_sec, 3000);
}

TEST_F(FileOperationsAttributes, WithoutDatesNothingIsWritten) {
    struct stat const before = statusOf("file");
    EXPECT_TRUE(pxSetFileModificationDate_creationDate_(at("file"), nil, nil));
    EXPECT_EQ(statusOf("file").st_ctim.tv_nsec, before.st_ctim.tv_nsec);
    EXPECT_FALSE(pxSetFileModificationDate_creationDate_(at("file"), date(-1e13), date(1)))
        << "a date that the record cannot hold";
}

TEST_F(FileOperationsAttributes, ALinkIsDatedItself) {
    ASSERT_EQ(::symlink("file", m_folder.path("link").c_str()), 0);
    struct stat const before = statusOf("file");
    EXPECT_TRUE(pxSetFileModificationDate_creationDate_(at("link"), nil, date(1)));
    EXPECT_EQ(statusOf("file").st_mtim.tv_sec, before.st_mtim.tv_sec);
}

TEST_F(FileOperationsAttributes, CatalogInformationIsTakenFromAModelButTheLock) {
    setMode("model", 0640);
    ASSERT_TRUE(pxSetFinderFlagsOfPath_mask_(at("model"), 0x4400, 0x4400));
    ASSERT_TRUE(pxSetFileModificationDate_creationDate_(at("model"), date(1000), date(500)));
    ASSERT_TRUE(pxPathSetNotWritable_locked_(at("model"), NO, YES));
    ASSERT_TRUE(pxPathSetNotWritable_locked_(at("file"), NO, YES));
    EXPECT_TRUE(pxSetFileAttributesFrom_(at("file"), at("model")));
    EXPECT_EQ(modeOf("file"), 0640U);
    std::uint16_t flags = 0;
    EXPECT_TRUE(pxFinderFlagsOfPath_(at("file"), &flags));
    EXPECT_EQ(flags, 0x4400);
    EXPECT_EQ(statusOf("file").st_mtim.tv_sec, 1000);
    EXPECT_EQ(attributesOf("file").fileCreationDate().timeIntervalSince1970(), 500);
    EXPECT_FALSE(attributesOf("file").fileIsImmutable());
    EXPECT_EQ(textOf(m_folder.path("file")), "contents");
    EXPECT_TRUE(pxSetFileAttributesFrom_(at("model"), at("file")));
    for (NSString const& none : {at("none"), NSString(""), NSString()}) {
        EXPECT_FALSE(pxSetFileAttributesFrom_(at("file"), none));
        EXPECT_FALSE(pxSetFileAttributesFrom_(none, at("model")));
    }
}

TEST_F(FileOperationsAttributes, ExtendedAttributesAreTakenButThoseToSkip) {
    for (char const* const key : {"one", "two", "three"})
        ASSERT_TRUE(pxSetExtendedAttributeData_forKey_(at("model"), bytes(key), utf8(key)));
    EXPECT_TRUE(pxSetExtendedFileAttributesFrom_skipKeys_(at("file"), at("model"), NSArray::arrayWithObject_("two")));
    EXPECT_EQ(bytesOf(pxExtendedAttributeDataForKey_(at("file"), "one")), "one");
    EXPECT_TRUE(pxExtendedAttributeDataForKey_(at("file"), "two") == nil);
    EXPECT_EQ(bytesOf(pxExtendedAttributeDataForKey_(at("file"), "three")), "three");
    EXPECT_TRUE(pxSetExtendedFileAttributesFrom_skipKeys_(at("folder"), at("model"), NSSet::setWithObject_("one")));
    EXPECT_TRUE(pxExtendedAttributeDataForKey_(at("folder"), "one") == nil);
    EXPECT_TRUE(pxSetExtendedFileAttributesFrom_skipKeys_(at("folder"), at("model"), nil));
    EXPECT_EQ(pxExtendedAttributesKeys(at("folder")).count(), 3U);
}

TEST_F(FileOperationsAttributes, OneExtendedAttributeThatCannotBeSetIsNo) {
    ASSERT_TRUE(pxSetExtendedAttributeData_forKey_(at("model"), bytes("1"), "one"));
    EXPECT_FALSE(pxSetExtendedFileAttributesFrom_skipKeys_(at("none"), at("model"), nil));
    EXPECT_TRUE(pxSetExtendedFileAttributesFrom_skipKeys_(at("none"), at("file"), nil)) << "there is none to set";
    EXPECT_TRUE(pxSetExtendedFileAttributesFrom_skipKeys_(at("file"), at("none"), nil));
    EXPECT_TRUE(pxSetExtendedFileAttributesFrom_skipKeys_(at("file"), nil, nil));
    EXPECT_FALSE(pxSetExtendedFileAttributesFrom_skipKeys_(nil, at("model"), nil));
}

TEST_F(FileOperationsAttributes, AnExtendedAttributeThatCannotBeReadIsNo) {
    ASSERT_TRUE(pxSetExtendedAttributeData_forKey_(at("model"), bytes("1"), "one"));
    withRefusedCall(SYS_getxattr, EIO, [this] {
        EXPECT_FALSE(pxSetExtendedFileAttributesFrom_skipKeys_(at("file"), at("model"), nil));
        EXPECT_TRUE(
            pxSetExtendedFileAttributesFrom_skipKeys_(at("file"), at("model"), NSArray::arrayWithObject_("one")));
    });
    withRefusedCall(SYS_getxattr, ENODATA, [this] {
        EXPECT_TRUE(pxSetExtendedFileAttributesFrom_skipKeys_(at("file"), at("model"), nil)) << "it has gone since";
    });
}

TEST_F(FileOperationsAttributes, ALockIsNotTakenWithTheExtendedAttributes) {
    for (char const* const name : {"", "file", "model"})
        OrdinaryUser::own(m_folder.path(name));
    OrdinaryUser const user;
    ASSERT_TRUE(pxPathSetNotWritable_locked_(at("model"), NO, YES));
    EXPECT_TRUE(pxSetExtendedFileAttributesFrom_skipKeys_(at("file"), at("model"), nil));
    EXPECT_FALSE(attributesOf("file").fileIsImmutable());
}

TEST_F(FileOperationsAttributes, NamedAttributesAreTakenFromAModel) {
    setMode("model", 0640);
    setMode("file", 0600);
    ASSERT_TRUE(pxSetFileModificationDate_creationDate_(at("model"), date(1000), date(500)));
    EXPECT_TRUE(pxSetFileAttributes_from_(at("file"), NSArray::arrayWithObject_(NSFileModificationDate), at("model")));
    EXPECT_EQ(modeOf("file"), 0600U);
    EXPECT_EQ(statusOf("file").st_mtim.tv_sec, 1000);
    EXPECT_TRUE(pxSetFileAttributes_from_(at("file"), NSArray::arrayWithObject_(NSFilePosixPermissions), at("model")));
    EXPECT_EQ(modeOf("file"), 0640U);
    EXPECT_TRUE(pxSetFileAttributes_from_(at("file"), NSArray::arrayWithObject_(NSFileCreationDate), at("model")));
    EXPECT_EQ(attributesOf("file").fileCreationDate().timeIntervalSince1970(), 500);
    EXPECT_TRUE(pxSetFileAttributes_from_(at("file"), nil, at("model")));
    NSArray const keys = NSArray::arrayWithObject_(NSFilePosixPermissions);
    for (NSString const& none : {at("none"), NSString(""), NSString()}) {
        EXPECT_FALSE(pxSetFileAttributes_from_(at("file"), keys, none));
        EXPECT_FALSE(pxSetFileAttributes_from_(none, keys, at("model")));
    }
}

TEST_F(FileOperationsAttributes, NamedAttributesAreTakenUpToAFolder) {
    m_folder.makeFolder("models/one/two");
    m_folder.makeFolder("copies/one/two");
    setMode("models/one/two", 0711);
    setMode("models/one", 0750);
    setMode("models", 0700);
    setMode("copies", 0755);
    NSArray const keys = NSArray::arrayWithObject_(NSFilePosixPermissions);
    EXPECT_TRUE(pxSetFileAttributes_from_recurseUntilBeforeDstPath_(at("copies/one/two"), keys, at("models/one/two"),
                                                                    at("copies")));
    EXPECT_EQ(modeOf("copies/one/two"), 0711U);
    EXPECT_EQ(modeOf("copies/one"), 0750U);
    EXPECT_EQ(modeOf("copies"), 0755U);
    EXPECT_TRUE(pxSetFileAttributes_from_recurseUntilBeforeDstPath_(at("none"), keys, at("none"), at("none")));
    EXPECT_FALSE(
        pxSetFileAttributes_from_recurseUntilBeforeDstPath_(at("copies/one/two"), keys, at("none/two"), at("copies")));
    EXPECT_FALSE(pxSetFileAttributes_from_recurseUntilBeforeDstPath_(nil, keys, at("models"), nil));
}

TEST_F(FileOperationsAttributes, AWalkThatMissesItsStopPathEnds) {
    NSArray const none = NSArray::array();
    EXPECT_FALSE(pxSetFileAttributes_from_recurseUntilBeforeDstPath_(at("folder/inner"), none, at("folder/inner"),
                                                                     at("elsewhere")));
    EXPECT_FALSE(pxSetFileAttributes_from_recurseUntilBeforeDstPath_(at("folder"), none, at("folder"), nil));
}

} // namespace

} // namespace mac::test
