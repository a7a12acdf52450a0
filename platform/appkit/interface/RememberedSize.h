#pragma once

#include "platform/foundation/text/NSString.h"
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>

namespace mac {

// A window's size that lasts: kept in the user's defaults under a key and given back to the next window. A value that
// is no size, and a key that cannot be read, leave the window as it is. No window gets larger than its screen, also
// when that goes away. Whether the window is maximised is kept under the key and " Zoomed", apart from the size that it
// has else.
class RememberedSize : public QObject {
public:
    RememberedSize(QWidget* window, NSString const& key);
    ~RememberedSize() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fitScreen();
    void followState();
    void remember();
    NSString zoomedKey() const;
    bool isOrdinary() const;

    QPointer<QWidget> m_window;
    NSString m_key;
    // What the window had from here, so that only the user's own changes are kept.
    QSize m_given;
    bool m_isZoomed{false};
    // Runs from a new size on: a window manager that maximises a window may tell the size before the state.
    QTimer m_settling;
};

// The size within what the screen has for windows with a title bar; an empty screen limits nothing.
QSize sizeWithin(QSize const& wanted, QSize const& available, int titleBar);

} // namespace mac
