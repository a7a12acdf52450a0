#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/system/FileDescriptor.h"
#include "tests/platform/system/LongFolder.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/Protection.h"
#include "tests/support/Texts.h"
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

NSFileManager manager() { return NSFileManager::defaultManager(); }

NSDictionary permissions(unsigned mode) {
    return NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithUnsignedInt_(mode), NSFilePosixPermissions);
}

class NSFileManagerContents : public testing::Test {
protected:
    NSString at(std::string_view name) const { return path(m_folder.path(name)); }

    TemporaryFolder const m_folder{};
};

TEST_F(NSFileManagerContents, OfAFolderAreItsNames) {
    m_folder.makeFile("b", "");
    m_folder.makeFile("a/inner", "");
    m_folder.makeFile(".hidden", "");
    m_folder.makeFile("n\xFF", "");
    ASSERT_EQ(::symlink("a", m_folder.path("link").c_str()), 0);
    EXPECT_EQ(fileSystemBytesOfEach(manager().directoryContentsAtPath_(path(m_folder.path()))),
              (Names{".hidden", "a", "b", "link", "n\xFF"}));
    EXPECT_EQ(fileSystemBytesOfEach(manager().directoryContentsAtPath_(at("link"))), Names{"inner"});
    EXPECT_EQ(manager().directoryContentsAtPath_(path(m_folder.makeFolder("empty"))).count(), 0U);
    EXPECT_TRUE(manager().directoryContentsAtPath_(at("b")) == nil);
    EXPECT_TRUE(manager().directoryContentsAtPath_(at("none")) == nil);
    EXPECT_TRUE(manager().directoryContentsAtPath_(nil) == nil);
    EXPECT_TRUE(NSFileManager(nil).directoryContentsAtPath_("/") == nil);
    LongFolder folder;
    folder.makeFile("file", "");
    EXPECT_EQ(fileSystemBytesOfEach(manager().directoryContentsAtPath_(path(folder.path()))), Names{"file"});
}

TEST_F(NSFileManagerContents, AreEnumeratedAllTheWayDown) {
    m_folder.makeFile("a/b/c", "");
    m_folder.makeFile("a/d", "");
    m_folder.makeFolder("e");
    ASSERT_EQ(::symlink(".", m_folder.path("loop").c_str()), 0);
    NSDirectoryEnumerator const all = manager().enumeratorAtPath_(path(m_folder.path()));
    EXPECT_EQ(fileSystemBytesOfEach(all.allObjects()), (Names{"a", "a/b", "a/b/c", "a/d", "e", "loop"}));
    EXPECT_TRUE(all.nextObject() == nil);
    EXPECT_EQ(fileSystemBytesOfEach(manager().enumeratorAtPath_(at("loop")).allObjects()).size(), 6U);
    EXPECT_TRUE(manager().enumeratorAtPath_(at("a/d")) == nil);
    EXPECT_TRUE(manager().enumeratorAtPath_(at("none")) == nil);
    EXPECT_TRUE(manager().enumeratorAtPath_(nil) == nil);
    EXPECT_TRUE(NSFileManager(nil).enumeratorAtPath_("/") == nil);
}

TEST_F(NSFileManagerContents, AreEnumeratedWithTheirAttributes) {
    m_folder.makeFile("a/file", "123");
    ASSERT_EQ(::symlink("a", m_folder.path("link").c_str()), 0);
    NSDirectoryEnumerator const all = manager().enumeratorAtPath_(path(m_folder.path()));
    EXPECT_TRUE(all.fileAttributes() == nil);
    EXPECT_TRUE(all.directoryAttributes().fileType().isEqualToString_(NSFileTypeDirectory));
    EXPECT_EQ(fileSystemBytes(all.nextObject()), "a");
    EXPECT_TRUE(all.fileAttributes().fileType().isEqualToString_(NSFileTypeDirectory));
    EXPECT_EQ(fileSystemBytes(all.nextObject()), "a/file");
    EXPECT_EQ(all.fileAttributes().fileSize(), 3U);
    EXPECT_EQ(fileSystemBytes(all.nextObject()), "link");
    EXPECT_TRUE(all.fileAttributes().fileType().isEqualToString_(NSFileTypeSymbolicLink));
    EXPECT_TRUE(all.nextObject() == nil);
    EXPECT_TRUE(all.fileAttributes() == nil);
    EXPECT_TRUE(NSDirectoryEnumerator(nil).fileAttributes() == nil);
    EXPECT_TRUE(NSDirectoryEnumerator(nil).directoryAttributes() == nil);
    NSDirectoryEnumerator(nil).skipDescendents();
}

