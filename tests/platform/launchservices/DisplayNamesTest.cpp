#include "platform/launchservices/DisplayNames.h"
#include "platform/files/FinderInformation.h"
#include "platform/files/references/FSRef.h"
#include "platform/launchservices/ItemInformation.h"
#include "tests/support/Environment.h"
#include "tests/support/FinderInformation.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace mac::test {
namespace {

std::string information(std::string_view name) {
    return R"(<plist version="1.0"><dict><key>CFBundleDisplayName</key><string>)" + std::string(name) +
           "</string><key>CFBundleName</key><string>Short</string></dict></plist>";
}

class DisplayNames : public testing::Test {
protected:
    std::string nameOf(std::string_view name) const {
        NSString result = "untouched";
        EXPECT_EQ(LSCopyDisplayNameForURL(fileURL(m_folder.path(name)), &result), noErr);
        return result.fileSystemRepresentation().value_or("");
    }
    void hideExtension(std::string const& item) const {
        FinderInformation information;
        information.setFinderFlags(kExtensionHidden);
        ASSERT_TRUE(writeFinderInformation(item, information));
    }
    bool isExtensionHidden(std::string_view name) const {
        LSItemInfoRecord record;
        EXPECT_EQ(LSCopyItemInfoForURL(fileURL(m_folder.path(name)), kLSRequestExtensionFlagsOnly, &record), noErr);
        return record.flags == kLSItemInfoExtensionIsHidden;
    }

