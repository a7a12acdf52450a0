#include "platform/appkit/interface/VisibleEdges.h"
#include "platform/appkit/interface/ThemeColors.h"
#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOption>
#include <memory>

namespace mac {

namespace {

// What neighbouring surfaces differ by at least for the line between them to be seen.
constexpr double SeenContrast = 1.15;
// What they differ by at least where text differs from its ground by so much that the user must have chosen it.
constexpr double EasilySeenContrast = 3;
constexpr double HighContrast = 20; // of 21, black on white
// What the usual style darkens the window by for its outlines, in percent.
constexpr int OutlineDarkness = 140;

bool hasEdge(QStyle::PrimitiveElement element) {
    switch (element) {
    case QStyle::PE_PanelButtonCommand:
    case QStyle::PE_PanelButtonTool:
    case QStyle::PE_FrameLineEdit:
    case QStyle::PE_Frame:
    case QStyle::PE_FrameMenu:
    case QStyle::PE_PanelMenu:
    case QStyle::PE_PanelTipLabel:
    case QStyle::PE_IndicatorCheckBox:
        return true;
    default:
        return false;
    }
}

class EdgedStyle : public QProxyStyle {
public:
    using QProxyStyle::QProxyStyle;

    void drawPrimitive(PrimitiveElement element, QStyleOption const* option, QPainter* painter,
                       QWidget const* widget) const override {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        if (!hasEdge(element) || areEdgesSeen(option->palette)) return;
        bool const isPopup = element == PE_FrameMenu || element == PE_PanelMenu || element == PE_PanelTipLabel;
        bool const isEnabled = isPopup || option->state.testFlag(State_Enabled);
        bool const hasKeyboard = element != PE_Frame && !isPopup && option->state.testFlag(State_HasFocus);
        QPalette::ColorGroup const group = isEnabled ? QPalette::Active : QPalette::Disabled;
        drawEdge(painter, option->rect,
                 option->palette.color(group, hasKeyboard ? QPalette::Highlight : QPalette::WindowText));
    }

    void drawComplexControl(ComplexControl control, QStyleOptionComplex const* option, QPainter* painter,
                            QWidget const* widget) const override {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        if (control != CC_ScrollBar || areEdgesSeen(option->palette)) return;
        QRect const slider = subControlRect(control, option, SC_ScrollBarSlider, widget);
        drawEdge(painter, slider, option->palette.color(QPalette::Active, QPalette::WindowText));
    }

    void drawControl(ControlElement element, QStyleOption const* option, QPainter* painter,
                     QWidget const* widget) const override {
        auto const* const item = qstyleoption_cast<QStyleOptionMenuItem const*>(option);
        if (element != CE_MenuItem || !item || areEdgesSeen(option->palette))
            return QProxyStyle::drawControl(element, option, painter, widget);
        QStyleOptionMenuItem seen = *item;
        // The usual style draws icons as on the menu's ground.
        bool const isChosen = item->state.testFlag(State_Selected) && item->state.testFlag(State_Enabled);
        QSize const size(pixelMetric(PM_SmallIconSize, option, widget), pixelMetric(PM_SmallIconSize, option, widget));
        if (isChosen && !item->icon.isNull()) seen.icon = QIcon(item->icon.pixmap(size, QIcon::Selected));
        QProxyStyle::drawControl(element, &seen, painter, widget);
        if (item->menuItemType != QStyleOptionMenuItem::Separator) return;
        painter->save();
        painter->setPen(option->palette.color(QPalette::Active, QPalette::WindowText));
        int const middle = option->rect.center().y();
        painter->drawLine(option->rect.left() + 5, middle, option->rect.right() - 5, middle);
        painter->restore();
    }

private:
    static void drawEdge(QPainter* painter, QRect const& rect, QColor const& color) {
        painter->save();
        painter->setPen(color);
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(rect.adjusted(0, 0, -1, -1));
        painter->restore();
    }
};

// The style stays once it was needed: it looks at the palette whenever it draws.
class EdgeWatch : public QObject {
public:
    explicit EdgeWatch(QObject* application) : QObject(application) {
        application->installEventFilter(this);
        mend();
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        // A style cannot be exchanged while all widgets take over another palette.
        if (watched == parent() && event->type() == QEvent::ApplicationPaletteChange && !m_isMended)
            QMetaObject::invokeMethod(
                this, [this] { mend(); }, Qt::QueuedConnection);
        return QObject::eventFilter(watched, event);
    }

private:
    void mend() {
        if (m_isMended || areEdgesSeen(QApplication::palette())) return;
        m_isMended = true;
        // The application owns it.
        QApplication::setStyle(std::make_unique<EdgedStyle>(QApplication::style()->name()).release());
    }

    bool m_isMended{false};
};

} // namespace

bool areEdgesSeen(QPalette const& palette) {
    QColor const window = palette.color(QPalette::Active, QPalette::Window);
    bool const isHighContrast = contrast(palette.color(QPalette::Active, QPalette::WindowText), window) >= HighContrast;
    double const wanted = isHighContrast ? EasilySeenContrast : SeenContrast;
    auto const isSeen = [&](QColor const& color) { return contrast(color, window) >= wanted; };
    return isSeen(window.darker(OutlineDarkness)) || (isSeen(palette.color(QPalette::Active, QPalette::Button)) &&
                                                      isSeen(palette.color(QPalette::Active, QPalette::Base)));
}

void keepEdgesVisible() {
    constexpr char name[] = "edgeWatch";
    if (!qApp || qApp->findChild<QObject*>(name)) return;
    // Owned by the application.
    auto watch = std::make_unique<EdgeWatch>(qApp);
    watch->setObjectName(name);
    (void)watch.release();
}

} // namespace mac
