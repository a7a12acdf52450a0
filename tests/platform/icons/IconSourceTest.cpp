#include "platform/icons/IconSource.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/icons/IconTheme.h"
#include "platform/launchservices/DiskItem.h"
#include "tests/platform/icons/IconBytes.h"
#include "tests/platform/icons/ThemeHome.h"
#include "tests/support/FinderInformation.h"
#include <filesystem>
#include <sys/stat.h>

namespace mac::test {
namespace {

class IconSources : public ThemeHome {
protected:
    static IconSource sourceAt(std::string const& path) {
        Result<DiskItem> const item = diskItemAtPath(path);
        EXPECT_TRUE(item.hasValue()) << path;
        return item.hasValue() ? iconSourceOf(item.value()) : IconSource();
    }
    static std::string firstNameAt(std::string const& path) {
        IconSource const source = sourceAt(path);
        return source.names.empty() ? "" : source.names.front();
    }
    static std::uint32_t pixelAt(std::string const& path) { return pixelOf(picturesOfSource(sourceAt(path))); }
    static std::string firstNameOfType(NSString const& type) {
        IconSource const source = iconSourceOfFileType(type);
        return source.names.empty() ? "" : source.names.front();
    }
};

TEST_F(IconSources, OfFilesAreTheNamesOfTheirTypes) {
    EXPECT_EQ(firstNameAt(m_folder.makeFile("a.txt", "text")), "text-plain");
    EXPECT_EQ(firstNameAt(m_folder.makeFile("a.pdf", "%PDF")), "application-pdf");
    EXPECT_EQ(firstNameAt(m_folder.makeFile("script", "#!/bin/sh\n")), "application-x-shellscript");
    std::vector<std::string> const names = sourceAt(m_folder.path("a.txt")).names;
    EXPECT_NE(std::ranges::find(names, "text-x-generic"), names.end());
}

TEST_F(IconSources, OfFoldersTellTheUsersOwn) {
    EXPECT_EQ(firstNameAt(m_folder.makeFolder("plain")), "folder");
    EXPECT_EQ(firstNameAt(m_folder.path()), "user-home");
    m_folder.makeFile("config/user-dirs.dirs", "XDG_MUSIC_DIR=\"$HOME/Tunes\"\nXDG_VIDEOS_DIR=\"$HOME\"\n");
    EXPECT_EQ(firstNameAt(m_folder.makeFolder("Tunes")), "folder-music");
    EXPECT_EQ(firstNameAt(m_folder.path()), "user-home");
    EXPECT_EQ(firstNameAt("/"), "drive-harddisk");
    EXPECT_EQ(sourceAt("/").generic, IconSource::Generic::Folder);
}

TEST_F(IconSources, OfDesktopEntriesAreTheNamesOrFilesInThem) {
    std::string const file = m_folder.makeFile("icon.png", pictureFile(16, 0xFF0000AA));
    EXPECT_EQ(firstNameAt(m_folder.makeFile("a.desktop", "[Desktop Entry]\nIcon=editor\n")), "editor");
    EXPECT_EQ(firstNameAt(m_folder.makeFile("b.desktop", "[Desktop Entry]\nIcon=org.example.App.png\n")),
              "org.example.App");
    EXPECT_EQ(pixelAt(m_folder.makeFile("c.desktop", "[Desktop Entry]\nIcon=" + file + "\n")), 0xFF0000AAU);
    EXPECT_EQ(sourceAt(m_folder.makeFile("d.desktop", "")).generic, IconSource::Generic::Application);
}

TEST_F(IconSources, OfBundlesAreTheirIconFiles) {
    std::string const bundle = m_folder.makeBundle("A.app", "{CFBundleIconFile = picture;}");
    EXPECT_TRUE(sourceAt(bundle).family.empty());
    m_folder.makeFile("A.app/Contents/Resources/picture.icns", coloredFamily(0x123456));
    EXPECT_EQ(pixelAt(bundle), 0xFF123456U);
    m_folder.makeFile("A.app/Contents/outside.icns", coloredFamily(0x123456));
    EXPECT_TRUE(iconFileInBundle(bundle, "../outside").empty());
    EXPECT_TRUE(iconFileInBundle(bundle, "missing").empty());
    EXPECT_TRUE(iconFileInBundle(bundle, nil).empty());
    m_folder.makeFile("A.app/Contents/Resources/picture.icns", "no icon");
    EXPECT_EQ(sourceAt(bundle).generic, IconSource::Generic::Application);
    EXPECT_FALSE(picturesOfSource(sourceAt(bundle)).empty());
}

TEST_F(IconSources, OfItemsWithACustomIconAreThatOne) {
    std::string const fork = resourceFork("icns", -16455, coloredFamily(0x654321));
    std::string const bundle = m_folder.makeBundle("B.app", "{CFBundleIconFile = picture;}");
    m_folder.makeFile("B.app/Contents/Resources/picture.icns", coloredFamily(0x123456));
    std::string const icon = m_folder.makeFile("B.app/Icon\r", "");
    ASSERT_EQ(setxattr(icon.c_str(), XATTR_RESOURCEFORK_NAME, fork.data(), fork.size(), 0, 0), 0);
    EXPECT_EQ(pixelAt(bundle), 0xFF123456U);
    FinderInformation finder;
    finder.setFinderFlags(kHasCustomIcon);
    ASSERT_TRUE(writeFinderInformation(bundle, finder));
    EXPECT_EQ(pixelAt(bundle), 0xFF654321U);
}

TEST_F(IconSources, OfLinksAreThoseOfTheirTargets) {
    m_folder.makeFile("a.pdf", "%PDF");
    std::filesystem::create_symlink("a.pdf", m_folder.path("link"));
    std::filesystem::create_symlink("missing", m_folder.path("broken"));
    std::filesystem::create_symlink("loop", m_folder.path("loop"));
    EXPECT_EQ(firstNameAt(m_folder.path("link")), "application-pdf");
    EXPECT_EQ(firstNameAt(m_folder.path("broken")), "inode-symlink");
    EXPECT_EQ(firstNameAt(m_folder.path("loop")), "inode-symlink");
}

TEST_F(IconSources, OfItemsThatCannotBeReadAreThere) {
    ASSERT_EQ(::mkfifo(m_folder.path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(picturesOfSource(sourceAt(m_folder.path("pipe"))).empty());
    EXPECT_FALSE(picturesOfSource(sourceAt("/dev/null")).empty());
}

TEST_F(IconSources, OfTypesGoByExtensionOrCode) {
    EXPECT_EQ(firstNameOfType("pdf"), "application-pdf");
    EXPECT_EQ(firstNameOfType(".PDF"), "application-pdf");
    EXPECT_EQ(firstNameOfType("app"), "application-x-executable");
    EXPECT_EQ(firstNameOfType("'TEXT'"), "text-plain");
    EXPECT_EQ(firstNameOfType("'trsh'"), "user-trash");
    for (NSString const& unknown :
         {NSString(""), NSString("nonsense-type"), NSString("a/b"), NSString("'ZZZZ'"), NSString("'''"), NSString(nil)})
        EXPECT_EQ(firstNameOfType(unknown), "unknown");
}

TEST_F(IconSources, OfCodesAreThoseThatSomebodyDeclares) {
    EXPECT_FALSE(iconSourceOfCodes(OSType("QqQq"), OSType("QqQr")));
    ASSERT_TRUE(iconSourceOfCodes(OSType("QqQq"), OSType("TEXT")));
    EXPECT_EQ(iconSourceOfCodes(OSType("QqQq"), OSType("TEXT"))->names.front(), "text-plain");
    EXPECT_EQ(iconSourceOfCodes(OSType("macs"), OSType("fldr"))->names.front(), "folder");
    EXPECT_FALSE(iconSourceOfCodes(OSType("macs"), OSType("QqQr")));
    m_folder.makeBundle("Applications/Q.app",
                        "{CFBundleIdentifier = \"com.example.q\"; CFBundleSignature = QqQq; CFBundleDocumentTypes = "
                        "(text, {CFBundleTypeOSTypes = (QqQs, QqQr); CFBundleTypeIconFile = page;});}");
    m_folder.makeFile("Applications/Q.app/Contents/Resources/page.icns", coloredFamily(0x00FFFF));
    ASSERT_TRUE(iconSourceOfCodes(OSType("QqQq"), OSType("QqQr")));
    EXPECT_EQ(pixelOf(picturesOfSource(*iconSourceOfCodes(OSType("QqQq"), OSType("QqQr")))), 0xFF00FFFFU);
}

TEST(GenericPictures, AreDrawnInAllSides) {
    for (IconSource::Generic const generic :
         {IconSource::Generic::Document, IconSource::Generic::Folder, IconSource::Generic::Application}) {
        std::vector<SharedPicture> const pictures = genericPictures(generic);
        ASSERT_EQ(pictures.size(), IconSides.size());
        for (SharedPicture const& picture : pictures) {
            EXPECT_EQ(picture->pixels.front() >> 24, 0U);
            EXPECT_EQ(picture->pixels[picture->pixels.size() / 2 + static_cast<std::size_t>(picture->width) / 2] >> 24,
                      0xFFU);
        }
    }
}

} // namespace
} // namespace mac::test
