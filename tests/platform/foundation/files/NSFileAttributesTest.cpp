#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/dates/UTCDateTime.h"
#include "platform/foundation/files/FileAttributes.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/items/KeptCreationDate.h"
#include "tests/pathutils/AttributeCalls.h"
#include "tests/platform/system/LongFolder.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/Protection.h"
#include "tests/support/Texts.h"
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac::test {
namespace {

NSFileManager manager() { return NSFileManager::defaultManager(); }
NSDictionary attributes(std::string const& item, BOOL traverseLink = NO) {
    return manager().fileAttributesAtPath_traverseLink_(path(item), traverseLink);
}
NSDictionary permissions(unsigned mode) {
    return NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithUnsignedInt_(mode), NSFilePosixPermissions);
}
NSDictionary creationDate(NSDate const& date) {
    return NSDictionary::dictionaryWithObject_forKey_(date, NSFileCreationDate);
}

TEST(NSFileAttributes, AreWhatTheSystemTells) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "twelve bytes");
    ASSERT_EQ(::chmod(file.c_str(), 04750), 0);
    ASSERT_EQ(::link(file.c_str(), folder.path("other").c_str()), 0);
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    NSDictionary const found = attributes(file);
    EXPECT_TRUE(found.fileType().isEqualToString_(NSFileTypeRegular));
    EXPECT_EQ(found.fileSize(), 12U);
    EXPECT_EQ(found.filePosixPermissions(), 04750U);
    EXPECT_EQ(found.fileSystemFileNumber(), status.st_ino);
    EXPECT_EQ(found.fileSystemNumber(), status.st_dev);
    EXPECT_EQ(as<NSNumber>(found.objectForKey_(NSFileReferenceCount)).intValue(), 2);
    EXPECT_EQ(as<NSNumber>(found.objectForKey_(NSFileOwnerAccountID)).unsignedIntValue(), status.st_uid);
    EXPECT_EQ(as<NSNumber>(found.objectForKey_(NSFileGroupOwnerAccountID)).unsignedIntValue(), status.st_gid);
    EXPECT_TRUE(found.fileOwnerAccountName().isEqualToString_(NSUserName()));
    EXPECT_FALSE(found.fileIsImmutable());
    EXPECT_FALSE(found.fileIsAppendOnly());
    EXPECT_FALSE(found.fileExtensionHidden());
    EXPECT_FALSE(found.objectForKey_(NSFileImmutable) == nil);
    double const modified =
        static_cast<double>(status.st_mtim.tv_sec) + static_cast<double>(status.st_mtim.tv_nsec) / 1e9;
    EXPECT_NEAR(found.fileModificationDate().timeIntervalSince1970(), modified, 1e-5);
    EXPECT_TRUE(found.objectForKey_(NSFileDeviceIdentifier) == nil);
}

TEST(NSFileAttributes, HaveACreationDateThatStaysUntilItIsSet) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    NSDate const created = attributes(file).fileCreationDate();
    if (created == nil) GTEST_SKIP() << "the file system does not know when a file was made";
    NSDictionary const change =
        NSDictionary::dictionaryWithObject_forKey_(NSDate::dateWithTimeIntervalSince1970_(1.5), NSFileModificationDate);
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(change, path(file)));
    EXPECT_EQ(attributes(file).fileModificationDate().timeIntervalSince1970(), 1.5);
    EXPECT_TRUE(attributes(file).fileCreationDate().isEqualToDate_(created));
    NSDictionary const creation = creationDate(created);
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(creation, path(file)));
    EXPECT_EQ(::getxattr(file.c_str(), "user.com.apple.FSCatalogInfo.createDate", nullptr, 0), -1)
        << "it has that date";
    NSDictionary const other = creationDate(NSDate::dateWithTimeIntervalSince1970_(1.5));
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(other, path(file)));
    EXPECT_EQ(attributes(file).fileCreationDate().timeIntervalSince1970(), 1.5);
    NSDictionary const tooEarly = creationDate(NSDate::dateWithTimeIntervalSince1970_(-1e13));
    EXPECT_FALSE(manager().changeFileAttributes_atPath_(tooEarly, path(file)));
    EXPECT_EQ(attributes(file).fileCreationDate().timeIntervalSince1970(), 1.5);
}

