#include "pathutils/PathRelations.h"
#include "pathutils/FinderMetadata.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/NSNull.h"
#include "tests/support/Environment.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

// An image of one point.
constexpr unsigned char OnePoint[] = {
    0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A, 0, 0, 0, 0x0D, 'I',  'H',  'D',  'R', 0, 0,
    0,    1,   0,   0,   0,    1,    8,    6,    0, 0, 0, 0x1F, 0x15, 0xC4, 0x89, 0,   0, 0,
};

class PathRelations : public testing::Test {
protected:
    NSString at(std::string_view name) const { return path(m_folder.path(name)); }
    void link(char const* target, std::string_view name) const {
        if (::symlink(target, m_folder.path(name).c_str()) != 0) throw std::runtime_error("no link");
    }

    TemporaryFolder const m_folder{};
};

struct PathPair {
    char const* path;
    char const* other;
    bool answer;
};

TEST_F(PathRelations, EqualityIgnoresCaseAndWhatStandardizingTakesAway) {
    EnvironmentVariable const home("HOME", m_folder.path());
    EXPECT_TRUE(pxIsEqualToPath_("~/Desktop/", NSHomeDirectory().stringByAppendingString_("/desktop")));
    constexpr PathPair pairs[] = {
        {"/a/b", "/A/B", true},
        {"/a/b", "/a/b/", true},
        {"/a//b", "/a/./b", true},
        {"/a/c/../b", "/a/b", true},
        {"/", "/", true},
        {"/a/b", "/a/bc", false},
        {"/a/b", "/a", false},
        {"a/b", "/a/b", false},
        {"", "", true},
        {"/Stra\u00DFe", "/STRASSE", true},
    };
    for (PathPair const& pair : pairs) {
        SCOPED_TRACE(pair.path);
        NSString const first = path(pair.path);
        EXPECT_EQ(pxIsEqualToPath_(first, path(pair.other)), pair.answer);
        EXPECT_EQ(pxIsEqualToPath_(path(pair.other), first), pair.answer);
    }
}

TEST_F(PathRelations, NothingIsEqualToNilOrTheNullObject) {
    EXPECT_FALSE(pxIsEqualToPath_("/a", nil));
    EXPECT_FALSE(pxIsEqualToPath_("/a", NSNull::null()));
    EXPECT_FALSE(pxIsEqualToPath_("/a", NSNumber::numberWithInt_(1)));
    EXPECT_FALSE(pxIsEqualToPath_(nil, "/a"));
    EXPECT_FALSE(pxIsEqualToPath_(nil, nil));
}

TEST_F(PathRelations, AChildLiesInAFolderAtWhateverDepth) {
    constexpr PathPair pairs[] = {
        {"/Applications/Foo.app", "/Applications", true},
        {"/Applications/Foo.app", "/Applications/Foo.app", false},
        {"/Applications/Foo.app", "/Applic", false},
        {"/Users/a/b", "/users/A", true},
        {"/Users/ab", "/Users/a", false},
        {"/Users/a/b/c/d", "/Users/a/", true},
        {"/Users/a/", "/Users/a", false},
        {"/Users", "/Users/a", false},
        {"/a", "/", true},
        {"/", "/", false},
        {"/a/../b", "/a", false},
        {"a/b", "a", true},
        {"a/b", "/", false},
        {"", "/", false},
        {"/a", "", false},
    };
    for (PathPair const& pair : pairs) {
        SCOPED_TRACE(pair.path + std::string(" in ") + pair.other);
        EXPECT_EQ(pxIsChildOf_(path(pair.path), path(pair.other)), pair.answer);
    }
    EXPECT_FALSE(pxIsChildOf_("/a", nil));
    EXPECT_FALSE(pxIsChildOf_("/a", NSNull::null()));
    EXPECT_FALSE(pxIsChildOf_("/a", NSNumber::numberWithInt_(1)));
    EXPECT_FALSE(pxIsChildOf_(nil, "/"));
}

TEST_F(PathRelations, TheFastTestComparesExactly) {
    constexpr PathPair pairs[] = {
        {"/a/b", "/a", true},     {"/a/b", "/A", false}, {"/a/b", "/", true},
        {"/a/b/", "/a/b", false}, {"/a/b", "/a/", true}, {"/ab", "/a", false},
        {"/a", "/a", false},      {"", "", false},       {"/a/../b", "/a", true},
    };
    for (PathPair const& pair : pairs) {
        SCOPED_TRACE(pair.path + std::string(" in ") + pair.other);
        EXPECT_EQ(pxFastIsChildOf_(path(pair.path), path(pair.other)), pair.answer);
    }
    EXPECT_FALSE(pxFastIsChildOf_("/a", nil));
    EXPECT_FALSE(pxFastIsChildOf_(nil, "/a"));
}