    EnvironmentVariable const m_languages{"LANGUAGE", ""};
    EnvironmentVariable const m_locale{"LC_ALL", "de_AT.UTF-8"};
    TemporaryFolder const m_folder{};
};

TEST_F(DisplayNames, AreThoseOfFiles) {
    m_folder.makeFile("a.txt", "");
    m_folder.makeFolder("folder.d");
    m_folder.makeFile("\xFF:b", "");
    EXPECT_EQ(nameOf("a.txt"), "a.txt");
    EXPECT_EQ(nameOf("folder.d"), "folder.d");
    EXPECT_EQ(nameOf("\xFF:b"), "\xFF:b");
    EXPECT_FALSE(isExtensionHidden("a.txt"));
}

TEST_F(DisplayNames, LackAnExtensionThatIsHidden) {
    hideExtension(m_folder.makeFile("a.b.txt", ""));
    EXPECT_EQ(nameOf("a.b.txt"), "a.b");
    EXPECT_TRUE(isExtensionHidden("a.b.txt"));
    hideExtension(m_folder.makeFile(".hidden", ""));
    EXPECT_EQ(nameOf(".hidden"), ".hidden");
    EXPECT_FALSE(isExtensionHidden(".hidden"));
    hideExtension(m_folder.makeFolder("A.app"));
    EXPECT_EQ(nameOf("A.app"), "A");
}

TEST_F(DisplayNames, OfBundlesAreThoseThatTheyGiveThemselves) {
    m_folder.makeBundle("Frame.app", information("Frame"));
    EXPECT_EQ(nameOf("Frame.app"), "Frame");
    EXPECT_TRUE(isExtensionHidden("Frame.app"));
    m_folder.makeFile("Frame.app/Contents/Resources/en.lproj/InfoPlist.strings", "CFBundleDisplayName = \"Frames\";");
    EXPECT_EQ(nameOf("Frame.app"), "Frames");
    m_folder.makeFile("Frame.app/Contents/Resources/German.lproj/InfoPlist.strings",
                      "CFBundleDisplayName = \"Rahmen\";");
    EXPECT_EQ(nameOf("Frame.app"), "Rahmen");
    // UTF-16, as such files often are.
    m_folder.makeFile(
        "Frame.app/Contents/Resources/de-AT.lproj/InfoPlist.strings",
        std::string_view("\xFE\xFF\0C\0F\0B\0u\0n\0d\0l\0e\0D\0i\0s\0p\0l\0a\0y\0N\0a\0m\0e\0=\0\"\0R\0\"\0;", 50));
    EXPECT_EQ(nameOf("Frame.app"), "R");
    EnvironmentVariable const list("LANGUAGE", "fr:en");
    EXPECT_EQ(nameOf("Frame.app"), "Frames");
    EnvironmentVariable const plain("LC_ALL", "C");
    EXPECT_EQ(nameOf("Frame.app"), "Frames");
}

TEST_F(DisplayNames, OfARenamedBundleAreItsFiles) {
    m_folder.makeBundle("Other.app", information("Frame"));
    m_folder.makeFile("Other.app/Contents/Resources/de.lproj/InfoPlist.strings", "CFBundleDisplayName = \"Rahmen\";");
    EXPECT_EQ(nameOf("Other.app"), "Other.app");
    EXPECT_FALSE(isExtensionHidden("Other.app"));
    m_folder.makeBundle("Whole.app", information("Whole.app"));
    EXPECT_EQ(nameOf("Whole.app"), "Whole.app");
}

TEST_F(DisplayNames, OfBundlesThatSayNothingUsableAreTheirFiles) {
    m_folder.makeBundle("A.app", "<plist>");
    EXPECT_EQ(nameOf("A.app"), "A.app");
    m_folder.makeBundle("B.app", "{CFBundleDisplayName = (B);}");
    EXPECT_EQ(nameOf("B.app"), "B.app");
    m_folder.makeBundle("C.app", information("C"));
    m_folder.makeFile("C.app/Contents/Resources/de.lproj/InfoPlist.strings", "CFBundleDisplayName = (C);");
    EXPECT_EQ(nameOf("C.app"), "C");
    m_folder.makeBundle("D.app", information(""));
    EXPECT_EQ(nameOf("D.app"), "D.app");
}

TEST_F(DisplayNames, OfDesktopEntriesAreTheirOwnWhereTheyMayBeBelieved) {
    EnvironmentVariable const data("XDG_DATA_HOME", m_folder.path("data"));
    EnvironmentVariable const dirs("XDG_DATA_DIRS", "relative:");
    constexpr char entry[] = "[Desktop Entry]\nType=Application\nName=Files\nName[de]=Dateien\nExec=true\n";
    m_folder.makeFile("data/applications/org.files.desktop", entry);
    EXPECT_EQ(nameOf("data/applications/org.files.desktop"), "Dateien");
    EnvironmentVariable const french("LC_ALL", "fr_FR.UTF-8");
    EXPECT_EQ(nameOf("data/applications/org.files.desktop"), "Files");
    std::string const strange = m_folder.makeFile("download.desktop", entry);
    EXPECT_EQ(nameOf("download.desktop"), "download.desktop");
    ASSERT_EQ(::chmod(strange.c_str(), 0755), 0);
    EXPECT_EQ(nameOf("download.desktop"), "Files");
    m_folder.makeFile("data/applications/none.desktop", "Name=x");
    EXPECT_EQ(nameOf("data/applications/none.desktop"), "none.desktop");
}

TEST_F(DisplayNames, AreTheSameForAReference) {
    std::string const file = m_folder.makeFile("a.txt", "");
    hideExtension(file);
    FSRef ref{};
    ASSERT_EQ(FSPathMakeRef(reinterpret_cast<std::uint8_t const*>(file.c_str()), &ref, nullptr), noErr);
    NSString name;
    EXPECT_EQ(LSCopyDisplayNameForRef(&ref, &name), noErr);
    EXPECT_TRUE(name.isEqualToString_("a"));
    NSString root;
    EXPECT_EQ(LSCopyDisplayNameForURL(fileURL("/"), &root), noErr);
    EXPECT_TRUE(root.isEqualToString_("/"));
}

TEST_F(DisplayNames, AreLeftWhereThereIsNothing) {
    NSString name = "untouched";
    EXPECT_EQ(LSCopyDisplayNameForURL(fileURL(m_folder.path("none")), &name), fnfErr);
    EXPECT_EQ(LSCopyDisplayNameForURL(nil, &name), paramErr);
    EXPECT_EQ(LSCopyDisplayNameForURL(NSURL::URLWithString_("http://a/b"), &name), paramErr);
    EXPECT_EQ(LSCopyDisplayNameForURL(fileURL("/"), nullptr), paramErr);
    FSRef const none{};
    EXPECT_EQ(LSCopyDisplayNameForRef(&none, &name), fnfErr);
    EXPECT_EQ(LSCopyDisplayNameForRef(nullptr, &name), paramErr);
    EXPECT_TRUE(name.isEqualToString_("untouched"));
}

} // namespace
} // namespace mac::test