TEST(NSFileAttributes, SetACreationDateBesideALockAndWithoutPermissionToWrite) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    OrdinaryUser::own(folder.path());
    OrdinaryUser::own(file);
    ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
    NSDictionary const wanted =
        NSDictionary::dictionaryWithObjectsAndKeys_({NSDate::dateWithTimeIntervalSince1970_(7), NSFileCreationDate,
                                                     NSNumber::numberWithBool_(YES), NSFileImmutable});
    NSDictionary const unlocked =
        NSDictionary::dictionaryWithObjectsAndKeys_({NSDate::dateWithTimeIntervalSince1970_(9), NSFileCreationDate,
                                                     NSNumber::numberWithBool_(NO), NSFileImmutable});
    OrdinaryUser const user;
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(wanted, path(file)));
    EXPECT_EQ(attributes(file).fileCreationDate().timeIntervalSince1970(), 7);
    EXPECT_TRUE(attributes(file).fileIsImmutable());
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(unlocked, path(file)));
    EXPECT_EQ(attributes(file).fileCreationDate().timeIntervalSince1970(), 9);
    EXPECT_EQ(attributes(file).filePosixPermissions(), 0444U);
}

TEST(NSFileAttributes, TellTheCreationDateThatWasSet) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    Result<OpenItem> const item = openItemAtPath(file, LinkAtEnd::IsNotFollowed);
    ASSERT_TRUE(item.hasValue());
    UTCDateTime date;
    ASSERT_EQ(UCConvertCFAbsoluteTimeToUTCDateTime(5, &date), noErr);
    ASSERT_TRUE(keepCreationDate(item.value(), {unitsOf(date)}).isDone());
    EXPECT_EQ(attributes(file).fileCreationDate().timeIntervalSinceReferenceDate(), 5);
    NSDictionary const creation = creationDate(NSDate::dateWithTimeIntervalSinceReferenceDate_(5));
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(creation, path(file)));
    ASSERT_EQ(::rename(file.c_str(), folder.path("moved").c_str()), 0);
    EXPECT_EQ(attributes(folder.path("moved")).fileCreationDate().timeIntervalSinceReferenceDate(), 5);
}

// The date that is kept cannot be read, so that the time of birth, which is asked for, only seems to be the item's
// date.
TEST(NSFileAttributes, ReplaceACreationDateThatCannotBeRead) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    NSDate const birth = attributes(file).fileCreationDate();
    if (birth == nil) GTEST_SKIP() << "the file system does not know when a file was made";
    NSDictionary const early = creationDate(NSDate::dateWithTimeIntervalSinceReferenceDate_(5));
    ASSERT_TRUE(manager().changeFileAttributes_atPath_(early, path(file)));
    OrdinaryUser::own(folder.path());
    OrdinaryUser::own(file);
    ASSERT_EQ(::chmod(file.c_str(), 0200), 0);
    NSDictionary const late = creationDate(birth);
    {
        OrdinaryUser const user;
        EXPECT_TRUE(manager().changeFileAttributes_atPath_(late, path(file)));
        ASSERT_EQ(::chmod(file.c_str(), 0600), 0);
        EXPECT_NEAR(attributes(file).fileCreationDate().timeIntervalSinceDate_(birth), 0, 1e-3);
    }
}

