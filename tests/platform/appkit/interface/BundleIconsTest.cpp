#include "platform/appkit/interface/InterfaceIcons.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/Texts.h"
#include <QBuffer>
#include <QImage>
#include <QScopeGuard>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

std::string bigEndian(std::size_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<char>(number >> shift));
    return bytes;
}

std::string piece(std::string const& type, std::string const& contents) {
    return type + bigEndian(contents.size() + 8) + contents;
}

// A picture of one colour, as a piece of an icon holds it.
std::string picture(Qt::GlobalColor color, int size) {
    QImage image(size, size, QImage::Format_RGB32);
    image.fill(color);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "png");
    return buffer.data().toStdString();
}

class BundleIconsOfCopies : public testing::Test {
protected:
    void SetUp() override { needApplication(); }

    void makeBundle(std::string const& iconFile) const {
        m_folder.makeBundle("A.app", "<plist><dict><key>CFBundleIdentifier</key><string>a.b</string>"
                                     "<key>CFBundleIconFile</key><string>" +
                                         iconFile + "</string></dict></plist>");
    }
    void makeIcon(std::string const& name, Qt::GlobalColor color) const {
        m_folder.makeFile("A.app/Contents/Resources/" + name,
                          piece("icns", piece("TOC ", "") + piece("ic07", picture(color, 128))));
    }
    void touch(int seconds) const {
        std::filesystem::last_write_time(bundle(),
                                         std::filesystem::file_time_type::clock::now() + std::chrono::seconds(seconds));
    }
    std::string bundle() const { return m_folder.path("A.app"); }
    QImage image(std::string const& place) {
        QIcon const icon = m_icons.iconOfBundle(path(m_folder.path(place)));
        return icon.isNull() ? QImage() : icon.pixmap(16, 16).toImage();
    }
    QColor color() { return image("A.app").pixelColor(8, 8); }
    // An application's in general is a drawing with an empty corner.
    bool isGeneral() { return image("A.app").pixelColor(0, 0).alpha() == 0; }

    TemporaryFolder const m_folder{};
    BundleIcons m_icons;
};

TEST_F(BundleIconsOfCopies, AreThePicturesThatTheirInformationNames) {
    makeBundle("first");
    makeIcon("first.icns", Qt::red);
    EXPECT_EQ(color(), QColor(Qt::red));
}

TEST_F(BundleIconsOfCopies, AreReadAnewWhenTheBundleWasTouched) {
    makeBundle("first.icns");
    makeIcon("first.icns", Qt::red);
    touch(-100);
    EXPECT_EQ(color(), QColor(Qt::red));
    makeIcon("first.icns", Qt::blue);
    touch(-100);
    makeIcon("second.icns", Qt::green);
    makeBundle("second");
    touch(-50);
    EXPECT_EQ(color(), QColor(Qt::green));
}

TEST_F(BundleIconsOfCopies, AreAnApplicationsInGeneralWhereThereIsNoPicture) {
    makeBundle("first");
    EXPECT_TRUE(isGeneral());
    touch(1);
    m_folder.makeFile("A.app/Contents/Resources/first.icns", "no icon");
    EXPECT_TRUE(isGeneral());
    touch(2);
    m_folder.makeFile("A.app/Contents/Resources/first.icns", piece("icns", piece("ic07", "no picture")));
    EXPECT_TRUE(isGeneral());
    touch(3);
    m_folder.makeFile("A.app/Contents/Resources/first.icns", "");
    std::filesystem::resize_file(bundle() + "/Contents/Resources/first.icns", std::uintmax_t{1} << 33);
    EXPECT_TRUE(isGeneral());
}

// What a toolkit keeps for drawing an icon takes more room than the icon. A theme's icons are shared anyway, so the
// theme has none here.
TEST_F(BundleIconsOfCopies, ShareTheIconOfApplicationsInGeneral) {
    auto const restore = qScopeGuard([themes = QIcon::themeSearchPaths(), others = QIcon::fallbackSearchPaths()] {
        QIcon::setThemeSearchPaths(themes);
        QIcon::setFallbackSearchPaths(others);
    });
    QStringList const empty(QString::fromStdString(m_folder.path()));
    QIcon::setThemeSearchPaths(empty);
    QIcon::setFallbackSearchPaths(empty);
    ASSERT_FALSE(QIcon::hasThemeIcon("application-x-executable"));
    for (char const* name : {"A.app", "B.app"})
        m_folder.makeBundle(name, "<plist><dict><key>CFBundleIdentifier</key><string>a.b</string></dict></plist>");
    QIcon const first = m_icons.iconOfBundle(NSString::stringWithFileSystemRepresentation_(m_folder.path("A.app")));
    QIcon const second = m_icons.iconOfBundle(NSString::stringWithFileSystemRepresentation_(m_folder.path("B.app")));
    ASSERT_FALSE(first.isNull());
    EXPECT_EQ(first.cacheKey(), second.cacheKey());
}

TEST_F(BundleIconsOfCopies, AreNotTakenFromElsewhere) {
    makeIcon("../../../outside.icns", Qt::red);
    makeBundle("../../../outside");
    EXPECT_TRUE(isGeneral());
}

TEST_F(BundleIconsOfCopies, AreNoneWhereNoBundleIs) {
    EXPECT_TRUE(image("none").isNull());
    m_folder.makeFile("file", "");
    EXPECT_TRUE(image("file").isNull());
    EXPECT_TRUE(m_icons.iconOfBundle(nil).isNull());
}

TEST_F(BundleIconsOfCopies, StandBeforeTheVersionInTheTable) {
    makeBundle("first");
    makeIcon("first.icns", Qt::red);
    LoadedWindow const window;
    NSSet const records = NSSet::setWithObject_(makeRecord(path(bundle())));
    window.controller().setPaths_(records);
    QModelIndex const cell = window.table()->model()->index(0, VersionColumn);
    EXPECT_FALSE(cell.data(Qt::DecorationRole).value<QIcon>().isNull());
    EXPECT_EQ(cell.data().toString(), "2.1 (210)");
    EXPECT_FALSE(cell.siblingAtColumn(PathColumn).data(Qt::DecorationRole).isValid());
    QRect const place = window.table()->visualRect(cell);
    QImage const drawn = window.table()->viewport()->grab(place).toImage();
    EXPECT_EQ(drawn.pixelColor(8 + 8, place.height() / 2), QColor(Qt::red));
}

} // namespace
} // namespace mac::test