TEST_F(NSFileManagerContents, AreEnumeratedWithoutWhatIsSkipped) {
    m_folder.makeFile("a/file", "");
    m_folder.makeFile("b/file", "");
    NSDirectoryEnumerator const all = manager().enumeratorAtPath_(path(m_folder.path()));
    EXPECT_EQ(fileSystemBytes(all.nextObject()), "a");
    all.skipDescendents();
    EXPECT_EQ(fileSystemBytes(all.nextObject()), "b");
    EXPECT_EQ(fileSystemBytes(all.nextObject()), "b/file");
    all.skipDescendents();
    EXPECT_TRUE(all.nextObject() == nil);
}

TEST_F(NSFileManagerContents, MayGoWhileTheyAreEnumerated) {
    m_folder.makeFile("a/file", "");
    m_folder.makeFile("b", "");
    NSDirectoryEnumerator const all = manager().enumeratorAtPath_(path(m_folder.path()));
    EXPECT_EQ(fileSystemBytes(all.nextObject()), "a");
    ASSERT_EQ(::unlink(m_folder.path("a/file").c_str()), 0);
    ASSERT_EQ(::rmdir(m_folder.path("a").c_str()), 0);
    EXPECT_EQ(fileSystemBytes(all.nextObject()), "b");
}

TEST_F(NSFileManagerContents, OfAFileAreItsBytes) {
    m_folder.makeFile("file", std::string("a\0b", 3));
    EXPECT_TRUE(manager().contentsAtPath_(at("file")).isEqualToData_(bytes({"a\0b", 3})));
    EXPECT_EQ(manager().contentsAtPath_(path(m_folder.makeFile("empty", ""))).length(), 0U);
    EXPECT_TRUE(manager().contentsAtPath_(at("none")) == nil);
    EXPECT_TRUE(manager().contentsAtPath_(path(m_folder.path())) == nil);
    EXPECT_TRUE(NSFileManager(nil).contentsAtPath_(at("file")) == nil);
}

TEST_F(NSFileManagerContents, AreEqualOrNot) {
    std::string const large(300'000, 'x');
    m_folder.makeFile("one/a", large);
    m_folder.makeFile("two/a", large);
    m_folder.makeFile("one/b/c", "");
    m_folder.makeFile("two/b/c", "");
    ASSERT_EQ(::symlink("a", m_folder.path("one/link").c_str()), 0);
    ASSERT_EQ(::symlink("a", m_folder.path("two/link").c_str()), 0);
    EXPECT_TRUE(manager().contentsEqualAtPath_andPath_(at("one"), at("two")));
    EXPECT_TRUE(manager().contentsEqualAtPath_andPath_(at("one"), at("one/")));
    EXPECT_FALSE(manager().contentsEqualAtPath_andPath_(at("one/link"), at("one/a")));
    EXPECT_FALSE(manager().contentsEqualAtPath_andPath_(at("one"), at("one/a")));
    m_folder.makeFile("two/a", large.substr(1) + "y");
    EXPECT_FALSE(manager().contentsEqualAtPath_andPath_(at("one/a"), at("two/a")));
    EXPECT_FALSE(manager().contentsEqualAtPath_andPath_(at("one"), at("two")));
    EXPECT_TRUE(manager().contentsEqualAtPath_andPath_(at("one/b"), at("two/b")));
    m_folder.makeFile("two/b/more", "");
    EXPECT_FALSE(manager().contentsEqualAtPath_andPath_(at("one/b"), at("two/b")));
    EXPECT_FALSE(manager().contentsEqualAtPath_andPath_(at("none"), at("none")));
    EXPECT_FALSE(manager().contentsEqualAtPath_andPath_(nil, at("one")));
    EXPECT_FALSE(NSFileManager(nil).contentsEqualAtPath_andPath_(at("one"), at("one")));
}

// As many folders within each other, made by their descriptors.
void makeDeep(std::string const& path, unsigned depth) {
    ASSERT_EQ(::mkdir(path.c_str(), 0700), 0);
    FileDescriptor folder(::open(path.c_str(), O_PATH | O_CLOEXEC));
    for (unsigned level = 0; level < depth; ++level) {
        ASSERT_EQ(::mkdirat(folder.number(), "d", 0700), 0);
        folder = FileDescriptor(::openat(folder.number(), "d", O_PATH | O_CLOEXEC));
    }
}

TEST_F(NSFileManagerContents, AreComparedHoweverDeepTheyLie) {
    constexpr unsigned depth = 2'500;
    makeDeep(m_folder.path("one"), depth);
    makeDeep(m_folder.path("two"), depth);
    makeDeep(m_folder.path("three"), depth - 1);
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &old), 0);
    rlimit few = old;
    few.rlim_cur = 64;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    bool const areEqual = manager().contentsEqualAtPath_andPath_(at("one"), at("two"));
    bool const areOthersEqual = manager().contentsEqualAtPath_andPath_(at("one"), at("three"));
    NSUInteger const count = manager().enumeratorAtPath_(at("one")).allObjects().count();
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &old), 0);
    EXPECT_TRUE(areEqual);
    EXPECT_FALSE(areOthersEqual);
    EXPECT_EQ(count, depth);
}

