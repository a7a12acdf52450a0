#include "platform/appkit/interface/ContextMenuKeys.h"
#include <QApplication>
#include <QContextMenuEvent>
#include <QPointer>
#include <QShortcut>
#include <QTableView>
#include <memory>

namespace mac {

namespace {

// Where the keyboard is in a widget, by the widget's own coordinates.
QPoint keyboardPlace(QWidget const* widget) {
    auto const* const table = qobject_cast<QTableView const*>(widget);
    if (!table) return widget->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    QRect const sight = table->viewport()->rect();
    QRect const row = table->visualRect(table->currentIndex()) & sight;
    QPoint const place = row.isValid() ? row.center() : sight.topLeft();
    return table->viewport()->mapTo(table, place);
}

void openContextMenu(QWidget* widget) {
    QPoint const place = keyboardPlace(widget);
    QContextMenuEvent event(QContextMenuEvent::Keyboard, place, widget->mapToGlobal(place));
    QApplication::sendEvent(widget, &event);
}

// The toolkit's own place for what the menu key opens is the middle of the table, or worse.
class MenuKeyInTable : public QObject {
public:
    explicit MenuKeyInTable(QTableView* table) : QObject(table), m_table(table) { table->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched != m_table || event->type() != QEvent::ContextMenu || m_isOpening)
            return QObject::eventFilter(watched, event);
        if (static_cast<QContextMenuEvent*>(event)->reason() != QContextMenuEvent::Keyboard) return false;
        QPointer<MenuKeyInTable> const alive(this);
        m_isOpening = true;
        // Returns when the menu is closed; what was chosen in it may have ended the window.
        openContextMenu(m_table);
        if (alive) m_isOpening = false;
        return true;
    }

private:
    QTableView* m_table;
    bool m_isOpening{false};
};

} // namespace

void openContextMenusByKeys(QWidget* window) {
    // The window owns it.
    auto shortcut = std::make_unique<QShortcut>(QKeySequence(Qt::SHIFT | Qt::Key_F10), window);
    shortcut->setAutoRepeat(false);
    QObject::connect(shortcut.release(), &QShortcut::activated, window, [] {
        if (QWidget* const widget = QApplication::focusWidget()) openContextMenu(widget);
    });
    for (QTableView* const table : window->findChildren<QTableView*>())
        (void)std::make_unique<MenuKeyInTable>(table).release();
}

} // namespace mac
