#include "platform/appkit/interface/LegiblePalette.h"
#include "platform/appkit/interface/ThemeColors.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include <QApplication>
#include <QStyle>
#include <QStyleFactory>
#include <gtest/gtest.h>
#include <string>

namespace mac::test {
namespace {

constexpr double WantedContrast = 4.5;

struct NamedPalette {
    std::string name;
    QPalette palette;
};

QPalette paletteOf(QColor const& text, QColor const& ground, QColor const& selection, QColor const& selectedText) {
    QPalette palette(ground);
    using Role = QPalette::ColorRole;
    for (Role const role : {Role::Text, Role::WindowText, Role::ButtonText, Role::ToolTipText})
        palette.setColor(role, text);
    for (Role const role : {Role::Base, Role::AlternateBase, Role::Window, Role::Button, Role::ToolTipBase})
        palette.setColor(role, ground);
    QColor placeholder = text;
    placeholder.setAlpha(128);
    palette.setColor(Role::PlaceholderText, placeholder);
    palette.setColor(Role::Highlight, selection);
    palette.setColor(Role::HighlightedText, selectedText);
    return palette;
}

// The palette of a theme that sets a few colours only.
QPalette halfDark() {
    QPalette palette = paletteOf("#000000", "#f0f0f0", "#308cc6", "#ffffff");
    palette.setColor(QPalette::Base, "#202020");
    palette.setColor(QPalette::Text, "#f0f0f0");
    palette.setColor(QPalette::Window, "#303030");
    palette.setColor(QPalette::WindowText, "#f0f0f0");
    return palette;
}

std::vector<NamedPalette> palettesOfThemes() {
    std::unique_ptr<QStyle> const fusion(QStyleFactory::create("Fusion"));
    return {
        {"light", fusion->standardPalette()},
        {"light grey", paletteOf("#2e3436", "#f6f5f4", "#3584e4", "#ffffff")},
        {"dark", paletteOf("#eeeeec", "#353535", "#15539e", "#ffffff")},
        {"darker", paletteOf("#fcfcfc", "#1b1e20", "#3daee9", "#fcfcfc")},
        {"high contrast", paletteOf("#ffffff", "#000000", "#ffff00", "#000000")},
        {"high contrast inverse", paletteOf("#000000", "#ffffff", "#000000", "#ffffff")},
        {"half dark", halfDark()},
        {"hardly to be read", paletteOf("#999999", "#bbbbbb", "#cccccc", "#dddddd")},
    };
}

class LegiblePalettes : public testing::Test {
protected:
    LegiblePalettes() { needApplication(); }
    ~LegiblePalettes() override { QApplication::setPalette(m_before); }

private:
    QPalette m_before{(needApplication(), QApplication::palette())};
};

TEST_F(LegiblePalettes, HaveTheContrastThatTextWants) {
    int count = 0;
    for (auto const& [name, palette] : palettesOfThemes()) {
        QPalette const legible = legiblePalette(palette);
        for (QPalette::ColorGroup const group : {QPalette::Active, QPalette::Inactive}) {
            for (TextOnColor const& pair : textsOnColors()) {
                ++count;
                EXPECT_GE(contrastIn(legible, group, pair), WantedContrast)
                    << name << " " << pair.text << " on " << pair.ground;
            }
        }
        EXPECT_GE(contrast(dimmedText(legible), legible.color(QPalette::Base)), WantedContrast) << name;
    }
    EXPECT_GT(count, 100);
}

// As a theme leaves it that knows no colour for them.
TEST_F(LegiblePalettes, LetDisabledTextBeSeen) {
    int count = 0;
    for (auto const& [name, palette] : palettesOfThemes()) {
        QPalette hidden = palette;
        for (QPalette::ColorRole const role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
            hidden.setColor(QPalette::Disabled, role, palette.color(QPalette::Disabled, QPalette::Window));
        for (TextOnColor const& pair : textsOnColors()) {
            ++count;
            EXPECT_GE(contrastIn(legiblePalette(hidden), QPalette::Disabled, pair), DisabledContrast)
                << name << " " << pair.text << " on " << pair.ground;
        }
    }
    EXPECT_GT(count, 50);
}

TEST_F(LegiblePalettes, KeepColoursThatCanBeRead) {
    QPalette palette = paletteOf("#ffffff", "#000000", "#ffff00", "#000000");
    palette.setColor(QPalette::PlaceholderText, "#cccccc");
    EXPECT_EQ(legiblePalette(palette), palette);
}

TEST_F(LegiblePalettes, StayAsTheyAreWhenMadeAnew) {
    for (auto const& [name, palette] : palettesOfThemes())
        EXPECT_EQ(legiblePalette(legiblePalette(palette)), legiblePalette(palette)) << name;
}

TEST_F(LegiblePalettes, LetANewThemeShowWhereTheyMendedTheOldOne) {
    LoadedWindow const window;
    QPalette own;
    own.setResolveMask(0);
    QApplication::setPalette(own);
    QColor const theme = QApplication::palette().color(QPalette::Active, QPalette::WindowText);
    own.setColor(QPalette::Window, "#f0f0f0");
    own.setColor(QPalette::WindowText, "#e8e8e8");
    QApplication::setPalette(own);
    ASSERT_NE(QApplication::palette().color(QPalette::Active, QPalette::WindowText), theme) << "it was mended";
    // As the toolkit tells of another theme.
    QEvent change(QEvent::ApplicationPaletteChange);
    QCoreApplication::sendEvent(qApp, &change);
    EXPECT_EQ(QApplication::palette().color(QPalette::Active, QPalette::WindowText), theme);
    EXPECT_EQ(QApplication::palette().color(QPalette::Active, QPalette::Window), QColor("#f0f0f0"));
}

TEST_F(LegiblePalettes, LeaveTheApplicationWhatItSetsItself) {
    LoadedWindow const window;
    QPalette own;
    own.setResolveMask(0);
    own.setColor(QPalette::Window, "#f0f0f0");
    own.setColor(QPalette::WindowText, "#e8e8e8");
    QApplication::setPalette(own);
    EXPECT_GE(contrast(QApplication::palette().color(QPalette::WindowText), QColor("#f0f0f0")), WantedContrast);
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), QColor("#f0f0f0"));
    own.setColor(QPalette::WindowText, "#101010");
    QApplication::setPalette(own);
    EXPECT_EQ(QApplication::palette().color(QPalette::WindowText), QColor("#101010"));
}

TEST_F(LegiblePalettes, AreThoseOfTheWindowInEveryTheme) {
    LoadedWindow const window;
    window.controller().setPaths_(makeRecords({"/a", "/b"}));
    window.find<QLineEdit>("filterField")->setText("a");
    for (auto const& [name, palette] : palettesOfThemes()) {
        QApplication::setPalette(palette);
        QCoreApplication::processEvents();
        int count = 0;
        for (QWidget const* const widget : window.widget()->findChildren<QWidget*>()) {
            if (!widget->isVisible() || !widget->isEnabled()) continue;
            ++count;
            QPalette const shown = widget->palette();
            TextOnColor const own{widget->foregroundRole(), widget->backgroundRole()};
            EXPECT_GE(contrastIn(shown, QPalette::Active, own), WantedContrast)
                << name << " " << widget->metaObject()->className() << " " << widget->objectName().toStdString();
            for (TextOnColor const& pair : textsOnColors())
                EXPECT_GE(contrastIn(shown, QPalette::Active, pair), WantedContrast) << name;
        }
        EXPECT_GT(count, 15) << name;
        for (int const column : {ExistsColumn, RunningColumn}) {
            QColor const color = window.table()->model()->index(0, column).data(Qt::ForegroundRole).value<QColor>();
            EXPECT_GE(contrast(color, window.table()->palette().color(QPalette::Base)), WantedContrast) << name;
        }
    }
}

} // namespace
} // namespace mac::test
