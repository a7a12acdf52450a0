#include "platform/appkit/interface/RememberedSize.h"
#include "platform/appkit/interface/VisibleText.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/preferences/NSUserDefaults.h"
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QStringList>
#include <QStyle>
#include <optional>

namespace mac {

namespace {

// How long a size has to last.
constexpr int SettlingMilliseconds = 300;

// A number of pixels beyond this is no window's.
constexpr int LargestSize = 100'000;

// "X Y WIDTH HEIGHT" and, behind them, the same of the screen: the form that Mac OS X keeps.
std::optional<QSize> sizeInFrame(QString const& text) {
    QStringList const parts = text.split(' ', Qt::SkipEmptyParts);
    if (parts.size() < 4) return {};
    bool hasWidth = false;
    bool hasHeight = false;
    QSize const size(parts[2].toInt(&hasWidth), parts[3].toInt(&hasHeight));
    bool const isSize = hasWidth && hasHeight && size.width() > 0 && size.height() > 0;
    if (!isSize || size.width() > LargestSize || size.height() > LargestSize) return {};
    return size;
}

QString frameText(QRect const& frame, QRect const& screen) {
    QStringList parts;
    for (QRect const& rect : {frame, screen}) {
        for (int const number : {rect.x(), rect.y(), rect.width(), rect.height()})
            parts.append(QString::number(number));
    }
    return parts.join(' ');
}

QRect availableTo(QWidget const* window) { return window->screen() ? window->screen()->availableGeometry() : QRect(); }

} // namespace

QSize sizeWithin(QSize const& wanted, QSize const& available, int titleBar) {
    if (available.isEmpty()) return wanted;
    return wanted.boundedTo({available.width(), std::max(available.height() - titleBar, 1)});
}

RememberedSize::RememberedSize(QWidget* window, NSString const& key) : m_window(window), m_key(key) {
    guarded([&] {
        NSString const text = NSUserDefaults::standardUserDefaults().stringForKey_(m_key);
        std::optional<QSize> const size = text == nil ? std::nullopt : sizeInFrame(visibleText(text));
        if (size) window->resize(*size);
    });
    fitScreen();
    m_given = window->size();
    guarded([&] { m_isZoomed = NSUserDefaults::standardUserDefaults().boolForKey_(zoomedKey()); });
    if (m_isZoomed) window->setWindowState(window->windowState() | Qt::WindowMaximized);
    m_settling.setSingleShot(true);
    m_settling.setInterval(SettlingMilliseconds);
    connect(&m_settling, &QTimer::timeout, this, [this] { remember(); });
    window->installEventFilter(this);
    // The window is on another screen once that has been told to all.
    if (qGuiApp)
        connect(
            qGuiApp, &QGuiApplication::screenRemoved, this, [this] { fitScreen(); }, Qt::QueuedConnection);
}

RememberedSize::~RememberedSize() {
    if (m_settling.isActive()) remember();
}

NSString RememberedSize::zoomedKey() const { return NSString::stringWithFormat_("%@ Zoomed", m_key); }

bool RememberedSize::isOrdinary() const {
    return m_window && !(m_window->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen));
}

// A maximised window is as large as its screen wants it, and is fitted when it gets its own size back.
void RememberedSize::fitScreen() {
    if (!isOrdinary()) return;
    QRect const available = availableTo(m_window);
    int const titleBar = m_window->style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, m_window);
    QSize const fitting = sizeWithin(m_window->size(), available.size(), titleBar);
    if (fitting == m_window->size()) return;
    // The user's own size stays the remembered one.
    m_given = fitting;
    m_window->resize(fitting);
}

bool RememberedSize::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize && isOrdinary() && m_window->isVisible()) m_settling.start();
    if (event->type() == QEvent::WindowStateChange) followState();
    if (event->type() == QEvent::Hide && m_settling.isActive()) remember();
    return QObject::eventFilter(watched, event);
}

void RememberedSize::followState() {
    if (!m_window) return;
    if (!isOrdinary()) m_settling.stop();
    bool const isZoomed = m_window->windowState().testFlag(Qt::WindowMaximized);
    if (isZoomed == m_isZoomed) return;
    m_isZoomed = isZoomed;
    guarded([&] { NSUserDefaults::standardUserDefaults().setBool_forKey_(BOOL(isZoomed), zoomedKey()); });
    if (!isZoomed) fitScreen();
}

void RememberedSize::remember() {
    m_settling.stop();
    if (!isOrdinary() || m_window->size() == m_given) return;
    m_given = m_window->size();
    QRect const screen = m_window->screen() ? m_window->screen()->geometry() : QRect();
    guarded([&] {
        NSUserDefaults::standardUserDefaults().setObject_forKey_(stringOf(frameText(m_window->geometry(), screen)),
                                                                 m_key);
    });
}

} // namespace mac
