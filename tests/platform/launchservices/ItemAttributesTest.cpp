#include "platform/launchservices/ItemAttributes.h"
#include "platform/files/FinderInformation.h"
#include "platform/files/references/FSRef.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/launchservices/TypeIdentifiers.h"
#include "platform/launchservices/TypeTree.h"
#include "tests/support/FinderInformation.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

class ItemAttributes : public testing::Test {
protected:
    NSDictionary valuesOf(std::string const& item, NSArray const& names) const {
        FSRef ref{};
        EXPECT_EQ(FSPathMakeRefWithOptions(reinterpret_cast<std::uint8_t const*>(item.c_str()),
                                           kFSPathMakeRefDoNotFollowLeafSymlink, &ref, nullptr),
                  noErr);
        NSDictionary values;
        EXPECT_EQ(LSCopyItemAttributes(&ref, kLSRolesViewer, names, &values), noErr);
        return values;
    }
    NSString typeOf(std::string const& item) const {
        return as<NSString>(
            valuesOf(item, NSArray::arrayWithObject_(kLSItemContentType)).objectForKey_(kLSItemContentType));
    }
    std::string typeOfFile(std::string_view name, std::string_view contents = "") const {
        return typeOf(m_folder.makeFile(name, contents)).UTF8String();
    }
    std::string typeOfFolder(std::string_view name) const { return typeOf(m_folder.makeFolder(name)).UTF8String(); }

    TemporaryFolder const m_folder{};
};

TEST_F(ItemAttributes, TellAFilesTypeByItsName) {
    EXPECT_EQ(typeOfFile("a.txt"), "public.plain-text");
    EXPECT_EQ(typeOfFile("a.TXT"), "public.plain-text");
    EXPECT_EQ(typeOfFile("a.png"), "public.png");
    EXPECT_EQ(typeOfFile("a.jpg"), "public.jpeg");
    EXPECT_EQ(typeOfFile("a.html"), "public.html");
    EXPECT_EQ(typeOfFile("a.mp3"), "public.mp3");
    EXPECT_EQ(typeOfFile("a.tar.gz"), "org.gnu.gnu-zip-tar-archive");
    EXPECT_EQ(typeOfFile("a.odt"), "org.oasis-open.opendocument.text");
    EXPECT_EQ(typeOfFile("a.py"), "public.python-script");
    EXPECT_EQ(typeOfFile("\xFF.pdf"), "com.adobe.pdf");
}

TEST_F(ItemAttributes, TellAFilesTypeByItsContentsWhereTheNameSaysNothing) {
    EXPECT_EQ(typeOfFile("page", "%PDF-1.4\n"), "com.adobe.pdf");
    EXPECT_EQ(typeOfFile("letter", "Dear reader,\n"), "public.plain-text");
    EXPECT_EQ(typeOfFile("script", "#!/bin/sh\n"), "public.shell-script");
    EXPECT_EQ(typeOfFile("empty"), "public.data");
    EXPECT_EQ(typeOfFile("bytes", std::string_view("\1\2\3\0\4", 5)), "public.data");
}

TEST_F(ItemAttributes, TellTheTypeOfAnExtensionThatSharedRulesDoNotDecide) {
    EXPECT_EQ(typeOfFile("a.m", "function x\n"), "public.objective-c-source");
    EXPECT_EQ(typeOfFile("a.pm", "package x;\n"), "public.perl-script");
    EXPECT_EQ(typeOfFile("a.ts", "let x = 1;\n"), "public.mpeg-2-transport-stream");
    EXPECT_EQ(typeOfFile("a.log", "<?xml version=\"1.0\"?>\n"), "com.apple.log");
    EXPECT_EQ(typeOfFile("a.txt", "#!/bin/sh\n"), "public.plain-text");
    EXPECT_EQ(typeOfFile("a.nef", std::string_view("II*\0\10\0\0\0", 8)), "com.nikon.raw-image");
    EXPECT_EQ(typeOfFile("a.ai", "%PDF-1.5\n"), "com.adobe.illustrator.ai-image");
    EXPECT_EQ(typeOfFile("a.docx", "PK\3\4"), "org.openxmlformats.wordprocessingml.document");
    EXPECT_EQ(typeOfFile("a.svg", "<?xml version=\"1.0\"?><svg/>"), "public.svg-image");
    EXPECT_EQ(typeOfFile("a.tar.gz", "\x1F\x8B\x08"), "org.gnu.gnu-zip-tar-archive");
}

