#pragma once

#include "platform/foundation/text/NSString.h"
#include <QObject>
#include <QPointer>
#include <QWidget>

namespace mac {

// A window's size that lasts: kept in the user's defaults under a key and given back to the next window. A value that
// is no size, and a key that cannot be read, leave the window as it is. No window gets larger than its screen, also
// when that goes away.
class RememberedSize : public QObject {
public:
    RememberedSize(QWidget* window, NSString const& key);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fitScreen();
    void remember();

    QPointer<QWidget> m_window;
    NSString m_key;
    // What the window had from here, so that only the user's own changes are kept.
    QSize m_given;
};

// The size within what the screen has for windows with a title bar; an empty screen limits nothing.
QSize sizeWithin(QSize const& wanted, QSize const& available, int titleBar);

} // namespace mac
