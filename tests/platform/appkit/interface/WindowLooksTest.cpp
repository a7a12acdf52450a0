#include "platform/appkit/interface/ThemeColors.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/RunUntil.h"
#include "tests/support/TemporaryFolder.h"
#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QStyledItemDelegate>
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <utility>

namespace mac::test {
namespace {

// A theme that comes while the window is open, and goes with the test.
class DarkTheme {
public:
    DarkTheme() {
        QPalette dark = m_before;
        for (auto const& [role, color] : {std::pair(QPalette::Base, "#202020"),
                                          {QPalette::AlternateBase, "#282828"},
                                          {QPalette::Text, "#f0f0f0"},
                                          {QPalette::Window, "#303030"},
                                          {QPalette::WindowText, "#f0f0f0"}})
            dark.setColor(role, QColor(color));
        QApplication::setPalette(dark);
    }
    ~DarkTheme() { QApplication::setPalette(m_before); }
    DarkTheme(DarkTheme const&) = delete;
    DarkTheme& operator=(DarkTheme const&) = delete;

private:
    QPalette m_before = QApplication::palette();
};

QRect placeInWindow(LoadedWindow const& window, QWidget const* widget) {
    return {widget->mapTo(window.widget(), QPoint()), widget->size()};
}

TEST(WindowLooks, CanBeReadWhenTheThemeTurnsDark) {
    LoadedWindow const window;
    window.controller().setPaths_(makeRecords({"/a"}));
    DarkTheme const dark;
    QCoreApplication::processEvents();
    QColor const background = window.table()->palette().color(QPalette::Base);
    for (int const column : {ExistsColumn, RunningColumn}) {
        QVariant const color = window.table()->model()->index(0, column).data(Qt::ForegroundRole);
        EXPECT_GE(contrast(color.value<QColor>(), background), 4.5) << column;
    }
}

TEST(WindowLooks, LeavesTheHeaderFreeWhenThereIsNothingToShow) {
    LoadedWindow const window;
    window.controller().setPaths_(NSSet::set());
    auto* const panel = window.find<QWidget>("emptyPanel");
    ASSERT_TRUE(runUntil([&] { return panel->isVisible(); }));
    for (QSize const& size : {QSize(1000, 620), window.widget()->minimumSize(), QSize(1200, 700)}) {
        window.widget()->resize(size);
        QCoreApplication::processEvents();
        EXPECT_EQ(placeInWindow(window, panel), placeInWindow(window, window.table()->viewport()));
        EXPECT_FALSE(
            placeInWindow(window, panel).intersects(placeInWindow(window, window.table()->horizontalHeader())));
    }
}

TEST(WindowLooks, OffersTheTablesMenuAlsoWhenThereIsNothingToShow) {
    LoadedWindow const window;
    for (char const* const name : {"emptyPanel", "searchingPanel", "filteredPanel"}) {
        auto const* const cover = window.find<QWidget>(name);
        EXPECT_EQ(cover->contextMenuPolicy(), Qt::ActionsContextMenu) << name;
        EXPECT_EQ(cover->actions(), window.table()->actions()) << name;
    }
}

TEST(WindowLooks, CutsALongLineOfTheLogAndTellsAllOfItInTheToolTip) {
    LoadedWindow const window;
    auto const* const label = window.find<QLabel>("logLabel");
    QString const line = "Could not move " + QString("very ").repeated(300) + "long";
    NSLog(NSString::stringWithUTF8String_(line.toStdString()));
    ASSERT_TRUE(runUntil([&] { return label->toolTip() == line; }));
    EXPECT_TRUE(label->text().endsWith(QChar(0x2026)));
    EXPECT_LE(label->fontMetrics().horizontalAdvance(label->text()), label->contentsRect().width());
    EXPECT_EQ(label->accessibleDescription(), line);
}

// What the table draws of a cell in a wide place, cut out.
QImage drawnCell(LoadedWindow const& window, QModelIndex const& index, Qt::LayoutDirection direction) {
    QImage image(600, 30, QImage::Format_RGB32);
    image.fill(Qt::white);
    QStyleOptionViewItem option;
    option.rect = image.rect();
    option.direction = direction;
    option.palette.setColor(QPalette::Text, Qt::black);
    QPainter painter(&image);
    painter.setLayoutDirection(direction);
    window.table()->itemDelegate()->paint(&painter, option, index);
    QRect drawn;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(x, y) != QColor(Qt::white)) drawn |= QRect(x, y, 1, 1);
        }
    }
    EXPECT_EQ(drawn.left() < 300, direction == Qt::LeftToRight);
    return image.copy(drawn);
}

