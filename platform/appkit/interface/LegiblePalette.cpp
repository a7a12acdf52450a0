#include "platform/appkit/interface/LegiblePalette.h"
#include "platform/appkit/interface/ThemeColors.h"
#include <QApplication>
#include <QEvent>
#include <QObject>
#include <QScopedValueRollback>
#include <memory>

namespace mac {

namespace {

constexpr int StepPercent = 5;

QColor mixedWith(QColor const& color, QColor const& other, int percent) {
    auto const mix = [&](int one, int two) { return (one * (100 - percent) + two * percent) / 100; };
    return {mix(color.red(), other.red()), mix(color.green(), other.green()), mix(color.blue(), other.blue())};
}

// What is seen of a translucent colour on another.
QColor seenOn(QColor const& color, QColor const& ground) {
    return color.alpha() == 255 ? color : mixedWith(ground, color, color.alpha() * 100 / 255);
}

QColor fartherFrom(QColor const& color) {
    return contrast(Qt::black, color) > contrast(Qt::white, color) ? QColor(Qt::black) : QColor(Qt::white);
}

// The nearest colour on the way to the other one that is far enough from the third.
QColor movedAway(QColor const& color, QColor const& towards, QColor const& from) {
    for (int percent = 0; percent <= 100; percent += StepPercent) {
        QColor const moved = mixedWith(color, towards, percent);
        if (contrast(moved, from) >= LegibleContrast) return moved;
    }
    return towards;
}

// Grounds that share their text with another one, and selections, whose text is black or white in most themes: text
// that moved for one ground would leave the other.
bool movesGround(QPalette::ColorRole ground) {
    return ground == QPalette::AlternateBase || ground == QPalette::Button || ground == QPalette::Highlight;
}

void makeLegible(QPalette& palette, QPalette::ColorGroup group, TextOnColor const& pair) {
    if (contrastIn(palette, group, pair) >= LegibleContrast) return;
    QColor const ground = palette.color(group, pair.ground);
    QColor const text = seenOn(palette.color(group, pair.text), ground);
    if (!movesGround(pair.ground))
        return palette.setColor(group, pair.text, movedAway(text, fartherFrom(ground), ground));
    QColor const away = fartherFrom(text);
    palette.setColor(group, pair.ground, movedAway(ground, away, text));
}

class PaletteWatch : public QObject {
public:
    explicit PaletteWatch(QObject* application) : QObject(application) {
        application->installEventFilter(this);
        mend();
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == parent() && event->type() == QEvent::ApplicationPaletteChange) mend();
        return QObject::eventFilter(watched, event);
    }

private:
    // Setting the palette tells of a new one.
    void mend() {
        if (m_isMending) return;
        QScopedValueRollback<bool> const mending(m_isMending, true);
        QPalette const palette = QApplication::palette();
        QPalette const legible = legiblePalette(palette);
        if (legible != palette) QApplication::setPalette(legible);
    }

    bool m_isMending{false};
};

} // namespace

std::vector<TextOnColor> const& textsOnColors() {
    using Role = QPalette::ColorRole;
    static std::vector<TextOnColor> const pairs{
        {Role::Text, Role::Base},
        {Role::Text, Role::AlternateBase},
        {Role::WindowText, Role::Window},
        {Role::ButtonText, Role::Window},
        {Role::ButtonText, Role::Button},
        {Role::PlaceholderText, Role::Base},
        {Role::ToolTipText, Role::ToolTipBase},
        {Role::HighlightedText, Role::Highlight},
    };
    return pairs;
}

double contrastIn(QPalette const& palette, QPalette::ColorGroup group, TextOnColor const& pair) {
    QColor const ground = palette.color(group, pair.ground);
    return contrast(seenOn(palette.color(group, pair.text), ground), ground);
}

QPalette legiblePalette(QPalette palette) {
    for (QPalette::ColorGroup const group : {QPalette::Active, QPalette::Inactive}) {
        for (TextOnColor const& pair : textsOnColors())
            makeLegible(palette, group, pair);
    }
    return palette;
}

void keepPaletteLegible() {
    constexpr char name[] = "paletteWatch";
    if (!qApp || qApp->findChild<QObject*>(name)) return;
    // Owned by the application.
    auto watch = std::make_unique<PaletteWatch>(qApp);
    watch->setObjectName(name);
    watch.release();
}

} // namespace mac
