#include "platform/files/FileOperations.h"
#include "platform/foundation/text/NSString.h"
#include "tests/support/DiskContents.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

namespace {

using Names = std::vector<std::string>;

class FileOperations : public PrivateMounts {
protected:
    FileOperations() {
        m_folder.makeFile("file", "contents");
        m_folder.makeFile("folder/inner/file", "inner");
    }
    FSRef referenceTo(std::string_view name) const {
        FSRef ref{};
        EXPECT_EQ(FSPathMakeRefWithOptions(reinterpret_cast<std::uint8_t const*>(m_folder.path(name).c_str()),
                                           kFSPathMakeRefDoNotFollowLeafSymlink, &ref, nullptr),
                  noErr);
        return ref;
    }
    OSErr rename(std::string_view item, std::u16string_view name, FSRef* newRef = nullptr) const {
        FSRef const ref = referenceTo(item);
        return FSRenameUnicode(&ref, static_cast<UniCharCount>(name.size()), name.data(), 0, newRef);
    }
    OSErr makeFolder(std::string_view parent, std::u16string_view name, FSCatalogInfoBitmap which = kFSCatInfoNone,
                     FSCatalogInfo const* information = nullptr, FSRef* newRef = nullptr) const {
        FSRef const ref = referenceTo(parent);
        return FSCreateDirectoryUnicode(&ref, static_cast<UniCharCount>(name.size()), name.data(), which, information,
                                        newRef, nullptr, nullptr);
    }
    OSStatus copy(std::string_view item, std::string_view folder, OptionBits options,
                  NSString const& name = nil) const {
        return FSPathCopyObjectSync(m_folder.path(item).c_str(), m_folder.path(folder).c_str(), name, nullptr, options);
    }
    OSErr lock(std::string_view item, std::uint16_t flags) const {
        FSRef const ref = referenceTo(item);
        FSCatalogInfo const information{.nodeFlags = flags};
        return FSSetCatalogInfo(&ref, kFSCatInfoNodeFlags, &information);
    }