TEST_F(PathRelations, SoManyLevelsAreLookedAtForAPackage) {
    m_folder.makeFile("Foo.app/Contents/MacOS/Foo", "");
    NSString const deep = at("Foo.app/Contents/MacOS");
    EXPECT_TRUE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(deep, 3));
    EXPECT_FALSE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(deep, 2));
    EXPECT_FALSE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(deep, 0));
    EXPECT_TRUE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(deep, 0xFFFFFFFF));
    EXPECT_TRUE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(at("Foo.app"), 1));
    EXPECT_FALSE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(path(m_folder.path()), 0xFFFFFFFF));
    EXPECT_FALSE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_("/", 9));
    EXPECT_FALSE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_("Foo.app", 9));
    EXPECT_FALSE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(at("Foo.app/none"), 9));
    EXPECT_FALSE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_("", 9));
    EXPECT_FALSE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(nil, 9));
}

TEST_F(PathRelations, PartOfAPackageIsWhatLiesInIt) {
    m_folder.makeFile("Foo.app/Contents/file", "");
    EXPECT_FALSE(pxIsPathPartOfPackageCheckingMaxLevels_(at("Foo.app"), 1));
    EXPECT_TRUE(pxIsPathPartOfPackageCheckingMaxLevels_(at("Foo.app/Contents"), 1));
    EXPECT_FALSE(pxIsPathPartOfPackageCheckingMaxLevels_(at("Foo.app/Contents/file"), 1));
    EXPECT_TRUE(pxIsPathPartOfPackageCheckingMaxLevels_(at("Foo.app/Contents/file"), 2));
    // The item itself need not be there.
    EXPECT_TRUE(pxIsPathPartOfPackageCheckingMaxLevels_(at("Foo.app/none"), 1));
    EXPECT_FALSE(pxIsPathPartOfPackageCheckingMaxLevels_("/", 9));
    EXPECT_FALSE(pxIsPathPartOfPackageCheckingMaxLevels_(nil, 9));
}

TEST_F(PathRelations, ALinkToAPackageIsNoPackage) {
    m_folder.makeFolder("Foo.app/Contents");
    link("Foo.app", "link");
    EXPECT_FALSE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(at("link"), 1));
    // An item behind the link lies in the package, not in the link.
    EXPECT_TRUE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(at("link/Contents"), 2));
    link("itself.app", "itself.app");
    EXPECT_FALSE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(at("itself.app"), 9));
    EXPECT_FALSE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(at("itself.app/Contents"), 2));
    EXPECT_TRUE(pxInfoDictionaryForPath(at("itself.app")) == nil);
    EXPECT_TRUE(pxInfoDictionaryForPathUncached(at("itself.app")) == nil);
    m_folder.makeFile("file.app", "");
    EXPECT_FALSE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(at("file.app"), 1));
    m_folder.makeFolder(".app");
    EXPECT_FALSE(pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(at(".app"), 1));
}

TEST_F(PathRelations, DisplayNamesAreTheFileManagers) {
    m_folder.makeFile("a.txt", "");
    EXPECT_EQ(fileSystemBytes(pxDisplayNameOfPath(at("a.txt"))), "a.txt");
    EXPECT_EQ(fileSystemBytes(pxDisplayNameOfPath(at("none.txt"))), "none.txt");
    EXPECT_EQ(fileSystemBytes(pxDisplayNameOfPath("/")), "/");
    EXPECT_EQ(fileSystemBytes(pxDisplayNameOfPath(nil)), "-");
    std::string const bundle = m_folder.makeBundle("Frame.app", R"(<plist version="1.0"><dict>
        <key>CFBundleDisplayName</key><string>Frame</string></dict></plist>)");
    m_folder.makeFile("Frame.app/Contents/Resources/de.lproj/InfoPlist.strings", R"(CFBundleDisplayName = "Rahmen";)");
    EnvironmentVariable const all("LC_ALL", "de_AT.UTF-8");
    EnvironmentVariable const list("LANGUAGE", "");
    EXPECT_EQ(fileSystemBytes(pxDisplayNameOfPath(path(bundle))), "Rahmen");
    EXPECT_EQ(fileSystemBytes(NSFileManager::defaultManager().displayNameAtPath_(path(bundle))), "Rahmen");
}

TEST_F(PathRelations, TheParentIsTheFolderAbove) {
    EXPECT_EQ(fileSystemBytes(pxParentPathOfPath("/a/b")), "/a");
    EXPECT_EQ(fileSystemBytes(pxParentPathOfPath("/a/b/")), "/a");
    EXPECT_EQ(fileSystemBytes(pxParentPathOfPath("/a/./b/..")), "/");
    EXPECT_EQ(fileSystemBytes(pxParentPathOfPath("/a")), "/");
    EXPECT_EQ(fileSystemBytes(pxParentPathOfPath("/")), "-");
    EXPECT_EQ(fileSystemBytes(pxParentPathOfPath("a")), "-");
    EXPECT_EQ(fileSystemBytes(pxParentPathOfPath("a/b")), "a");
    EXPECT_EQ(fileSystemBytes(pxParentPathOfPath("")), "-");
    EXPECT_EQ(fileSystemBytes(pxParentPathOfPath(nil)), "-");
}

