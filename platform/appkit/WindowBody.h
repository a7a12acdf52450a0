#pragma once

#include "platform/appkit/NSWindow.h"
#include <QPointer>
#include <QWidget>

namespace mac {

class NSWindow::Body : public ObjectBody {
public:
    explicit Body(QWidget* widget = nullptr) : m_widget(widget) {}

    QWidget* widget() const { return m_widget; }

private:
    QPointer<QWidget> m_widget;
};

} // namespace mac