TEST_F(ItemAttributes, BelieveContentsThatProveThatTheNameLies) {
    constexpr std::string_view png("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16);
    EXPECT_EQ(typeOfFile("a.txt", png), "public.png");
    EXPECT_EQ(typeOfFile("a.jpg", png), "public.png");
    EXPECT_EQ(typeOfFile("a.mp3", png), "public.png");
    EXPECT_EQ(typeOfFile("b.png", "\xFF\xD8\xFF\xE0"), "public.jpeg");
    EXPECT_EQ(typeOfFile("b.txt", "%PDF-1.4\n"), "com.adobe.pdf");
    EXPECT_EQ(typeOfFile("c.png", "<!DOCTYPE html><html></html>"), "public.html");
}

TEST_F(ItemAttributes, DoNotTakeAWordForAProof) {
    EXPECT_EQ(typeOfFile("a.txt", "MZ is a state.\n"), "public.plain-text");
    EXPECT_EQ(typeOfFile("b.txt", "BZh: the team\n"), "public.plain-text");
    EXPECT_EQ(typeOfFile("c.csv", "ID3;ID4\n"), "public.comma-separated-values-text");
    EXPECT_EQ(typeOfFile("d.png", "Dear reader,\n"), "public.png");
}

TEST_F(ItemAttributes, TellATypeThatABundleDeclaresBeforeTheSystems) {
    registerTypesIn(NSDictionary::dictionaryWithObject_forKey_(
        NSArray::arrayWithObject_(NSDictionary::dictionaryWithObjectsAndKeys_(
            {"com.example.tape", kUTTypeIdentifierKey, "public.data", kUTTypeConformsToKey,
             NSDictionary::dictionaryWithObject_forKey_("zst", kUTTagClassFilenameExtension),
             kUTTypeTagSpecificationKey})),
        kUTExportedTypeDeclarationsKey));
    EXPECT_EQ(typeOfFile("a.zst"), "com.example.tape");
    EXPECT_EQ(typeOfFile("b.zst", "%PDF-1.4\n"), "com.example.tape");
    EXPECT_TRUE(UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension, "ZST", nil)
                    .isEqualToString_("com.example.tape"));
}

TEST_F(ItemAttributes, TellAFilesTypeByItsOldCodeBeforeItsContents) {
    std::string const file = m_folder.makeFile("picture", "Dear reader,\n");
    FinderInformation information;
    constexpr std::string_view code = "JPEG";
    for (std::size_t index = 0; index < code.size(); ++index)
        information.bytes[index] = static_cast<std::byte>(code[index]);
    ASSERT_TRUE(writeFinderInformation(file, information));
    EXPECT_TRUE(typeOf(file).isEqualToString_("public.jpeg"));
    information.setFinderFlags(kIsAlias);
    ASSERT_TRUE(writeFinderInformation(file, information));
    EXPECT_TRUE(typeOf(file).isEqualToString_("com.apple.alias-file"));
}

TEST_F(ItemAttributes, HaveCodesInMacOSRoman) {
    registerTypesIn(NSDictionary::dictionaryWithObject_forKey_(
        NSArray::arrayWithObject_(NSDictionary::dictionaryWithObjectsAndKeys_(
            {"com.example.bullet", kUTTypeIdentifierKey, "public.data", kUTTypeConformsToKey,
             NSDictionary::dictionaryWithObject_forKey_("b\u2022ll", kUTTagClassOSType), kUTTypeTagSpecificationKey})),
        kUTExportedTypeDeclarationsKey));
    std::string const file = m_folder.makeFile("bullet", "");
    FinderInformation information;
    constexpr std::string_view codes = "b\xA5llmrf\xA0";
    for (std::size_t index = 0; index < codes.size(); ++index)
        information.bytes[index] = static_cast<std::byte>(codes[index]);
    ASSERT_TRUE(writeFinderInformation(file, information));
    NSDictionary const values = valuesOf(file, nil);
    EXPECT_TRUE(values.objectForKey_(kLSItemFileType).isEqual_("b\u2022ll"));
    EXPECT_TRUE(values.objectForKey_(kLSItemFileCreator).isEqual_("mrf\u2020"));
    EXPECT_TRUE(values.objectForKey_(kLSItemContentType).isEqual_("com.example.bullet"));
}

