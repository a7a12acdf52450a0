#include "scripting/FileReferences.h"
#include "platform/foundation/files/NSFileAttributes.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/platform/files/references/References.h"
#include "tests/platform/system/LongFolder.h"
#include "tests/support/Environment.h"
#include "tests/support/Failures.h"
#include "tests/support/FolderWithLinks.h"
#include "tests/support/ObjectTexts.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

bool isZero(FSRef const& reference) { return reference == FSRef{}; }

using KRCPaths = FolderWithLinks;

TEST_F(KRCPaths, HaveTheTypeOfTheItemItself) {
    EXPECT_EQ(fileSystemBytes(KRCPathGetFileType(at("folder"))), NSFileTypeDirectory);
    EXPECT_EQ(fileSystemBytes(KRCPathGetFileType(at("folder/file"))), NSFileTypeRegular);
    EXPECT_EQ(fileSystemBytes(KRCPathGetFileType(at("link"))), NSFileTypeSymbolicLink);
    EXPECT_EQ(fileSystemBytes(KRCPathGetFileType(at("lost"))), NSFileTypeSymbolicLink);
    EXPECT_EQ(fileSystemBytes(KRCPathGetFileType(at("none"))), "-");
    EXPECT_EQ(fileSystemBytes(KRCPathGetFileType("")), "-");
    EXPECT_EQ(fileSystemBytes(KRCPathGetFileType(nil)), "-");
    EXPECT_EQ(fileSystemBytes(KRCPathGetFileType(".")), NSFileTypeDirectory);
}

TEST_F(KRCPaths, AreLinksOrNot) {
    EXPECT_TRUE(KRCPathIsSymbolicLink(at("link")));
    EXPECT_TRUE(KRCPathIsSymbolicLink(at("lost")));
    EXPECT_FALSE(KRCPathIsSymbolicLink(at("folder/file")));
    EXPECT_FALSE(KRCPathIsSymbolicLink(at("folder")));
    EXPECT_FALSE(KRCPathIsSymbolicLink(at("none")));
    EXPECT_FALSE(KRCPathIsSymbolicLink(nil));
}

TEST_F(KRCPaths, ExistWhereTheyLeadSomewhere) {
    EXPECT_TRUE(KRCPathExists(at("folder")));
    EXPECT_TRUE(KRCPathExists(at("folder/")));
    EXPECT_TRUE(KRCPathExists(at("link")));
    EXPECT_FALSE(KRCPathExists(at("lost")));
    EXPECT_FALSE(KRCPathExists(at("none")));
    EXPECT_FALSE(KRCPathExists(at("folder/file/below")));
    EXPECT_FALSE(KRCPathExists(nil));
}

TEST_F(KRCPaths, ThatAreRelativeDoNotExist) {
    bool isDirectory = true;
    for (NSString const& relative : {NSString("."), NSString(""), NSString("../"), NSString("~")}) {
        EXPECT_FALSE(KRCPathExists(relative));
        EXPECT_FALSE(KRCPathExistsIsDirectory_(relative, &isDirectory));
        EXPECT_FALSE(KRCPathExistsTraverseLink_(relative, YES));
        EXPECT_FALSE(KRCPathExistsTraverseLink_(relative, NO));
        EXPECT_TRUE(isDirectory);
    }
    EXPECT_FALSE(KRCPathExistsIsDirectory_traverseLink_(".", &isDirectory, NO));
    EXPECT_FALSE(isDirectory);
}