// Another user's file, which this one may neither read nor write.
TEST(NSFileAttributes, RefuseACreationDateWhereOneMayBeKeptThatCannotBeRead) {
    if (!OrdinaryUser::isAnother()) GTEST_SKIP() << "all files belong to the user who runs the tests";
    TemporaryFolder const folder;
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    std::string const file = folder.makeFile("file", "");
    NSDate const birth = attributes(file).fileCreationDate();
    if (birth == nil) GTEST_SKIP() << "the file system does not know when a file was made";
    NSDictionary const early = creationDate(NSDate::dateWithTimeIntervalSinceReferenceDate_(5));
    ASSERT_TRUE(manager().changeFileAttributes_atPath_(early, path(file)));
    ASSERT_EQ(::chmod(file.c_str(), 0600), 0);
    NSDictionary const late = creationDate(birth);
    {
        OrdinaryUser const user;
        EXPECT_FALSE(manager().changeFileAttributes_atPath_(late, path(file)));
    }
    EXPECT_EQ(attributes(file).fileCreationDate().timeIntervalSinceReferenceDate(), 5);
}

TEST(NSFileAttributes, AskForTheCreationDateOnlyWhereItIsWanted) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    unsigned questions = 0;
    AttributeCalls const calls([&](unsigned number) { questions = number; });
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(permissions(0600), path(file)));
    NSDictionary const unlocked =
        NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithBool_(NO), NSFileImmutable);
    EXPECT_TRUE(changeCreationDateAndLocks(FileDescriptor(::open(file.c_str(), O_PATH | O_CLOEXEC)), unlocked));
    EXPECT_EQ(questions, 0U);
    NSDictionary const creation = creationDate(NSDate::dateWithTimeIntervalSinceReferenceDate_(5));
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(creation, path(file)));
    EXPECT_GT(questions, 0U);
    unsigned const before = questions;
    EXPECT_FALSE(attributes(file) == nil);
    EXPECT_GT(questions, before);
}

TEST(NSFileAttributes, TellTheTypes) {
    TemporaryFolder const folder;
    folder.makeFile("file", "");
    ASSERT_EQ(::symlink("file", folder.path("link").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", folder.path("lost").c_str()), 0);
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_TRUE(attributes(folder.path()).fileType().isEqualToString_(NSFileTypeDirectory));
    EXPECT_TRUE(attributes(folder.path("link")).fileType().isEqualToString_(NSFileTypeSymbolicLink));
    EXPECT_TRUE(attributes(folder.path("link"), YES).fileType().isEqualToString_(NSFileTypeRegular));
    EXPECT_TRUE(attributes(folder.path("lost")).fileType().isEqualToString_(NSFileTypeSymbolicLink));
    EXPECT_TRUE(attributes(folder.path("lost"), YES) == nil);
    EXPECT_TRUE(attributes(folder.path("pipe")).fileType().isEqualToString_(NSFileTypeUnknown));
    EXPECT_TRUE(attributes("/dev/null").fileType().isEqualToString_(NSFileTypeCharacterSpecial));
    EXPECT_FALSE(attributes("/dev/null").objectForKey_(NSFileDeviceIdentifier) == nil);
}

TEST(NSFileAttributes, OfAMissingItemAreNil) {
    TemporaryFolder const folder;
    EXPECT_TRUE(attributes(folder.path("none")) == nil);
    EXPECT_TRUE(attributes("") == nil);
    EXPECT_TRUE(attributes(folder.makeFile("file", "") + "/") == nil);
    EXPECT_TRUE(manager().fileAttributesAtPath_traverseLink_(nil, YES) == nil);
    EXPECT_TRUE(NSFileManager(nil).fileAttributesAtPath_traverseLink_("/", YES) == nil);
    EXPECT_TRUE(NSDictionary(nil).fileType() == nil);
    EXPECT_EQ(NSDictionary(nil).fileSize(), 0U);
    EXPECT_EQ(NSDictionary(nil).filePosixPermissions(), 0U);
    EXPECT_TRUE(NSDictionary(nil).fileModificationDate() == nil);
    EXPECT_FALSE(NSDictionary(nil).fileIsImmutable());
}

TEST(NSFileAttributes, OfOtherClassesCountAsMissing) {
    NSDictionary const odd =
        NSDictionary::dictionaryWithObjectsAndKeys_({"12", NSFileSize, "x", NSFileModificationDate});
    EXPECT_EQ(odd.fileSize(), 0U);
    EXPECT_TRUE(odd.fileModificationDate() == nil);
}

TEST(NSFileAttributes, NeedNoShortPathAndNoUTF8) {
    LongFolder folder;
    folder.makeFile("file", "1234");
    EXPECT_EQ(attributes(folder.path() + "/file").fileSize(), 4U);
    TemporaryFolder const odd;
    EXPECT_EQ(attributes(odd.makeFile("n\xFF", "12")).fileSize(), 2U);
}

TEST(NSFileAttributes, AreChanged) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(permissions(0601), path(file)));
    EXPECT_EQ(attributes(file).filePosixPermissions(), 0601U);
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(NSDictionary::dictionary(), path(file)));
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(nil, path(file)));
    // What was read can be written.
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(attributes(file), path(file)));
    EXPECT_FALSE(manager().changeFileAttributes_atPath_(permissions(0600), path(folder.path("none"))));
    EXPECT_FALSE(manager().changeFileAttributes_atPath_(permissions(0600), nil));
    EXPECT_FALSE(NSFileManager(nil).changeFileAttributes_atPath_(permissions(0600), path(file)));
    EXPECT_EQ(attributes(file).filePosixPermissions(), 0601U);
}