int darkness(QImage const& image, QRect const& part) {
    int sum = 0;
    for (int x = part.left(); x <= part.right(); ++x) {
        for (int y = part.top(); y <= part.bottom(); ++y)
            sum += 255 - qGray(image.pixel(x, y));
    }
    return sum;
}

TEST(WindowLooks, DrawsAPathFromLeftToRightAlsoWhereTextGoesRightToLeft) {
    LoadedWindow const window;
    window.controller().setPaths_(makeRecords({"/MMMM"}));
    for (Qt::LayoutDirection const direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        QImage const cell = drawnCell(window, window.table()->model()->index(0, PathColumn), direction);
        // The slash is the lightest of the characters.
        QSize const character(cell.width() / 10, cell.height());
        int const first = darkness(cell, QRect(QPoint(0, 0), character));
        int const last = darkness(cell, QRect(QPoint(cell.width() - character.width(), 0), character));
        EXPECT_LT(first, last) << direction;
    }
}

TEST(WindowLooks, DrawsTheIconOfASelectedRowInTheColourOfItsText) {
    LoadedWindow const window;
    TemporaryFolder const folder;
    window.controller().setPaths_(makeRecords({folder.path().c_str()}));
    QImage image(20, 30, QImage::Format_RGB32);
    QColor const text = QGuiApplication::palette().color(QPalette::HighlightedText);
    QColor const ground = contrast(text, Qt::white) > contrast(text, Qt::black) ? Qt::white : Qt::black;
    image.fill(ground);
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 600, 30);
    option.state = QStyle::State_Selected | QStyle::State_Enabled | QStyle::State_Active;
    for (QPalette::ColorRole const role : {QPalette::Highlight, QPalette::Base})
        option.palette.setColor(role, ground);
    QPainter painter(&image);
    window.table()->itemDelegate()->paint(&painter, option, window.table()->model()->index(0, VersionColumn));
    double farthest = 1;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y)
            farthest = std::max(farthest, contrast(image.pixelColor(x, y), ground));
    }
    EXPECT_GE(farthest, 4.5);
}

TEST(WindowLooks, ShowsADashForAVersionThatIsNotKnown) {
    LoadedWindow const window;
    window.controller().setPaths_(NSSet::setWithObject_(makeRecord("/gone", "", "")));
    EXPECT_EQ(window.column(VersionColumn), QStringList("–"));
}

// How much of a label is free on the left of what it draws, and on the right.
std::pair<int, int> roomBesideText(QWidget* label) {
    QImage const image = label->grab().toImage();
    QRgb const ground = image.pixel(0, 0);
    std::pair<int, int> room{image.width(), image.width()};
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixel(x, y) != ground) room = {std::min(room.first, x), image.width() - 1 - x};
        }
    }
    return room;
}

// The number of a counting text would go to its end.
TEST(WindowLooks, ShowsTextsOfButtonsInTheirOwnDirectionWhereTextGoesRightToLeft) {
    needApplication();
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    LoadedWindow const window;
    QString const text = window.find<QAbstractButton>("unreadableButton")->text();
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    EXPECT_EQ(text.front(), QChar(0x200E)) << text.toStdString();
    EXPECT_TRUE(text.endsWith("folders could not be read")) << text.toStdString();
}