TEST_F(KRCPaths, ThatAreRelativeBecomeNoReferences) {
    CurrentFolder const current(m_folder.path());
    for (char const* const relative : {"folder", "folder/", "./folder/file", ".", "../", "~"}) {
        bool isDirectory = true;
        FSRef reference = filledReference();
        EXPECT_FALSE(KRCPathGetFSRef_(path(relative), &reference)) << relative;
        EXPECT_TRUE(isZero(reference));
        reference = filledReference();
        EXPECT_FALSE(KRCPathGetFSRef_isDirectory_(path(relative), &reference, YES)) << relative;
        EXPECT_TRUE(isZero(reference));
        reference = filledReference();
        EXPECT_FALSE(KRCPathGetFSRef_getIsDirectory_(path(relative), &reference, &isDirectory)) << relative;
        EXPECT_TRUE(isZero(reference));
        EXPECT_TRUE(isDirectory);
        EXPECT_FALSE(KRCPathGetFSRef_(path(relative), {})) << relative;
    }
    EXPECT_EQ(fileSystemBytes(KRCPathGetFileType("folder")), NSFileTypeDirectory) << "which is asked for by any path";
}

TEST_F(KRCPaths, TellFoldersWithLinksFollowed) {
    bool isDirectory = false;
    EXPECT_TRUE(KRCPathExistsIsDirectory_(at("folderLink"), &isDirectory));
    EXPECT_TRUE(isDirectory);
    EXPECT_TRUE(KRCPathExistsIsDirectory_(at("link"), &isDirectory));
    EXPECT_FALSE(isDirectory);
    isDirectory = true;
    EXPECT_FALSE(KRCPathExistsIsDirectory_(at("lost"), &isDirectory));
    EXPECT_FALSE(isDirectory);
    EXPECT_TRUE(KRCPathExistsIsDirectory_(at("folder"), {}));
    EXPECT_FALSE(KRCPathExistsIsDirectory_(nil, &isDirectory));
}

TEST_F(KRCPaths, ExistWithLinksFollowedOrNot) {
    EXPECT_FALSE(KRCPathExistsTraverseLink_(at("lost"), YES));
    EXPECT_TRUE(KRCPathExistsTraverseLink_(at("lost"), NO));
    EXPECT_TRUE(KRCPathExistsTraverseLink_(at("link"), YES));
    EXPECT_FALSE(KRCPathExistsTraverseLink_(at("none"), NO));
    EXPECT_FALSE(KRCPathExistsTraverseLink_(nil, NO));
    EXPECT_FALSE(KRCPathExistsTraverseLink_(nil, YES));
}

TEST_F(KRCPaths, TellFoldersWithLinksFollowedOrNot) {
    bool isDirectory = true;
    EXPECT_TRUE(KRCPathExistsIsDirectory_traverseLink_(at("folderLink"), &isDirectory, NO));
    EXPECT_FALSE(isDirectory);
    EXPECT_TRUE(KRCPathExistsIsDirectory_traverseLink_(at("folderLink"), &isDirectory, YES));
    EXPECT_TRUE(isDirectory);
    EXPECT_TRUE(KRCPathExistsIsDirectory_traverseLink_(at("lost"), &isDirectory, NO));
    EXPECT_FALSE(isDirectory);
    EXPECT_FALSE(KRCPathExistsIsDirectory_traverseLink_(at("lost"), &isDirectory, YES));
    EXPECT_TRUE(KRCPathExistsIsDirectory_traverseLink_(at("folder"), &isDirectory, NO));
    EXPECT_TRUE(isDirectory);
    EXPECT_FALSE(KRCPathExistsIsDirectory_traverseLink_(at("none"), &isDirectory, NO));
    EXPECT_FALSE(isDirectory);
    EXPECT_TRUE(KRCPathExistsIsDirectory_traverseLink_(at("folder"), {}, NO));
    EXPECT_TRUE(KRCPathExistsIsDirectory_traverseLink_(at("folder"), {}, YES));
    EXPECT_FALSE(KRCPathExistsIsDirectory_traverseLink_(nil, &isDirectory, NO));
}

TEST_F(KRCPaths, AreStoredAsTheyAreWritten) {
    for (std::string const& bytes : {std::string("/n\xC3\xA9"), std::string("/ne\xCC\x81"), std::string("/\xFF")})
        EXPECT_EQ(fileSystemBytes(KRCPathGetFileSystemPath(path(bytes))), bytes);
    EXPECT_TRUE(KRCPathGetFileSystemPath(NSString::stringWithCodeUnits(u"/\xD800")) == nil);
    EXPECT_TRUE(KRCPathGetFileSystemPath("") == nil);
    EXPECT_TRUE(KRCPathGetFileSystemPath(nil) == nil);
}

