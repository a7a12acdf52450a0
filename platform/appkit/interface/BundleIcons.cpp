#include "platform/appkit/interface/BundleIcons.h"
#include "platform/appkit/interface/DrawnIcon.h"
#include "platform/desktop/session/AnsweringItems.h"
#include "platform/foundation/bundles/BundleInformation.h"
#include "platform/icons/IconPictures.h"
#include "platform/icons/IconSource.h"
#include "platform/system/LongPath.h"
#include <QImage>

namespace mac {

namespace {

constexpr std::size_t MostKnown = 512;

// All pictures in one icon, which takes the best for the screen.
QIcon iconOfPictures(std::vector<Picture> const& pictures) {
    QIcon icon;
    for (Picture const& picture : pictures) {
        QImage const image(reinterpret_cast<uchar const*>(picture.pixels.data()), picture.width, picture.height,
                           picture.width * 4, QImage::Format_ARGB32);
        icon.addPixmap(QPixmap::fromImage(image));
    }
    return icon;
}

QIcon generalIcon() {
    QString const name("application-x-executable");
    return QIcon::hasThemeIcon(name) ? QIcon::fromTheme(name)
                                     : drawnIcon("M2.5 3 H13.5 V13 H2.5 Z M2.5 5.8 H13.5 M4.3 4.4 H4.5 M6.1 4.4 H6.3");
}

QIcon readIcon(std::string const& bundle) {
    NSString const name = as<NSString>(informationOfBundle(bundle).objectForKey_("CFBundleIconFile"));
    return iconOfPictures(picturesInIconFile(iconFileInBundle(bundle, name)));
}

} // namespace

QIcon BundleIcons::iconOfBundle(NSString const& path) {
    std::optional<std::string> const bundle = path.fileSystemRepresentation();
    if (!bundle || !AnsweringItems::shared()->mayRead(*bundle)) return {};
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
