#include "platform/files/references/CatalogInformation.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/files/references/CatalogFields.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/files/NSFileAttributes.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/system/items/KeptCreationDate.h"
#include "tests/support/FinderInformation.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

constexpr double From1970To2001 = 978'307'200;

FSRef referenceToItem(std::string const& path) {
    Result<FSRef> const ref = referenceToPath(path, LinkAtEnd::IsNotFollowed);
    EXPECT_TRUE(ref.hasValue()) << path;
    return ref.hasValue() ? ref.value() : FSRef{};
}

FSCatalogInfo informationOf(std::string const& path, FSCatalogInfoBitmap which) {
    FSRef const ref = referenceToItem(path);
    FSCatalogInfo information;
    EXPECT_EQ(FSGetCatalogInfo(&ref, which, &information, nullptr, nullptr, nullptr), noErr);
    return information;
}

OSErr setInformation(std::string const& path, FSCatalogInfoBitmap which, FSCatalogInfo const& information) {
    FSRef const ref = referenceToItem(path);
    return FSSetCatalogInfo(&ref, which, &information);
}

double secondsOf(UTCDateTime const& date) {
    CFAbsoluteTime time = 0;
    EXPECT_EQ(UCConvertUTCDateTimeToCFAbsoluteTime(&date, &time), noErr);
    return time;
}

UTCDateTime dateOf(double seconds) {
    UTCDateTime date;
    EXPECT_EQ(UCConvertCFAbsoluteTimeToUTCDateTime(seconds, &date), noErr);
    return date;
}

struct stat itemStatus(std::string const& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0);
    return status;
}

// The creation date that the file manager tells.
double shownCreationDate(std::string const& path, BOOL traversesLink = NO) {
    NSString const string = NSString::stringWithFileSystemRepresentation_(path);
    NSDictionary const attributes =
        NSFileManager::defaultManager().fileAttributesAtPath_traverseLink_(string, traversesLink);
    return attributes.fileCreationDate().timeIntervalSinceReferenceDate();
}

class CatalogInformation : public testing::Test {
protected:
    TemporaryFolder const m_folder{};
    std::string const m_file{m_folder.makeFile("folder/file", "contents")};
};

TEST_F(CatalogInformation, TellsFoldersFromFiles) {
    ASSERT_EQ(::symlink("folder", m_folder.path("link").c_str()), 0);
    EXPECT_EQ(informationOf(m_file, kFSCatInfoNodeFlags).nodeFlags, 0);
    EXPECT_EQ(informationOf(m_folder.path("folder"), kFSCatInfoNodeFlags).nodeFlags, kFSNodeIsDirectoryMask);
    EXPECT_EQ(informationOf(m_folder.path("link"), kFSCatInfoNodeFlags).nodeFlags, 0);
}

TEST_F(CatalogInformation, HasTheFileSystemsNumbersDatesAndSizes) {
    struct stat const status = itemStatus(m_file);
    FSCatalogInfo const information = informationOf(m_file, kFSCatInfoGettableInfo);
    EXPECT_EQ(information.nodeID, static_cast<std::uint32_t>(status.st_ino));
    EXPECT_EQ(information.parentDirID, static_cast<std::uint32_t>(itemStatus(m_folder.path("folder")).st_ino));
    EXPECT_EQ(information.dataLogicalSize, 8U);
    EXPECT_EQ(information.dataPhysicalSize, static_cast<std::uint64_t>(status.st_blocks) * 512);
    EXPECT_EQ(information.rsrcLogicalSize, 0U);
    EXPECT_EQ(information.permissions.userID, status.st_uid);
    EXPECT_EQ(information.permissions.groupID, status.st_gid);
    EXPECT_EQ(information.permissions.mode, status.st_mode);
    EXPECT_EQ(information.permissions.userAccess & 6, 6);
    double const modified = static_cast<double>(status.st_mtim.tv_sec) - From1970To2001;
    EXPECT_NEAR(secondsOf(information.contentModDate), modified, 1);
    EXPECT_NEAR(secondsOf(information.createDate), modified, 60);
    EXPECT_EQ(information.backupDate, UTCDateTime{});
    EXPECT_LT(information.volume, 0);
}

TEST_F(CatalogInformation, LeavesTheFieldsThatAreNotAskedFor) {
    FSRef const ref = referenceToItem(m_file);
    FSCatalogInfo information;
    information.valence = 77;
    information.nodeID = 77;
    ASSERT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoValence, &information, nullptr, nullptr, nullptr), noErr);
    EXPECT_EQ(information.valence, 0U);
    EXPECT_EQ(information.nodeID, 77U);
}