TEST_F(NSFileManagerContents, AreComparedInEveryFolder) {
    for (char const* const tree : {"one", "two"}) {
        for (char const* const file : {"/a/a/x", "/a/b/x", "/a/y", "/b/a/x", "/z"})
            m_folder.makeFile(std::string(tree) + file, file);
    }
    EXPECT_TRUE(manager().contentsEqualAtPath_andPath_(at("one"), at("two")));
    m_folder.makeFile("two/b/a/x", "/b/a/X");
    EXPECT_FALSE(manager().contentsEqualAtPath_andPath_(at("one"), at("two")));
    EXPECT_TRUE(manager().contentsEqualAtPath_andPath_(at("one/a"), at("two/a")));
    m_folder.makeFile("two/a/a/x", "/a/a/X");
    EXPECT_FALSE(manager().contentsEqualAtPath_andPath_(at("one/a"), at("two/a")));
}

TEST_F(NSFileManagerContents, AreEnumeratedWhereverTheFolderGoes) {
    m_folder.makeFile("folder/a/file", "1");
    m_folder.makeFile("folder/b", "22");
    NSDirectoryEnumerator const all = manager().enumeratorAtPath_(at("folder"));
    EXPECT_EQ(fileSystemBytes(all.nextObject()), "a");
    ASSERT_EQ(::rename(m_folder.path("folder").c_str(), m_folder.path("moved").c_str()), 0);
    m_folder.makeFile("folder/a/other", "");
    EXPECT_EQ(fileSystemBytes(all.nextObject()), "a/file");
    EXPECT_EQ(all.fileAttributes().fileSize(), 1U);
    EXPECT_EQ(fileSystemBytes(all.nextObject()), "b");
    EXPECT_EQ(all.fileAttributes().fileSize(), 2U);
}

TEST_F(NSFileManagerContents, AreNotEnumeratedThroughALinkThatTakesAFoldersPlace) {
    m_folder.makeFile("folder/a/file", "");
    m_folder.makeFile("elsewhere/secret", "");
    NSDirectoryEnumerator const all = manager().enumeratorAtPath_(at("folder"));
    EXPECT_EQ(fileSystemBytes(all.nextObject()), "a");
    ASSERT_EQ(::rename(m_folder.path("folder/a").c_str(), m_folder.path("a").c_str()), 0);
    ASSERT_EQ(::symlink("../elsewhere", m_folder.path("folder/a").c_str()), 0);
    EXPECT_TRUE(all.nextObject() == nil);
}

TEST_F(NSFileManagerContents, OfANewFolderAreNone) {
    EXPECT_TRUE(manager().createDirectoryAtPath_attributes_(at("new"), nil));
    EXPECT_EQ(manager().directoryContentsAtPath_(at("new")).count(), 0U);
    EXPECT_FALSE(manager().createDirectoryAtPath_attributes_(at("new"), nil));
    EXPECT_TRUE(manager().createDirectoryAtPath_attributes_(at("new/inner/"), permissions(0700)));
    EXPECT_EQ(manager().fileAttributesAtPath_traverseLink_(at("new/inner"), NO).filePosixPermissions(), 0700U);
    EXPECT_FALSE(manager().createDirectoryAtPath_attributes_(at("none/inner"), nil));
    EXPECT_FALSE(manager().createDirectoryAtPath_attributes_("/", nil));
    EXPECT_FALSE(manager().createDirectoryAtPath_attributes_("", nil));
    EXPECT_FALSE(manager().createDirectoryAtPath_attributes_(nil, nil));
    EXPECT_FALSE(NSFileManager(nil).createDirectoryAtPath_attributes_(at("other"), nil));
    EXPECT_TRUE(manager().createDirectoryAtPath_attributes_(at(std::string(255, 'n')), nil));
    EXPECT_FALSE(manager().createDirectoryAtPath_attributes_(at(std::string(256, 'n')), nil));
}

