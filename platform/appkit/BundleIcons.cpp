#include "platform/appkit/BundleIcons.h"
#include "platform/appkit/DrawnIcon.h"
#include "platform/foundation/BundleInformation.h"
#include "platform/icons/IconFamily.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include <QBuffer>
#include <QImageReader>
#include <algorithm>
#include <array>

namespace mac {

namespace {

// The icon file of an application has up to a few hundred thousand bytes.
constexpr std::size_t LargestFile = std::size_t{4} << 20;
constexpr int LargestPicture = 1024;
constexpr std::size_t MostKnown = 512;

// Pieces of an icon that may hold a PNG picture, best first for 16 pixels on screens of any density: of 32 pixels, 64,
// 128, 256, 16.
constexpr std::array PictureTypes{OSType("ic11"), OSType("icp5"), OSType("ic12"), OSType("icp6"),
                                  OSType("ic07"), OSType("ic08"), OSType("ic13"), OSType("icp4")};

QImage pictureOf(IconPart const& part) {
    QByteArray bytes(reinterpret_cast<char const*>(part.bytes.data()), static_cast<qsizetype>(part.bytes.size()));
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer, "png");
    QSize const size = reader.size();
    if (!size.isValid() || size.width() > LargestPicture || size.height() > LargestPicture) return {};
    return reader.read();
}

QIcon iconOfFile(std::string const& path) {
    Result<FileContents> const contents = readFileAtPath(path, LargestFile);
    if (!contents.hasValue()) return {};
    std::vector<IconPart> const parts = readIconFamily(contents.value().bytes).value_or(std::vector<IconPart>());
    for (OSType const type : PictureTypes) {
        auto const part = std::ranges::find(parts, type, &IconPart::type);
        if (part == parts.end()) continue;
        QImage const picture = pictureOf(*part);
        if (!picture.isNull()) return QIcon(QPixmap::fromImage(picture));
    }
    return {};
}

QIcon generalIcon() {
    QString const name("application-x-executable");
    return QIcon::hasThemeIcon(name) ? QIcon::fromTheme(name)
                                     : drawnIcon("M2.5 3 H13.5 V13 H2.5 Z M2.5 5.8 H13.5 M4.3 4.4 H4.5 M6.1 4.4 H6.3");
}

// The file's name with or without its extension; a name that leads elsewhere is none.
QIcon readIcon(std::string const& bundle) {
    NSString const name = as<NSString>(informationOfBundle(bundle).objectForKey_("CFBundleIconFile"));
    std::string file = name.fileSystemRepresentation().value_or("");
    if (file.empty() || file.find('/') != std::string::npos) return {};
    if (!file.ends_with(".icns")) file += ".icns";
    return iconOfFile(BytePath(bundle).joined("Contents/Resources/" + file));
}

} // namespace

QIcon BundleIcons::iconOfBundle(NSString const& path) {
    std::optional<std::string> const bundle = path.fileSystemRepresentation();
    if (!bundle) return {};
    Result<FileStatus> const status = fileStatusAtPath(*bundle);
    if (!status.hasValue() || status.value().kind != FileStatus::Kind::Folder) return {};
    auto const known = m_known.find(*bundle);
    if (known != m_known.end() && known->second.modified == status.value().modified) return known->second.icon;
    if (m_known.size() >= MostKnown) m_known.clear();
    QIcon icon = readIcon(*bundle);
    if (icon.isNull()) icon = generalIcon();
    m_known.insert_or_assign(*bundle, Known{status.value().modified, icon});
    return icon;
}

} // namespace mac
