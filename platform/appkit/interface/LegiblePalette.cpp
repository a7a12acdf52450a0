#include "platform/appkit/interface/LegiblePalette.h"
#include "platform/appkit/interface/ThemeColors.h"
#include <QApplication>
#include <QEvent>
#include <QObject>
#include <QScopedValueRollback>
#include <algorithm>
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
    return color.alpha() == 255 ? color : mixedWith(color, ground, 100 - color.alpha() * 100 / 255);
}

QColor fartherFrom(QColor const& color) {
    return contrast(Qt::black, color) > contrast(Qt::white, color) ? QColor(Qt::black) : QColor(Qt::white);
}

// The nearest colour on the way to the other one that is far enough from the third.
QColor movedAway(QColor const& color, QColor const& towards, QColor const& from, double wanted) {
    for (int percent = 0; percent <= 100; percent += StepPercent) {
        QColor const moved = mixedWith(color, towards, percent);
        if (contrast(moved, from) >= wanted) return moved;
    }
    return towards;
}

// Grounds that share their text with another one, and selections, whose text is black or white in most themes: text
// that moved for one ground would leave the other.
bool movesGround(QPalette::ColorRole ground) {
    return ground == QPalette::AlternateBase || ground == QPalette::Button || ground == QPalette::Highlight;
}

void makeLegible(QPalette& palette, QPalette::ColorGroup group, TextOnColor const& pair) {
    double const wanted = group == QPalette::Disabled ? DisabledContrast : LegibleContrast;
    if (contrastIn(palette, group, pair) >= wanted) return;
    QColor const ground = palette.color(group, pair.ground);
    QColor const text = seenOn(palette.color(group, pair.text), ground);
    if (!movesGround(pair.ground))
        return palette.setColor(group, pair.text, movedAway(text, fartherFrom(ground), ground, wanted));
    QColor const away = fartherFrom(text);
    palette.setColor(group, pair.ground, movedAway(ground, away, text, wanted));
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
        // The theme shows through where the application has set nothing, now and when another one comes.
        QPalette own = withoutMended(QApplication::palette());
        if (!m_mended.empty()) QApplication::setPalette(own);
        m_mended = differences(QApplication::palette(), legiblePalette(QApplication::palette()));
        for (MendedColor const& mended : m_mended)
            own.setColor(mended.group, mended.role, mended.color);
        if (!m_mended.empty()) QApplication::setPalette(own);
    }

    struct MendedColor {
        QPalette::ColorGroup group;
        QPalette::ColorRole role;
        QColor color;
    };

    // What the application itself has set of the palette: a colour that is no longer the mended one is its own.
    QPalette withoutMended(QPalette const& palette) const {
        QPalette own;
        own.setResolveMask(0);
        forEachColor([&](QPalette::ColorGroup group, QPalette::ColorRole role) {
            bool const isMended = std::ranges::any_of(m_mended, [&](MendedColor const& mended) {
                return mended.group == group && mended.role == role && mended.color == palette.color(group, role);
            });
            if (palette.isBrushSet(group, role) && !isMended) own.setBrush(group, role, palette.brush(group, role));
        });
        return own;
    }

    static std::vector<MendedColor> differences(QPalette const& palette, QPalette const& legible) {
        std::vector<MendedColor> colors;
        forEachColor([&](QPalette::ColorGroup group, QPalette::ColorRole role) {
            QColor const color = legible.color(group, role);
            if (color != palette.color(group, role)) colors.push_back({group, role, color});
        });
        return colors;
    }

    template <class Function>
    static void forEachColor(Function const& function) {
        for (QPalette::ColorGroup const group : {QPalette::Active, QPalette::Disabled, QPalette::Inactive}) {
            for (int role = 0; role < QPalette::NColorRoles; ++role)
                function(group, static_cast<QPalette::ColorRole>(role));
        }
    }

    bool m_isMending{false};
    std::vector<MendedColor> m_mended;
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
    for (QPalette::ColorGroup const group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
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
    (void)watch.release();
}

} // namespace mac
