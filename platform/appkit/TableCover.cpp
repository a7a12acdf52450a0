#include "platform/appkit/TableCover.h"
#include <QEvent>

namespace mac {

TableCover::TableCover(QWidget* cover, QTableView* table) : m_cover(cover), m_table(table) {
    cover->setContextMenuPolicy(Qt::ActionsContextMenu);
    cover->addActions(table->actions());
    cover->installEventFilter(this);
    table->viewport()->installEventFilter(this);
}

// The layout that both stand in gives them the same place again and again.
bool TableCover::eventFilter(QObject* watched, QEvent* event) {
    QEvent::Type const type = event->type();
    if (type == QEvent::Resize || type == QEvent::Move || type == QEvent::Show) putInPlace();
    return QObject::eventFilter(watched, event);
}

void TableCover::putInPlace() {
    if (!m_cover || !m_table) return;
    QWidget const* const rows = m_table->viewport();
    QPoint const corner = m_cover->parentWidget()->mapFromGlobal(rows->mapToGlobal(QPoint()));
    m_cover->setGeometry(QRect(corner, rows->size()));
}

} // namespace mac