TEST_F(NSFileManagerContents, OfANewFileAreWhatItIsMadeWith) {
    EXPECT_TRUE(manager().createFileAtPath_contents_attributes_(at("file"), bytes("one"), permissions(0640)));
    EXPECT_TRUE(manager().contentsAtPath_(at("file")).isEqualToData_(bytes("one")));
    EXPECT_EQ(manager().fileAttributesAtPath_traverseLink_(at("file"), NO).filePosixPermissions(), 0640U);
    EXPECT_TRUE(manager().createFileAtPath_contents_attributes_(at("file"), nil, nil));
    EXPECT_EQ(manager().contentsAtPath_(at("file")).length(), 0U);
    EXPECT_EQ(manager().fileAttributesAtPath_traverseLink_(at("file"), NO).filePosixPermissions(), 0640U);
    EXPECT_FALSE(manager().createFileAtPath_contents_attributes_(at("none/file"), nil, nil));
    EXPECT_FALSE(manager().createFileAtPath_contents_attributes_(path(m_folder.path()), nil, nil));
    EXPECT_FALSE(manager().createFileAtPath_contents_attributes_(nil, nil, nil));
    EXPECT_FALSE(NSFileManager(nil).createFileAtPath_contents_attributes_(at("other"), nil, nil));
}