TEST_F(PathRelations, TheInformationOfABundleIsItsDictionary) {
    NSString const bundle = path(m_folder.makeBundle("A.app", informationFile("com.example.a", "", "2.0.0")));
    for (NSDictionary const& information : {pxInfoDictionaryForPath(bundle), pxInfoDictionaryForPathUncached(bundle)}) {
        EXPECT_TRUE(information.objectForKey_("CFBundleIdentifier").isEqual_("com.example.a"));
        EXPECT_TRUE(information.objectForKey_("CFBundleVersion").isEqual_("2.0.0"));
    }
    m_folder.makeFolder("plain");
    EXPECT_EQ(pxInfoDictionaryForPath(at("plain")).count(), 0U);
    EXPECT_FALSE(pxInfoDictionaryForPath(at("plain")) == nil);
    EXPECT_TRUE(pxInfoDictionaryForPath(at("none")) == nil);
    EXPECT_TRUE(pxInfoDictionaryForPath(path(m_folder.makeFile("file.app", ""))) == nil);
    EXPECT_TRUE(pxInfoDictionaryForPath(nil) == nil);
}

TEST_F(PathRelations, TheUncachedInformationIsReadFromPackagesAndFrameworks) {
    std::string const list = informationFile("com.example.f", "", "1");
    m_folder.makeFile("F.framework/Resources/Info.plist", list);
    EXPECT_TRUE(pxInfoDictionaryForPathUncached(at("F.framework"))
                    .objectForKey_("CFBundleIdentifier")
                    .isEqual_("com.example.f"));
    m_folder.makeFile("F.Framework/Resources/Info.plist", list);
    EXPECT_TRUE(pxInfoDictionaryForPathUncached(at("F.Framework")) == nil);
    m_folder.makeFile("plain/Contents/Info.plist", list);
    EXPECT_TRUE(pxInfoDictionaryForPathUncached(at("plain")) == nil);
    m_folder.makeFile("flat.app/Info.plist", list);
    EXPECT_TRUE(pxInfoDictionaryForPathUncached(at("flat.app")) == nil);
    m_folder.makeBundle("broken.app", "<plist><dict>");
    EXPECT_TRUE(pxInfoDictionaryForPathUncached(at("broken.app")) == nil);
    m_folder.makeBundle("array.app", "(a, b)");
    EXPECT_TRUE(pxInfoDictionaryForPathUncached(at("array.app")) == nil);
    EXPECT_TRUE(pxInfoDictionaryForPathUncached(at("none.app")) == nil);
    EXPECT_TRUE(pxInfoDictionaryForPathUncached(nil) == nil);
}

TEST_F(PathRelations, TheUncachedInformationIsFresh) {
    NSString const bundle = path(m_folder.makeBundle("A.app", informationFile("com.example.a", "", "1")));
    EXPECT_TRUE(pxInfoDictionaryForPathUncached(bundle).objectForKey_("CFBundleVersion").isEqual_("1"));
    m_folder.makeBundle("A.app", informationFile("com.example.a", "", "2"));
    EXPECT_TRUE(pxInfoDictionaryForPathUncached(bundle).objectForKey_("CFBundleVersion").isEqual_("2"));
}

TEST_F(PathRelations, VisibleContentsLeaveOutWhatIsInvisible) {
    m_folder.makeFile("b", "");
    m_folder.makeFile(".hidden", "");
    m_folder.makeFolder("a");
    m_folder.makeFile("\xFF", "");
    link("nowhere", "c");
    for (BOOL const flag : {YES, NO})
        EXPECT_EQ(fileSystemBytesOfEach(pxVisibleDirectoryContentsAtPath_(path(m_folder.path()), flag)),
                  (Names{"a", "b", "c", "\xFF"}));
    ASSERT_TRUE(pxSetFinderFlagsOfPath_mask_(at("b"), kIsInvisible, kIsInvisible));
    EXPECT_EQ(fileSystemBytesOfEach(pxVisibleDirectoryContentsAtPath_(path(m_folder.path()), NO)),
              (Names{"a", "c", "\xFF"}));
    EXPECT_EQ(pxVisibleDirectoryContentsAtPath_(at("a"), YES).count(), 0U);
    EXPECT_FALSE(pxVisibleDirectoryContentsAtPath_(at("a"), YES) == nil);
    EXPECT_TRUE(pxVisibleDirectoryContentsAtPath_(at("b"), YES) == nil);
    EXPECT_TRUE(pxVisibleDirectoryContentsAtPath_(at("none"), YES) == nil);
    EXPECT_TRUE(pxVisibleDirectoryContentsAtPath_(nil, NO) == nil);
}