TEST_F(CatalogInformation, CountsWhatIsInAFolderThatMayOnlyBeRead) {
    m_folder.makeFile("folder/other", "");
    std::string const folder = m_folder.path("folder");
    OrdinaryUser::own(m_folder.path());
    OrdinaryUser::own(folder);
    ASSERT_EQ(::chmod(folder.c_str(), 0644), 0);
    {
        OrdinaryUser const user;
        EXPECT_EQ(informationOf(folder, kFSCatInfoValence).valence, 2U);
    }
    ASSERT_EQ(::chmod(folder.c_str(), 0755), 0);
}

TEST_F(CatalogInformation, ComesWithNameAndParent) {
    FSRef const ref = referenceToItem(m_folder.makeFile("folder/a:b", ""));
    HFSUniStr255 name{};
    FSRef parent{};
    ASSERT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, &name, nullptr, &parent), noErr);
    EXPECT_EQ(std::u16string(name.unicode.data(), name.length), u"a/b");
    EXPECT_EQ(parent, referenceToItem(m_folder.path("folder")));
    FSRef const root = referenceToItem("/");
    ASSERT_EQ(FSGetCatalogInfo(&root, kFSCatInfoNone, nullptr, &name, nullptr, &parent), noErr);
    EXPECT_EQ(name.length, 0);
    EXPECT_EQ(parent, FSRef{});
    FSRef const below = referenceToItem("/usr");
    ASSERT_EQ(FSGetCatalogInfo(&below, kFSCatInfoNone, nullptr, nullptr, nullptr, &parent), noErr);
    EXPECT_EQ(parent, root);
}

TEST_F(CatalogInformation, FollowsAnItemThatWasMoved) {
    FSRef const ref = referenceToItem(m_file);
    ASSERT_EQ(::rename(m_file.c_str(), m_folder.path("moved").c_str()), 0);
    HFSUniStr255 name{};
    FSRef parent{};
    ASSERT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, &name, nullptr, &parent), noErr);
    EXPECT_EQ(std::u16string(name.unicode.data(), name.length), u"moved");
    EXPECT_EQ(parent, referenceToItem(m_folder.path()));
}

TEST_F(CatalogInformation, KeepsTheCreationDateThatWasSet) {
    FSCatalogInfo information;
    information.createDate = dateOf(-1e8 + 0.25);
    ASSERT_EQ(setInformation(m_file, kFSCatInfoCreateDate, information), noErr);
    EXPECT_EQ(informationOf(m_file, kFSCatInfoCreateDate).createDate, information.createDate);
    EXPECT_EQ(shownCreationDate(m_file), -1e8 + 0.25) << "the file manager tells the same";
    // It travels with the item, as eight bytes.
    EXPECT_EQ(getxattr(m_file.c_str(), CreateDateAttribute, nullptr, 0, 0, 0), 8);
    // An attribute of another size belongs to another program.
    ASSERT_EQ(setxattr(m_file.c_str(), CreateDateAttribute, "x", 1, 0, 0), 0);
    EXPECT_GT(secondsOf(informationOf(m_file, kFSCatInfoCreateDate).createDate), 0);
    EXPECT_GT(shownCreationDate(m_file), 0);
}

TEST_F(CatalogInformation, TellsNoLinkTheDateOfWhatItLeadsTo) {
    FSCatalogInfo information;
    information.createDate = dateOf(-1e8);
    ASSERT_EQ(setInformation(m_file, kFSCatInfoCreateDate, information), noErr);
    std::string const link = m_folder.path("link");
    ASSERT_EQ(::symlink(m_file.c_str(), link.c_str()), 0);
    EXPECT_NE(shownCreationDate(link), -1e8);
    EXPECT_EQ(shownCreationDate(link, YES), -1e8);
}

TEST_F(CatalogInformation, SetsTheOtherDates) {
    FSCatalogInfo information;
    information.contentModDate = dateOf(1e8);
    information.accessDate = dateOf(-2e9);
    ASSERT_EQ(setInformation(m_file, kFSCatInfoContentMod, information), noErr);
    EXPECT_EQ(itemStatus(m_file).st_mtim.tv_sec, static_cast<time_t>(1e8 + From1970To2001));
    EXPECT_GT(itemStatus(m_file).st_atim.tv_sec, 0);
    ASSERT_EQ(setInformation(m_file, kFSCatInfoAllDates, information), noErr);
    EXPECT_EQ(informationOf(m_file, kFSCatInfoAccessDate).accessDate, information.accessDate);
}

TEST_F(CatalogInformation, SetsPermissions) {
    FSCatalogInfo information = informationOf(m_file, kFSCatInfoPermissions);
    information.permissions.mode = 0640;
    ASSERT_EQ(setInformation(m_file, kFSCatInfoPermissions, information), noErr);
    EXPECT_EQ(itemStatus(m_file).st_mode & 07777, 0640U);
    ASSERT_EQ(setInformation(m_file, kFSCatInfoPermissions, informationOf(m_file, kFSCatInfoPermissions)), noErr);
    EXPECT_EQ(itemStatus(m_file).st_mode, S_IFREG | 0640U);
}