TEST_F(NSFileManagerContents, OfANewFileHaveTheirAttributesFromTheBeginning) {
    NSMutableDictionary const attributes = NSMutableDictionary::dictionaryWithDictionary_(permissions(0400));
    attributes.setObject_forKey_(NSDate::dateWithTimeIntervalSince1970_(1'000), NSFileModificationDate);
    EXPECT_TRUE(manager().createFileAtPath_contents_attributes_(at("file"), bytes("one"), attributes));
    NSDictionary const found = manager().fileAttributesAtPath_traverseLink_(at("file"), NO);
    EXPECT_EQ(found.filePosixPermissions(), 0400U);
    EXPECT_EQ(found.fileModificationDate().timeIntervalSince1970(), 1'000);
    attributes.setObject_forKey_(NSDate::dateWithTimeIntervalSince1970_(500), NSFileCreationDate);
    EXPECT_TRUE(manager().createFileAtPath_contents_attributes_(at("dated"), bytes("three"), attributes));
    EXPECT_EQ(manager().fileAttributesAtPath_traverseLink_(at("dated"), NO).fileCreationDate().timeIntervalSince1970(),
              500);
    EXPECT_EQ(manager().fileAttributesAtPath_traverseLink_(at("dated"), NO).filePosixPermissions(), 0400U);
    // A failure is told, and the file is there: no record can hold the date.
    attributes.setObject_forKey_(NSDate::dateWithTimeIntervalSince1970_(-1e13), NSFileCreationDate);
    EXPECT_FALSE(manager().createFileAtPath_contents_attributes_(at("other"), bytes("two"), attributes));
    EXPECT_EQ(manager().fileAttributesAtPath_traverseLink_(at("other"), NO).filePosixPermissions(), 0400U);
    EXPECT_TRUE(manager().contentsAtPath_(at("other")).isEqualToData_(bytes("two")));
}

TEST_F(NSFileManagerContents, OfANewFileMayBeLocked) {
    if (!canLockFilesIn(m_folder)) GTEST_SKIP() << "files cannot be locked here";
    NSDictionary const locked =
        NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithBool_(YES), NSFileImmutable);
    EXPECT_TRUE(manager().createFileAtPath_contents_attributes_(at("file"), bytes("one"), locked));
    EXPECT_TRUE(manager().fileAttributesAtPath_traverseLink_(at("file"), NO).fileIsImmutable());
    EXPECT_TRUE(manager().contentsAtPath_(at("file")).isEqualToData_(bytes("one")));
    EXPECT_TRUE(setLocked(m_folder.path("file"), false));
}

TEST_F(NSFileManagerContents, OfALinkAreItsText) {
    EXPECT_TRUE(manager().createSymbolicLinkAtPath_pathContent_(at("link"), "../no\xC3\xA9where"));
    EXPECT_EQ(fileSystemBytes(manager().pathContentOfSymbolicLinkAtPath_(at("link"))), "../no\xC3\xA9where");
    EXPECT_FALSE(manager().createSymbolicLinkAtPath_pathContent_(at("link"), "other"));
    EXPECT_FALSE(manager().createSymbolicLinkAtPath_pathContent_(at("empty"), ""));
    EXPECT_FALSE(manager().createSymbolicLinkAtPath_pathContent_(at("empty"), nil));
    EXPECT_FALSE(manager().createSymbolicLinkAtPath_pathContent_(nil, "other"));
    EXPECT_TRUE(manager().pathContentOfSymbolicLinkAtPath_(path(m_folder.path())) == nil);
    EXPECT_TRUE(manager().pathContentOfSymbolicLinkAtPath_(at("none")) == nil);
    EXPECT_TRUE(manager().pathContentOfSymbolicLinkAtPath_(nil) == nil);
    EXPECT_TRUE(NSFileManager(nil).pathContentOfSymbolicLinkAtPath_(at("link")) == nil);
    EXPECT_FALSE(NSFileManager(nil).createSymbolicLinkAtPath_pathContent_(at("new"), "other"));
}

TEST_F(NSFileManagerContents, MayBeReadOrNot) {
    std::string const file = m_folder.makeFile("file", "");
    EXPECT_TRUE(manager().isReadableFileAtPath_(at("file")));
    EXPECT_TRUE(manager().isWritableFileAtPath_(at("file")));
    EXPECT_FALSE(manager().isExecutableFileAtPath_(at("file")));
    EXPECT_TRUE(manager().isDeletableFileAtPath_(at("file")));
    ASSERT_EQ(::chmod(file.c_str(), 0700), 0);
    EXPECT_TRUE(manager().isExecutableFileAtPath_(at("file")));
    for (NSString const& none : {at("none"), NSString(""), NSString(nil)}) {
        EXPECT_FALSE(manager().isReadableFileAtPath_(none));
        EXPECT_FALSE(manager().isWritableFileAtPath_(none));
        EXPECT_FALSE(manager().isExecutableFileAtPath_(none));
        EXPECT_FALSE(manager().isDeletableFileAtPath_(none));
    }
    for (NSString const& none : {NSString("/"), NSString("//"), at("."), at(".."), at("./")})
        EXPECT_FALSE(manager().isDeletableFileAtPath_(none));
    EXPECT_FALSE(NSFileManager(nil).isReadableFileAtPath_("/"));
    EXPECT_FALSE(NSFileManager(nil).isWritableFileAtPath_("/"));
    EXPECT_FALSE(NSFileManager(nil).isExecutableFileAtPath_("/"));
    EXPECT_FALSE(NSFileManager(nil).isDeletableFileAtPath_(at("file")));
    if (::geteuid() == 0) GTEST_SKIP() << "root may read and write whatever there is";
    ASSERT_EQ(::chmod(file.c_str(), 0), 0);
    EXPECT_FALSE(manager().isReadableFileAtPath_(at("file")));
    EXPECT_FALSE(manager().isWritableFileAtPath_(at("file")));
    EXPECT_TRUE(manager().isDeletableFileAtPath_(at("file")));
}

TEST_F(NSFileManagerContents, AreShownByTheirNames) {
    EXPECT_EQ(fileSystemBytes(manager().displayNameAtPath_(at("Mirror Frame.app"))), "Mirror Frame.app");
    EXPECT_EQ(fileSystemBytes(manager().displayNameAtPath_("/")), "/");
    EXPECT_EQ(fileSystemBytes(manager().displayNameAtPath_(at("none of this/name/"))), "name");
    EXPECT_EQ(fileSystemBytes(manager().displayNameAtPath_("/a:b")), "a:b");
    EXPECT_TRUE(manager().displayNameAtPath_(nil) == nil);
    EXPECT_TRUE(NSFileManager(nil).displayNameAtPath_("/") == nil);
}

} // namespace
} // namespace mac::test