TEST_F(PathRelations, ATypesExtensionIsItsDeclaredFirstOne) {
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTI("public.jpeg")), "jpeg");
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTI("public.tiff")), "tiff");
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTI("public.png")), "png");
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTI("PUBLIC.PNG")), "png");
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTI("com.compuserve.gif")), "gif");
    // Declared, without an extension.
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTI("public.data")), "-");
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTI("com.example.unknown")), "-");
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTI("")), "-");
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTI(nil)), "-");
}

TEST_F(PathRelations, OlderSystemsKnowThreeExtensions) {
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTIPanther("public.tiff")), "tiff");
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTIPanther("public.jpeg")), "jpeg");
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTIPanther("public.png")), "png");
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTIPanther("public.gif")), "-");
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTIPanther("Public.png")), "-");
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTIPanther("")), "-");
    EXPECT_EQ(fileSystemBytes(pxFilenameExtensionOfUTIPanther(nil)), "-");
}

TEST_F(PathRelations, ImagesAndSoundAreToldByTheirTypes) {
    std::string const image(reinterpret_cast<char const*>(OnePoint), sizeof OnePoint);
    m_folder.makeFile("image.png", image);
    m_folder.makeFile("image", image);
    m_folder.makeFile("page.djvu", "AT&TFORM");
    m_folder.makeFile("song.mp3", "");
    m_folder.makeFile("text.txt", "");
    link("image.png", "link");
    EXPECT_TRUE(pxIsImageFile(at("image.png")));
    EXPECT_TRUE(pxIsImageFile(at("image")));
    EXPECT_TRUE(pxIsImageFile(at("link")));
    // An image, of a type that nothing here reads.
    EXPECT_FALSE(pxIsImageFile(at("page.djvu")));
    EXPECT_FALSE(pxIsImageFile(at("song.mp3")));
    EXPECT_FALSE(pxIsImageFile(at("text.txt")));
    EXPECT_FALSE(pxIsImageFile(path(m_folder.path())));
    EXPECT_FALSE(pxIsImageFile(at("none.png")));
    EXPECT_TRUE(pxIsAudioFile(at("song.mp3")));
    EXPECT_FALSE(pxIsAudioFile(at("image.png")));
    EXPECT_FALSE(pxIsAudioFile(at("none.mp3")));
    for (NSString const& none : {NSString(nil), NSString("")}) {
        EXPECT_FALSE(pxIsImageFile(none));
        EXPECT_FALSE(pxIsAudioFile(none));
    }
}

TEST_F(PathRelations, WhatTheUserMayDoIsTheFileManagersAnswer) {
    m_folder.makeFile("file", "");
    EXPECT_TRUE(pxIsWritableFileAtPath(at("file")));
    EXPECT_TRUE(pxIsDeletableFileAtPath(at("file")));
    EXPECT_FALSE(pxIsWritableFileAtPath(at("none")));
    EXPECT_FALSE(pxIsDeletableFileAtPath(at("none")));
    EXPECT_FALSE(pxIsWritableFileAtPath(nil));
    EXPECT_FALSE(pxIsDeletableFileAtPath(nil));
}

TEST_F(PathRelations, AURLOfAFolderEndsWithASlash) {
    m_folder.makeFolder("a b");
    std::string const folder = "file://localhost" + m_folder.path() + "/a%20b";
    EXPECT_EQ(fileSystemBytes(pxURLOfPath(at("a b")).absoluteString()), folder + "/");
    EXPECT_EQ(fileSystemBytes(pxURLOfPath_(at("a b"), YES).absoluteString()), folder + "/");
    EXPECT_EQ(fileSystemBytes(pxURLOfPath_(at("a b"), NO).absoluteString()), folder);
    EXPECT_TRUE(pxURLOfPath("") == nil);
    EXPECT_TRUE(pxURLOfPath_("", YES) == nil);
    EXPECT_TRUE(pxURLOfPath(nil) == nil);
    EXPECT_TRUE(pxURLOfPath_(nil, YES) == nil);
}

TEST_F(PathRelations, AreMessagesOfStrings) {
    EXPECT_TRUE(NSString("/a/b").respondsToSelector_("pxIsChildOf:"));
    id const answer = NSString("/a/b").performSelector_withObject_("pxIsChildOf:", "/A");
    EXPECT_TRUE(as<NSNumber>(answer).boolValue());
    EXPECT_TRUE(NSString("/a/b").performSelector_("pxParentPathOfPath").isEqual_("/a"));
}

} // namespace
} // namespace mac::test
