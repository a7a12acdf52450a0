// Draws a page of icons of many kinds of items, as the library makes them: icon_page SAMPLES PICTURE. The home is one
// of its own.
#include "coreutils/IconsAndImages.h"
#include "pathutils/FinderMetadata.h"
#include "platform/appkit/workspace/NSImage.h"
#include "platform/files/ExtendedAttributes.h"
#include "tests/platform/icons/IconBytes.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace mac::test {

namespace {

constexpr std::array Sides{16, 32, 48, 128};
constexpr int RowsInColumn = 8;
constexpr int RowHeight = 140;
constexpr int ColumnWidth = 470;
constexpr int LabelWidth = 170;
constexpr int Gap = 14;

// An item whose icon the page shows.
struct PageItem {
    std::string label;
    // A new image trimmed to so many pixels.
    std::function<NSImage(int side)> icon;
};

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

// Makes items of many kinds in the folder, which is the home. The folder of samples holds files of icons.
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

QImage pictureOf(NSImage const& image) {
    NSArray const forms = image.representations();
    if (forms.count() != 1) return {};
    NSData const png =
        as<NSBitmapImageRep>(forms.objectAtIndex_(0)).representationUsingType_properties_(NSPNGFileType, nil);
    return QImage::fromData(reinterpret_cast<uchar const*>(png.bytes()), static_cast<int>(png.length()), "png");
}

// Whether all sides could be drawn.
bool drawRow(QPainter& painter, QPoint const& place, PageItem const& item) {
    painter.drawText(QRect(place, QSize(LabelWidth, RowHeight)), Qt::AlignVCenter | Qt::TextWordWrap,
                     QString::fromStdString(item.label));
    int left = place.x() + LabelWidth;
    bool isWhole = true;
    for (int const side : Sides) {
        QImage const picture = pictureOf(item.icon(side));
        isWhole = isWhole && picture.width() == side && picture.height() == side;
        painter.drawImage(left, place.y() + (RowHeight - side) / 2, picture);
        left += side + Gap;
    }
    if (!isWhole) std::fprintf(stderr, "%s: not in every side\n", item.label.c_str());
    return isWhole;
}

} // namespace
} // namespace mac::test

using namespace mac::test;

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) return 2;
    TemporaryFolder const home;
    EnvironmentVariable const homeVariable("HOME", home.path());
    QGuiApplication const application(argumentCount, arguments);
    std::vector<PageItem> const items = makePageItems(home, arguments[1]);
    int const columns = (static_cast<int>(items.size()) + RowsInColumn - 1) / RowsInColumn;
    QImage page(columns * ColumnWidth + Gap, RowsInColumn * RowHeight + 2 * Gap, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter painter(&page);
    painter.setPen(Qt::black);
    bool isWhole = true;
    for (int index = 0; index < static_cast<int>(items.size()); ++index) {
        QPoint const place(Gap + index / RowsInColumn * ColumnWidth, Gap + index % RowsInColumn * RowHeight);
        isWhole = drawRow(painter, place, items[static_cast<std::size_t>(index)]) && isWhole;
    }
    painter.end();
    return page.save(arguments[2]) && isWhole ? 0 : 1;
}
