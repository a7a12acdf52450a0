#include "tests/pictures/IconPageItems.h"
#include "coreutils/IconsAndImages.h"
#include "pathutils/FinderMetadata.h"
#include "platform/files/ExtendedAttributes.h"
#include "tests/platform/icons/IconBytes.h"
#include "tests/support/Texts.h"
#include <filesystem>
#include <fstream>
#include <iterator>

namespace mac::test {

namespace {

std::string contentsOfSample(std::string const& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

PageItem itemAt(std::string const& label, std::string const& place) {
    return {label, [place](int side) { return pxIconForFileWithDimension_(path(place), side); }};
}

PageItem itemOfCodes(std::string const& label, OSType creator, OSType type) {
    return {label, [creator, type](int side) {
                return pxGenericIconForFileCreatorCode_fileTypeCode_fileTypeString_dimension_(creator, type, nil, side);
            }};
}

std::string makeApplication(TemporaryFolder const& home, std::string const& name, std::string const& icon) {
    std::string bundle = home.makeBundle(
        "Applications/" + name + ".app",
        "{CFBundleIdentifier = \"com.example." + name +
            "\"; CFBundleSignature = PgAp; CFBundleIconFile = "
            "icon; CFBundleDocumentTypes = ({CFBundleTypeOSTypes = (PgDc); CFBundleTypeIconFile = icon;});}");
    if (!icon.empty()) home.makeFile("Applications/" + name + ".app/Contents/Resources/icon.icns", icon);
    return bundle;
}

void setCustomIcon(std::string const& file, std::string const& item, std::string const& icon) {
    std::string const fork = resourceFork("icns", -16455, icon);
    setxattr(file.c_str(), XATTR_RESOURCEFORK_NAME, fork.data(), fork.size(), 0, 0);
    pxSetFinderFlagsOfPath_mask_(path(item), kHasCustomIcon, kHasCustomIcon);
}

void addDocuments(TemporaryFolder const& home, std::vector<PageItem>& items) {
    for (auto const& [label, name] :
         {std::pair("Text", "a.txt"), std::pair("PDF", "a.pdf"), std::pair("Picture", "a.png"),
          std::pair("Movie", "a.mp4"), std::pair("Sound", "a.mp3"), std::pair("Archive", "a.zip"),
          std::pair("Shell script", "a.sh"), std::pair("Web page", "a.html"), std::pair("Spreadsheet", "a.ods"),
          std::pair("Presentation", "a.odp"), std::pair("Font", "a.ttf")})
        items.push_back(itemAt(label, home.makeFile(name, "")));
}

void addFolders(TemporaryFolder const& home, std::string const& icon, std::vector<PageItem>& items) {
    items.push_back(itemAt("Folder", home.makeFolder("Folder")));
    items.push_back(itemAt("Home folder", home.path()));
    home.makeFile(".config/user-dirs.dirs", "XDG_MUSIC_DIR=\"$HOME/Music\"\n");
    items.push_back(itemAt("Music folder", home.makeFolder("Music")));
    items.push_back(itemAt("Volume", "/"));
    std::string const folder = home.makeFolder("Own");
    setCustomIcon(home.makeFile("Own/Icon\r", ""), folder, icon);
    items.push_back(itemAt("Folder, custom icon", folder));
}

} // namespace

std::vector<PageItem> makePageItems(TemporaryFolder const& home, std::string const& samples) {
    std::string const packed = contentsOfSample(samples + "/packed-with-masks");
    std::vector<PageItem> items;
    addDocuments(home, items);
    addFolders(home, packed, items);
    items.push_back(itemAt("Application, packed", makeApplication(home, "Packed", packed)));
    items.push_back(itemAt("Application, JPEG 2000",
                           makeApplication(home, "Wavelets", contentsOfSample(samples + "/large-piece"))));
    items.push_back(itemAt("Application, no icon", makeApplication(home, "Plain", "")));
    items.push_back(itemAt("Desktop entry", home.makeFile("a.desktop", "[Desktop Entry]\nIcon=system-file-manager\n")));
    std::string const own = home.makeFile("own.txt", "");
    setCustomIcon(own, own, iconFamily(iconPiece("it32", std::string(4, '\0') + packedPixels(128, 0x3A7D44))));
    items.push_back(itemAt("File, custom icon", own));
    items.push_back(itemOfCodes("Creator and type", OSType("PgAp"), OSType("PgDc")));
    items.push_back(itemOfCodes("The system's trash", OSType("macs"), OSType("trsh")));
    std::filesystem::create_symlink("missing", home.path("broken"));
    items.push_back(itemAt("Broken link", home.path("broken")));
    return items;
}

} // namespace mac::test
