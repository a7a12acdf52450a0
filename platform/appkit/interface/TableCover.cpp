#include "platform/appkit/interface/TableCover.h"
#include <QEvent>
#include <QVariant>
#include <algorithm>

namespace mac {

namespace {

// How many widgets cover a table: a dynamic property of the table.
constexpr char CoverCount[] = "coverCount";

} // namespace

TableCover::TableCover(QWidget* cover, QTableView* table) : m_cover(cover), m_table(table) {
    cover->setContextMenuPolicy(Qt::ActionsContextMenu);
    cover->addActions(table->actions());
    cover->installEventFilter(this);
    table->viewport()->installEventFilter(this);
    cover->hide();
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

QWidget* TableCover::keyboardPlace() const {
    QList<QWidget*> const parts = m_cover->findChildren<QWidget*>();
    auto const place = std::ranges::find_if(parts, [](QWidget const* part) {
        return part->focusPolicy() & Qt::TabFocus && part->isEnabled() && !part->isHidden();
    });
    return place == parts.end() ? m_cover.data() : *place;
}

void TableCover::setVisible(bool isVisible) {
    if (!m_cover || !m_table || m_cover->isHidden() == !isVisible) return;
    QWidget const* const keyboard = m_table->window()->focusWidget();
    int const count = std::max(m_table->property(CoverCount).toInt() + (isVisible ? 1 : -1), 0);
    m_table->setProperty(CoverCount, count);
    bool const wasInCover = keyboard && (keyboard == m_cover || m_cover->isAncestorOf(keyboard));
    bool const wasInTable = keyboard == m_table;
    // A widget that is hidden hands the keyboard on to whatever comes next.
    m_table->setFocusPolicy(count > 0 ? Qt::NoFocus : Qt::StrongFocus);
    if (!isVisible && wasInCover && count == 0) m_table->setFocus(Qt::OtherFocusReason);
    m_cover->setVisible(isVisible);
    if (isVisible && wasInTable) keyboardPlace()->setFocus(Qt::OtherFocusReason);
}

} // namespace mac
