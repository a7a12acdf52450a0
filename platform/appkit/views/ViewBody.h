#pragma once

#include "platform/appkit/views/NSControl.h"
#include "platform/foundation/objects/Weak.h"
#include <QAction>
#include <QPointer>
#include <QWidget>

namespace mac {

// What is shown may go before the handle does. The geometry is the widget's as long as there is one.
class NSView::Body : public ObjectBody {
public:
    explicit Body(QWidget* widget = nullptr) : m_widget(widget) {}

    QWidget* widget() const { return m_widget; }

    NSRect frame() const;
    // Moves the view alone, without its subviews.
    void place(NSRect const& frame);
    NSArray subviews();
    // The superview knows the view already.
    void setSuperview(NSView const& superview) { m_superview = superview; }
    NSView superview() const { return m_superview.load(); }
    void add(NSView const& view);
    void remove(NSView const& view);

    NSUInteger autoresizingMask{NSViewNotSizable};

private:
    void adoptChildWidgets();

    QPointer<QWidget> m_widget;
    NSRect m_frame{};
    NSMutableArray m_subviews{NSMutableArray::array()};
    Weak<NSView> m_superview{};
};

// A view for a widget that the interface file made: a box for a group of widgets.
NSView viewOfWidget(QWidget* widget);

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