TEST_F(KRCPaths, BecomeReferencesAndCameBack) {
    FSRef reference = filledReference();
    EXPECT_TRUE(KRCPathGetFSRef_(at("folder/file"), &reference));
    EXPECT_EQ(fileSystemBytes(KRCPathWithFSRef_(&reference)), m_folder.path("folder/file"));
    FSRef followed = filledReference();
    EXPECT_TRUE(KRCPathGetFSRef_(at("link"), &followed));
    EXPECT_TRUE(followed == reference);
    ASSERT_EQ(::rename(m_folder.path("folder").c_str(), m_folder.path("moved").c_str()), 0);
    EXPECT_EQ(fileSystemBytes(KRCPathWithFSRef_(&reference)), m_folder.path("moved/file"));
    EXPECT_TRUE(KRCPathGetFSRef_(at("moved"), {}));
}

TEST_F(KRCPaths, ThatLeadNowhereBecomeZero) {
    for (NSString const& none : {at("none"), at("lost"), NSString(""), NSString(nil)}) {
        bool isDirectory = false;
        FSRef reference = filledReference();
        EXPECT_FALSE(KRCPathGetFSRef_(none, &reference));
        EXPECT_TRUE(isZero(reference));
        reference = filledReference();
        EXPECT_FALSE(KRCPathGetFSRef_isDirectory_(none, &reference, YES));
        EXPECT_TRUE(isZero(reference));
        reference = filledReference();
        EXPECT_FALSE(KRCPathGetFSRef_getIsDirectory_(none, &reference, &isDirectory));
        EXPECT_TRUE(isZero(reference));
        EXPECT_FALSE(KRCPathGetFSRef_(none, {}));
    }
}

TEST_F(KRCPaths, BecomeReferencesWithAWordOnFolders) {
    FSRef reference = filledReference();
    EXPECT_TRUE(KRCPathGetFSRef_isDirectory_(at("folder"), &reference, YES));
    EXPECT_EQ(fileSystemBytes(KRCPathWithFSRef_(&reference)), m_folder.path("folder"));
    EXPECT_TRUE(KRCPathGetFSRef_isDirectory_(at("folder/file"), &reference, NO));
    EXPECT_EQ(fileSystemBytes(KRCPathWithFSRef_(&reference)), m_folder.path("folder/file"));
    bool isDirectory = false;
    EXPECT_TRUE(KRCPathGetFSRef_getIsDirectory_(at("folder"), &reference, &isDirectory));
    EXPECT_TRUE(isDirectory);
    EXPECT_TRUE(KRCPathGetFSRef_getIsDirectory_(at("folder/file"), &reference, &isDirectory));
    EXPECT_FALSE(isDirectory);
    EXPECT_TRUE(KRCPathGetFSRef_getIsDirectory_(at("folder"), &reference, {}));
}

TEST_F(KRCPaths, OfReferencesToNothingAreNil) {
    FSRef const zero{};
    EXPECT_TRUE(KRCPathWithFSRef_(&zero) == nil);
    EXPECT_TRUE(KRCPathWithFSRef_({}) == nil);
    FSRef reference{};
    ASSERT_TRUE(KRCPathGetFSRef_(at("folder/file"), &reference));
    ASSERT_EQ(::unlink(m_folder.path("folder/file").c_str()), 0);
    EXPECT_TRUE(KRCPathWithFSRef_(&reference) == nil);
    EXPECT_TRUE(KRCURLWithFSRef_(&reference) == nil);
}