    TemporaryFolder const m_folder{};
};

TEST_F(FileOperations, AnItemIsRenamedInItsFolder) {
    FSRef renamed{};
    EXPECT_EQ(rename("file", u"a/b \"%@\"", &renamed), noErr);
    EXPECT_EQ(textOf(m_folder.path("a:b \"%@\"")), "contents");
    EXPECT_EQ(renamed, referenceTo("a:b \"%@\""));
    EXPECT_EQ(rename("a:b \"%@\"", u"a/b \"%@\""), noErr) << "its own name";
    EXPECT_EQ(rename("folder", u"Folder"), noErr);
    EXPECT_EQ(textOf(m_folder.path("Folder/inner/file")), "inner");
}

TEST_F(FileOperations, AnItemIsNotRenamedToWhatNoneCanHave) {
    EXPECT_EQ(rename("file", u"folder"), dupFNErr);
    EXPECT_EQ(rename("file", u"a:b"), bdNamErr);
    EXPECT_EQ(rename("file", u".."), bdNamErr);
    EXPECT_EQ(rename("file", u""), paramErr);
    EXPECT_EQ(rename("file", std::u16string(256, u'x')), errFSNameTooLong);
    EXPECT_EQ(rename("file", std::u16string(255, u'\u00e9')), errFSNameTooLong) << "in the bytes of the disk";
    FSRef const ref = referenceTo("file");
    EXPECT_EQ(FSRenameUnicode(nullptr, 1, u"x", 0, nullptr), paramErr);
    EXPECT_EQ(FSRenameUnicode(&ref, 1, nullptr, 0, nullptr), paramErr);
    ASSERT_EQ(::unlink(m_folder.path("file").c_str()), 0);
    EXPECT_EQ(FSRenameUnicode(&ref, 1, u"x", 0, nullptr), errFSBadFSRef);
    EXPECT_EQ(namesIn(m_folder.path()), Names{"folder"});
}

TEST_F(FileOperations, ALockedItemKeepsItsName) {
    ASSERT_EQ(lock("file", kFSNodeLockedMask), noErr);
    EXPECT_EQ(rename("file", u"b"), fLckdErr);
    ASSERT_EQ(lock("file", 0), noErr);
    EXPECT_EQ(rename("file", u"b"), noErr);
}

TEST_F(FileOperations, AFolderIsMadeWithItsInformation) {
    FSCatalogInfo information{};
    information.permissions = {.userID = ::geteuid(), .groupID = ::getegid(), .mode = 0710};
    FSRef made{};
    EXPECT_EQ(makeFolder("folder", u"a/b", kFSCatInfoPermissions, &information, &made), noErr);
    EXPECT_EQ(made, referenceTo("folder/a:b"));
    struct stat status {};
    ASSERT_EQ(::stat(m_folder.path("folder/a:b").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0710U);
    information.nodeFlags = kFSNodeLockedMask;
    EXPECT_EQ(makeFolder("", u"locked", kFSCatInfoNodeFlags, &information), noErr);
    EXPECT_EQ(rename("locked", u"b"), fLckdErr);
    EXPECT_EQ(lock("locked", 0), noErr);
}

TEST_F(FileOperations, AFolderThatCannotBeSetUpIsNotMade) {
    OrdinaryUser::own(m_folder.path());
    OrdinaryUser const user;
    FSCatalogInfo information{};
    information.permissions = {.userID = 0, .groupID = 0, .mode = 0700};
    EXPECT_EQ(makeFolder("", u"new", kFSCatInfoPermissions, &information), permErr);
    EXPECT_FALSE(isThere(m_folder.path("new")));
    EXPECT_EQ(makeFolder("folder", u"new"), permErr);
    EXPECT_EQ(makeFolder("", u"new"), noErr);
}

TEST_F(FileOperations, AFolderIsNotMadeWhereItCannotBe) {
    EXPECT_EQ(makeFolder("", u"file"), dupFNErr);
    EXPECT_EQ(makeFolder("file", u"x"), errFSNotAFolder);
    EXPECT_EQ(makeFolder("", u"x", kFSCatInfoNodeFlags), paramErr);
    FSCatalogInfo const information{};
    EXPECT_EQ(makeFolder("", u"x", kFSCatInfoVolume, &information), errFSBadInfoBitmap);
    EXPECT_EQ(FSCreateDirectoryUnicode(nullptr, 1, u"x", 0, nullptr, nullptr, nullptr, nullptr), paramErr);
    EXPECT_EQ(namesIn(m_folder.path()), (Names{"file", "folder"}));
}

TEST_F(FileOperations, ACopyGoesToAFolderUnderItsNameOrAnother) {
    EXPECT_EQ(copy("file", "folder", kFSFileOperationDefaultOptions), noErr);
    EXPECT_EQ(copy("file", "folder", kFSFileOperationDefaultOptions, "a/b"), noErr);
    EXPECT_EQ(namesIn(m_folder.path("folder")), (Names{"a:b", "file", "inner"}));
    EXPECT_EQ(copy("folder/inner", "folder", kFSFileOperationDefaultOptions, "file"), dupFNErr);
    EXPECT_EQ(copy("folder/inner", "folder", kFSFileOperationOverwrite, "file"), noErr);
    EXPECT_EQ(textOf(m_folder.path("folder/file/file")), "inner");
    EXPECT_EQ(copy("file", "folder", kFSFileOperationOverwrite, "a:b"), bdNamErr);
}

TEST_F(FileOperations, ACopyToWhereItCannotBeIsAStatus) {
    EXPECT_EQ(copy("none", "folder", kFSFileOperationOverwrite), fnfErr);
    EXPECT_EQ(copy("file/below", "folder", kFSFileOperationOverwrite), errFSNotAFolder);
    EXPECT_EQ(copy("folder", "folder/inner", kFSFileOperationOverwrite), badMovErr);
    EXPECT_EQ(copy("file", "", kFSFileOperationOverwrite), dupFNErr);
    EXPECT_EQ(copy("file", "folder", 0x02), paramErr);
    EXPECT_EQ(FSPathCopyObjectSync(nullptr, "/", nil, nullptr, 0), paramErr);
    EXPECT_EQ(FSPathCopyObjectSync("/tmp", nullptr, nil, nullptr, 0), paramErr);
    EXPECT_EQ(FSPathCopyObjectSync("/", m_folder.path().c_str(), nil, nullptr, 0), bdNamErr);
    mountMemory(m_folder.path("folder/inner"), "size=64k");
    m_folder.makeFile("large", std::string(std::size_t{1} << 20, 'x'));
    EXPECT_EQ(copy("large", "folder/inner", kFSFileOperationOverwrite), dskFulErr);
    EXPECT_TRUE(namesIn(m_folder.path("folder/inner")).empty());
    makeReadOnly(m_folder.path("folder/inner"));
    EXPECT_EQ(copy("file", "folder/inner", kFSFileOperationOverwrite), wPrErr);
    EXPECT_EQ(copy("folder", "", kFSFileOperationOverwrite, "again"), fBsyErr) << "a volume is mounted in it";
    EXPECT_EQ(namesIn(m_folder.path()), (Names{"file", "folder", "large"}));
}

TEST_F(FileOperations, AnItemIsDeletedWithItsSidecar) {
    m_folder.makeFile("._file", std::string("\0\5\x16\7\0\2\0\0", 8) + std::string(18, '\0'));
    FSRef const file = referenceTo("file");
    EXPECT_EQ(FSDeleteObject(&file), noErr);
    EXPECT_FALSE(isThere(m_folder.path("file")));
    EXPECT_FALSE(isThere(m_folder.path("._file")));
    EXPECT_EQ(FSDeleteObject(&file), errFSBadFSRef);
    m_folder.makeFolder("empty");
    FSRef const empty = referenceTo("empty");
    EXPECT_EQ(FSDeleteObject(&empty), noErr);
    EXPECT_FALSE(isThere(m_folder.path("empty")));
}

TEST_F(FileOperations, ALinkIsDeletedItself) {
    ASSERT_EQ(::symlink("folder", m_folder.path("link").c_str()), 0);
    FSRef const link = referenceTo("link");
    EXPECT_EQ(FSDeleteObject(&link), noErr);
    EXPECT_FALSE(isThere(m_folder.path("link")));
    EXPECT_EQ(textOf(m_folder.path("folder/inner/file")), "inner");
}

TEST_F(FileOperations, WhatIsInUseIsNotDeleted) {
    FSRef const folder = referenceTo("folder");
    EXPECT_EQ(FSDeleteObject(&folder), fBsyErr) << "it is not empty";
    EXPECT_EQ(textOf(m_folder.path("folder/inner/file")), "inner");
    FSRef root{};
    ASSERT_EQ(FSPathMakeRef(reinterpret_cast<std::uint8_t const*>("/"), &root, nullptr), noErr);
    EXPECT_EQ(FSDeleteObject(&root), fBsyErr);
    m_folder.makeFolder("mounted");
    mountMemory(m_folder.path("mounted"), "size=64k");
    FSRef const mounted = referenceTo("mounted");
    EXPECT_EQ(FSDeleteObject(&mounted), fBsyErr);
    EXPECT_TRUE(isThere(m_folder.path("mounted")));
}

TEST_F(FileOperations, ALockedItemIsNotDeleted) {
    ASSERT_EQ(lock("file", kFSNodeLockedMask), noErr);
    FSRef const file = referenceTo("file");
    EXPECT_EQ(FSDeleteObject(&file), fLckdErr);
    EXPECT_EQ(textOf(m_folder.path("file")), "contents");
    ASSERT_EQ(lock("file", 0), noErr);
    EXPECT_EQ(FSDeleteObject(&file), noErr);
    EXPECT_EQ(FSDeleteObject(nullptr), paramErr);
}

} // namespace

} // namespace mac::test
