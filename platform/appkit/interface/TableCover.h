#pragma once

#include <QObject>
#include <QPointer>
#include <QTableView>

namespace mac {

// Keeps a widget, such as the one that says why there are no rows, exactly over the rows of a table, so that the header
// stays within reach of the mouse; the widget offers the table's menu. While it is shown, the keyboard is never in the
// table below: what is in the widget has it, or the widget itself, until there are rows again.
class TableCover : public QObject {
public:
    // Hides the cover until it is made visible.
    TableCover(QWidget* cover, QTableView* table);

    void setVisible(bool isVisible);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void putInPlace();
    QWidget* keyboardPlace() const;

    QPointer<QWidget> m_cover;
    QPointer<QTableView> m_table;
};

} // namespace mac