TEST_F(KRCPaths, MayBeLongAndOfAnyBytes) {
    LongFolder folder;
    folder.makeFile("file", "");
    FSRef reference{};
    EXPECT_TRUE(KRCPathExists(path(folder.path() + "/file")));
    EXPECT_EQ(fileSystemBytes(KRCPathGetFileType(path(folder.path() + "/file"))), NSFileTypeRegular);
    ASSERT_TRUE(KRCPathGetFSRef_(path(folder.path() + "/file"), &reference));
    EXPECT_EQ(fileSystemBytes(KRCPathWithFSRef_(&reference)), folder.path() + "/file");
    std::string const odd = m_folder.makeFile("n\xE9:\xFF", "");
    ASSERT_TRUE(KRCPathGetFSRef_(path(odd), &reference));
    EXPECT_EQ(fileSystemBytes(KRCPathWithFSRef_(&reference)), odd);
}

TEST(KRCPathDisplayNames, AreThoseOfAllFoldersAboveAndOfTheItem) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(fileSystemBytesOfEach(KRCPathDisplayNames("/Users/a/b")), (Names{"/", "Users", "a", "b"}));
    EXPECT_EQ(fileSystemBytesOfEach(KRCPathDisplayNames("/")), Names{"/"});
    EXPECT_EQ(fileSystemBytesOfEach(KRCPathDisplayNames("a/b")), (Names{"a", "b"}));
    EXPECT_EQ(fileSystemBytesOfEach(KRCPathDisplayNames("")), Names{});
    KRCPathDisplayNames("/").addObject_("more");
    EXPECT_TRUE(KRCPathDisplayNames(nil) == nil);
}

TEST(KRCPathSubPathRelativeToBasePath, LeavesOutAsManyComponentsAsTheBaseHas) {
    EXPECT_EQ(fileSystemBytes(KRCPathSubPathRelativeToBasePath_("/a/b/c", "/a")), "b/c");
    EXPECT_EQ(fileSystemBytes(KRCPathSubPathRelativeToBasePath_("/a/b/c", "/x")), "b/c");
    EXPECT_EQ(fileSystemBytes(KRCPathSubPathRelativeToBasePath_("/a/b/c", "")), "/a/b/c");
    EXPECT_EQ(fileSystemBytes(KRCPathSubPathRelativeToBasePath_("/a/b/c", nil)), "/a/b/c");
    EXPECT_EQ(fileSystemBytes(KRCPathSubPathRelativeToBasePath_("/a", "/b")), "");
    EXPECT_THROW(KRCPathSubPathRelativeToBasePath_("/a", "/b/c"), NSRangeException);
    EXPECT_TRUE(KRCPathSubPathRelativeToBasePath_(nil, "/b/c") == nil);
}

TEST_F(KRCPaths, OfURLsBecomeReferences) {
    FSRef reference = filledReference();
    EXPECT_TRUE(KRCURLGetFSRef_(NSURL::fileURLWithPath_(at("folder")), &reference));
    NSURL const url = KRCURLWithFSRef_(&reference);
    EXPECT_EQ(fileSystemBytes(url.path()), m_folder.path("folder"));
    EXPECT_TRUE(CFURLHasDirectoryPath(url));
    EXPECT_TRUE(KRCURLGetFSRef_(NSURL::fileURLWithPath_(at("folder")), {}));
    EXPECT_FALSE(KRCURLGetFSRef_(NSURL::fileURLWithPath_(at("none")), {}));
    EXPECT_FALSE(KRCURLGetFSRef_(NSURL::fileURLWithPath_(at("none")), &reference));
    EXPECT_TRUE(isZero(reference));
    reference = filledReference();
    EXPECT_FALSE(KRCURLGetFSRef_(NSURL::URLWithString_("http://host/tmp"), &reference));
    EXPECT_TRUE(isZero(reference));
    reference = filledReference();
    EXPECT_FALSE(KRCURLGetFSRef_(nil, &reference));
    EXPECT_TRUE(isZero(reference));
    EXPECT_TRUE(KRCURLWithFSRef_({}) == nil);
}

