#pragma once

#include "platform/appkit/NSControl.h"
#include "platform/foundation/Weak.h"
#include <QAction>
#include <QPointer>
#include <QWidget>

namespace mac {

// What is shown may go before the handle does.
class NSView::Body : public ObjectBody {
public:
    explicit Body(QWidget* widget = nullptr) : m_widget(widget) {}

    QWidget* widget() const { return m_widget; }

private:
    QPointer<QWidget> m_widget;
};

// Stands for a widget, or for an action that several buttons and menus share.
class NSControl::Body : public NSView::Body {
public:
    explicit Body(QWidget* widget = nullptr, QAction* sharedAction = nullptr)
        : NSView::Body(widget), m_sharedAction(sharedAction) {}

    QAction* sharedAction() const { return m_sharedAction; }

    WeakReference target;
    SEL action;

private:
    QPointer<QAction> m_sharedAction;
};

} // namespace mac