TEST_F(CatalogInformation, SetsTheFindersHalvesApart) {
    FinderInformation whole;
    for (std::size_t index = 0; index < whole.bytes.size(); ++index)
        whole.bytes[index] = static_cast<std::byte>(index + 1);
    FSCatalogInfo information;
    setFinderInformation(information, whole);
    ASSERT_EQ(setInformation(m_file, kFSCatInfoFinderXInfo, information), noErr);
    FSCatalogInfo const half = informationOf(m_file, kFSCatInfoFinderInfo | kFSCatInfoFinderXInfo);
    EXPECT_EQ(half.finderInfo, (std::array<std::byte, 16>{}));
    EXPECT_EQ(half.extFinderInfo, information.extFinderInfo);
    ASSERT_EQ(setInformation(m_file, kFSCatInfoFinderInfo, information), noErr);
    EXPECT_EQ(finderInformationOf(informationOf(m_file, kFSCatInfoFinderInfo | kFSCatInfoFinderXInfo)), whole);
    EXPECT_EQ(readFinderInformation(m_file), whole);
    ASSERT_EQ(setInformation(m_file, kFSCatInfoFinderInfo | kFSCatInfoFinderXInfo, FSCatalogInfo()), noErr);
    EXPECT_EQ(getxattr(m_file.c_str(), XATTR_FINDERINFO_NAME, nullptr, 0, 0, 0), -1);
}

TEST_F(CatalogInformation, ThatIsSetUnchangedIsNoChange) {
    FSCatalogInfo const information = informationOf(m_file, kFSCatInfoNodeFlags | kFSCatInfoTextEncoding);
    EXPECT_EQ(setInformation(m_file,
                             kFSCatInfoNodeFlags | kFSCatInfoTextEncoding | kFSCatInfoAttrMod | kFSCatInfoBackupDate,
                             information),
              noErr);
    EXPECT_EQ(setInformation(m_file, kFSCatInfoNone, information), noErr);
}

TEST_F(CatalogInformation, OfALinkAreTheLinksOwn) {
    std::string const link = m_folder.path("link");
    ASSERT_EQ(::symlink("folder", link.c_str()), 0);
    FSCatalogInfo const information = informationOf(link, kFSCatInfoGettableInfo);
    EXPECT_EQ(information.nodeID, static_cast<std::uint32_t>(itemStatus(link).st_ino));
    EXPECT_EQ(information.valence, 0U);
    EXPECT_EQ(finderInformationOf(information), FinderInformation());
    FSCatalogInfo changed = information;
    changed.contentModDate = dateOf(5e7);
    EXPECT_EQ(setInformation(link, kFSCatInfoContentMod, changed), noErr);
    EXPECT_EQ(itemStatus(link).st_mtim.tv_sec, static_cast<time_t>(5e7 + From1970To2001));
    FinderInformation finder;
    finder.setFinderFlags(kIsAlias);
    setFinderInformation(changed, finder);
    EXPECT_EQ(setInformation(link, kFSCatInfoFinderInfo, changed), permErr);
}

TEST_F(CatalogInformation, AnswersWhyItCannotBeHad) {
    FSRef const none{};
    FSRef const ref = referenceToItem(m_file);
    FSCatalogInfo information;
    FSRef parent = ref;
    EXPECT_EQ(FSGetCatalogInfo(&none, kFSCatInfoNone, nullptr, nullptr, nullptr, &parent), errFSBadFSRef);
    EXPECT_EQ(FSGetCatalogInfo(nullptr, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr), paramErr);
    EXPECT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoValence, nullptr, nullptr, nullptr, nullptr), paramErr);
    auto* const spec = reinterpret_cast<FSSpec*>(&information);
    EXPECT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, spec, nullptr), paramErr);
    EXPECT_EQ(FSGetCatalogInfo(&ref, 0x80000000, &information, nullptr, nullptr, nullptr), errFSBadInfoBitmap);
    EXPECT_EQ(FSSetCatalogInfo(nullptr, kFSCatInfoNone, &information), paramErr);
    EXPECT_EQ(FSSetCatalogInfo(&ref, kFSCatInfoNone, nullptr), paramErr);
    EXPECT_EQ(FSSetCatalogInfo(&none, kFSCatInfoNone, &information), errFSBadFSRef);
    EXPECT_EQ(FSSetCatalogInfo(&ref, kFSCatInfoValence, &information), errFSBadInfoBitmap);
    EXPECT_EQ(parent, ref);
    ASSERT_EQ(::unlink(m_file.c_str()), 0);
    EXPECT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoNodeFlags, &information, nullptr, nullptr, nullptr), errFSBadFSRef);
}

} // namespace
} // namespace mac::test