TEST_F(KRCPaths, OfReferencesBecomeRelativeURLs) {
    FSRef reference{};
    ASSERT_TRUE(KRCPathGetFSRef_(at("folder/file"), &reference));
    NSURL const base = NSURL::fileURLWithPath_(path(m_folder.path()));
    NSURL const url = KRCURLRelativeURLWithFSRef_(base, &reference);
    EXPECT_EQ(fileSystemBytes(url.relativeString()), "folder/file");
    EXPECT_TRUE(url.baseURL().isEqual_(base));
    EXPECT_EQ(fileSystemBytes(url.path()), m_folder.path("folder/file"));
    ASSERT_TRUE(KRCPathGetFSRef_(at("folder"), &reference));
    EXPECT_EQ(fileSystemBytes(KRCURLRelativeURLWithFSRef_(base, &reference).relativeString()), "folder/");
    // Only the number of the base's components counts.
    NSURL const other = NSURL::fileURLWithPath_isDirectory_("/x", YES);
    std::string const tail = fileSystemBytes(KRCURLRelativeURLWithFSRef_(other, &reference).relativeString());
    EXPECT_TRUE((m_folder.path("folder") + "/").ends_with("/" + tail)) << tail;
}

TEST_F(KRCPaths, OfReferencesToNothingBecomeNoRelativeURLs) {
    FSRef const zero{};
    NSURL const base = NSURL::fileURLWithPath_(path(m_folder.path()));
    EXPECT_TRUE(KRCURLRelativeURLWithFSRef_(base, &zero) == nil);
    EXPECT_TRUE(KRCURLRelativeURLWithFSRef_(base, {}) == nil);
    FSRef reference{};
    ASSERT_TRUE(KRCPathGetFSRef_(at("folder"), &reference));
    EXPECT_TRUE(KRCURLRelativeURLWithFSRef_(nil, &reference) == nil);
    NSURL const deep = NSURL::fileURLWithPath_isDirectory_("/a/b/c/d/e/f/g/h/i/j/k", YES);
    EXPECT_THROW(KRCURLRelativeURLWithFSRef_(deep, &reference), NSRangeException);
}

TEST(KRCURLIsOnIDisk, ComparesTheHostExactly) {
    NSString const host = KRCIDiskHost;
    auto const urlOn = [](NSString const& name) {
        return NSURL::URLWithString_(NSString::stringWithFormat_("http://%@/user", name));
    };
    EXPECT_TRUE(KRCURLIsOnIDisk(urlOn(host)));
    EXPECT_FALSE(KRCURLIsOnIDisk(urlOn(host.uppercaseString())));
    EXPECT_FALSE(KRCURLIsOnIDisk(urlOn("example.org")));
    EXPECT_FALSE(KRCURLIsOnIDisk(NSURL::URLWithString_("file:///tmp")));
    EXPECT_FALSE(KRCURLIsOnIDisk(NSURL::URLWithString_("relative")));
    EXPECT_FALSE(KRCURLIsOnIDisk(nil));
}

TEST(FileReferences, AreMessagesToo) {
    EXPECT_TRUE(id("a:b").performSelector_("KRCStringBySwappingColonsAndSlashes").isEqual_("a/b"));
    EXPECT_TRUE(id(NSURL::URLWithString_("file:///tmp")).respondsToSelector_("KRCURLIsOnIDisk"));
}

TEST(FileReferences, AReferenceTakesFewSystemCallsHoweverManyThereAre) {
    TemporaryFolder const folder;
    FSRef reference{};
    for (int index = 0; index < 300; ++index)
        ASSERT_TRUE(KRCPathGetFSRef_(path(folder.makeFile(std::to_string(index), "")), &reference));
    NSString const another = path(folder.makeFile("another", ""));
    std::optional<unsigned> const calls = systemCallsOf([&] { KRCPathGetFSRef_(another, &reference); });
    if (!calls) GTEST_SKIP() << "tracing is not allowed here";
    EXPECT_GT(*calls, 0U);
    EXPECT_LE(*calls, 8U);
    ASSERT_TRUE(KRCPathGetFSRef_(another, &reference));
    EXPECT_LE(*systemCallsOf([&] { KRCPathGetFSRef_(another, &reference); }), 2U);
}

} // namespace
} // namespace mac::test