TEST_F(ItemAttributes, TellWhatIsNoFileByWhatItIs) {
    EXPECT_EQ(typeOfFolder("folder"), "public.folder");
    EXPECT_EQ(typeOfFolder("picture.png"), "public.folder");
    EXPECT_EQ(typeOfFolder("A.app"), "com.apple.application-bundle");
    EXPECT_EQ(typeOfFolder("A.framework"), "com.apple.framework");
    EXPECT_EQ(typeOfFolder("A.xpc"), "com.apple.package");
    EXPECT_TRUE(typeOf("/").isEqualToString_("public.volume"));
    ASSERT_EQ(::symlink("nowhere", m_folder.path("link").c_str()), 0);
    EXPECT_TRUE(typeOf(m_folder.path("link")).isEqualToString_("public.symlink"));
    // Never opened: nobody writes to it.
    ASSERT_EQ(::mkfifo(m_folder.path("pipe").c_str(), 0600), 0);
    EXPECT_TRUE(typeOf(m_folder.path("pipe")).isEqualToString_("public.item"));
}

TEST_F(ItemAttributes, OfAnUndeclaredTypeHaveADynamicIdentifier) {
    NSString const type = typeOf(m_folder.makeFile("a.djvu", ""));
    EXPECT_TRUE(type.hasPrefix_("dyn."));
    EXPECT_TRUE(UTTypeConformsTo(type, "public.image"));
    EXPECT_FALSE(UTTypeConformsTo(type, "public.text"));
    NSString const source = typeOf(m_folder.makeFile("a.tex", ""));
    EXPECT_TRUE(UTTypeConformsTo(source, "public.plain-text"));
}

TEST_F(ItemAttributes, AreThoseThatAreAskedFor) {
    std::string const file = m_folder.makeFile(".a.txt", "");
    NSDictionary const two = valuesOf(file, NSArray::arrayWithObjects_({kLSItemExtension, kLSItemIsInvisible, "none"}));
    EXPECT_EQ(two.count(), 2U);
    EXPECT_TRUE(two.objectForKey_(kLSItemExtension).isEqual_("txt"));
    EXPECT_TRUE(as<NSNumber>(two.objectForKey_(kLSItemIsInvisible)).boolValue());
    EXPECT_EQ(valuesOf(file, NSArray::array()).count(), 0U);
    NSDictionary const all = valuesOf(file, nil);
    EXPECT_EQ(all.count(), 6U);
    EXPECT_TRUE(all.objectForKey_(kLSItemDisplayName).isEqual_(".a.txt"));
    EXPECT_TRUE(all.objectForKey_(kLSItemDisplayKind).isEqual_("plain text"));
    EXPECT_FALSE(as<NSNumber>(all.objectForKey_(kLSItemExtensionIsHidden)).boolValue());
}

TEST_F(ItemAttributes, AreLeftWhereThereIsNothing) {
    FSRef const none{};
    NSDictionary values = NSDictionary::dictionary();
    EXPECT_EQ(LSCopyItemAttributes(&none, kLSRolesAll, nil, &values), fnfErr);
    EXPECT_EQ(LSCopyItemAttributes(nullptr, kLSRolesAll, nil, &values), paramErr);
    EXPECT_EQ(LSCopyItemAttributes(&none, kLSRolesAll, nil, nullptr), paramErr);
    EXPECT_FALSE(values == nil);
}

} // namespace
} // namespace mac::test
