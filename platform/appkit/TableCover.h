#pragma once

#include <QObject>
#include <QPointer>
#include <QTableView>

namespace mac {

// Keeps a widget, such as the one that says why there are no rows, exactly over the rows of a table, so that the header
// stays within reach of the mouse; the widget offers the table's menu.
class TableCover : public QObject {
public:
    TableCover(QWidget* cover, QTableView* table);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void putInPlace();

    QPointer<QWidget> m_cover;
    QPointer<QTableView> m_table;
};

} // namespace mac