TEST(WindowLooks, KeepsTextsBesideTheirTitlesWhereTextGoesRightToLeft) {
    LoadedWindow const window;
    for (Qt::LayoutDirection const direction : {Qt::RightToLeft, Qt::LeftToRight}) {
        window.widget()->setLayoutDirection(direction);
        for (char const* const name : {"versionTitle", "versionDetail", "createdDetail"}) {
            auto* const label = window.find<QLabel>(name);
            label->setText("2.1 (210)");
            label->resize(300, 30);
            auto const [left, right] = roomBesideText(label);
            EXPECT_EQ(left > right, direction == Qt::RightToLeft) << name << ' ' << left << ' ' << right;
        }
    }
}

TEST(WindowLooks, HasAnIconThatIsSeenOnAnyBackground) {
    LoadedWindow const window;
    QImage const image = window.widget()->windowIcon().pixmap(64, 64).toImage();
    ASSERT_FALSE(image.isNull());
    // The tile and what is drawn on it.
    EXPECT_GE(contrast(image.pixelColor(32, 6), Qt::white), 4.5);
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
    bool isDrawnOn = false;
    for (int x = 0; x < image.width(); ++x)
        isDrawnOn = isDrawnOn || image.pixelColor(x, 32) == QColor(Qt::white);
    EXPECT_TRUE(isDrawnOn);
}

// A theme with icons of these names, as long as it lives.
class IconTheme {
public:
    explicit IconTheme(QStringList const& names) {
        m_folder.makeFile("trial/index.theme",
                          "[Icon Theme]\nName=Trial\nDirectories=16\n\n[16]\nSize=16\nType=Fixed\n");
        m_folder.makeFolder("trial/16");
        QPixmap picture(16, 16);
        picture.fill(Qt::red);
        for (QString const& name : names)
            picture.save(QString::fromStdString(m_folder.path("trial/16/")) + name + ".png");
        QIcon::setThemeSearchPaths({QString::fromStdString(m_folder.path())});
        QIcon::setThemeName("trial");
    }
    ~IconTheme() {
        QIcon::setThemeName(m_name);
        QIcon::setThemeSearchPaths(m_paths);
    }
    IconTheme(IconTheme const&) = delete;
    IconTheme& operator=(IconTheme const&) = delete;

private:
    TemporaryFolder const m_folder;
    QString const m_name{QIcon::themeName()};
    QStringList const m_paths{QIcon::themeSearchPaths()};
};

QStringList iconNamesOfTwoActions() {
    auto const action = [](std::string const& name) {
        return "<action name=\"" + name + "\">" + stringProperty("themeIcon", name) +
               stringProperty("glyph", "M2 2 H14") + "</action>";
    };
    auto const file =
        loadForm(formWith(stringProperty("controllerClass", "AppController"), action("first") + action("second")));
    QStringList names;
    for (char const* const name : {"first", "second"}) {
        QIcon const icon = file->widget()->findChild<QAction*>(name)->icon();
        names.append(icon.isNull() ? "none" : icon.name());
    }
    return names;
}

TEST(WindowLooks, TakesTheIconsOfAThemeThatHasAllOfThemAndDrawsThemElse) {
    needApplication();
    {
        IconTheme const whole({"first", "second"});
        EXPECT_EQ(iconNamesOfTwoActions(), QStringList({"first", "second"}));
    }
    IconTheme const part({"first"});
    EXPECT_EQ(iconNamesOfTwoActions(), QStringList({"", ""}));
}

// For a name that the theme lacks the toolkit would look for types of files at the start.
TEST(WindowLooks, LeavesIconsOfTheThemeToTheirOwnProperty) {
    std::ifstream file(MAIN_INTERFACE_FILE);
    std::string const text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(text.find("themeIcon"), std::string::npos);
    EXPECT_EQ(text.find("iconset"), std::string::npos);
}

} // namespace
} // namespace mac::test
