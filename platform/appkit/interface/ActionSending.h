#pragma once

#include "platform/appkit/interface/StatusLine.h"
#include "platform/appkit/views/NSControl.h"

namespace mac {

// Sends the actions of a window's buttons, menus and keys, and tells its status line how each went. An exception that
// an action raises is logged and goes no further.
//
// An action with the dynamic property busyText may block for seconds: meanwhile the pointer is busy and the status line
// shows that text. What the user did in that time is handled afterwards, but further actions are dropped, since they
// were meant for what the window showed before; those with the dynamic property worksWhileBusy are sent.
class ActionSending {
public:
    // The window outlives it.
    explicit ActionSending(QWidget* window) : m_window(window) {}

    // Null, or outlives this object.
    void setStatusLine(StatusLine* statusLine) { m_statusLine = statusLine; }
    // Sends the control's action to its target. The owner is the widget or action with the properties.
    void send(NSControl const& control, QObject const* owner);

private:
    void sendNow(NSControl const& control);
    void sendWhileBusy(NSControl const& control, QString const& busyText);

    QWidget* m_window;
    StatusLine* m_statusLine{nullptr};
    bool m_isBusy{false};
};

} // namespace mac