TEST(NSFileAttributes, OfUnknownAccountsAreNotChanged) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    NSDictionary const owner =
        NSDictionary::dictionaryWithObject_forKey_("nobody has this name", NSFileOwnerAccountName);
    EXPECT_FALSE(manager().changeFileAttributes_atPath_(owner, path(file)));
    NSDictionary const mine = NSDictionary::dictionaryWithObject_forKey_(NSUserName(), NSFileOwnerAccountName);
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(mine, path(file)));
}

TEST(NSFileAttributes, ImmutableAndBack) {
    TemporaryFolder const folder;
    if (!canLockFilesIn(folder)) GTEST_SKIP() << "files cannot be locked here";
    std::string const file = folder.makeFile("file", "");
    NSDictionary const lock =
        NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithBool_(YES), NSFileImmutable);
    NSDictionary const unlock =
        NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithBool_(NO), NSFileImmutable);
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(lock, path(file)));
    EXPECT_TRUE(attributes(file).fileIsImmutable());
    EXPECT_FALSE(manager().changeFileAttributes_atPath_(permissions(0600), path(file)));
    EXPECT_TRUE(manager().changeFileAttributes_atPath_(unlock, path(file)));
    EXPECT_FALSE(attributes(file).fileIsImmutable());
    EXPECT_TRUE(setLocked(file, false));
}

TEST(NSFileAttributes, OfAVolumeCountItsBytes) {
    TemporaryFolder const folder;
    NSDictionary const volume = manager().fileSystemAttributesAtPath_("/");
    unsigned long long const size = as<NSNumber>(volume.objectForKey_(NSFileSystemSize)).unsignedLongLongValue();
    EXPECT_GT(size, 0U);
    EXPECT_LE(as<NSNumber>(volume.objectForKey_(NSFileSystemFreeSize)).unsignedLongLongValue(), size);
    EXPECT_EQ(volume.fileSystemNumber(), attributes("/").fileSystemNumber());
    EXPECT_FALSE(volume.objectForKey_(NSFileSystemNodes) == nil);
    EXPECT_TRUE(manager().fileSystemAttributesAtPath_(path(folder.path("none"))) == nil);
    EXPECT_TRUE(manager().fileSystemAttributesAtPath_(nil) == nil);
    EXPECT_TRUE(NSFileManager(nil).fileSystemAttributesAtPath_("/") == nil);
}

} // namespace
} // namespace mac::test
