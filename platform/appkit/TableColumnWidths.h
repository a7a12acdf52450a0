#pragma once

#include <QObject>
#include <QPointer>
#include <QSet>
#include <QTableView>

namespace mac {

class TableModel;

// The widths of a table's columns: each starts wide enough for its title and its sample, those that fit their contents
// grow with what arrives, and one that fills the width takes what the others leave, but never too little to read.
class TableColumnWidths : public QObject {
public:
    // Both outlive it, or the view is gone.
    TableColumnWidths(QTableView* view, TableModel const& model);

    // Looks at the first rows and at those on the screen; scrolling looks at those that come into sight.
    void fitContents();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setInitialWidths();
    void fitRows(int first, int count);
    void fitCell(int row, int section);
    void fillWidth();
    int widthForText(QString const& text) const;
    int widthOfIcon(int section) const;

    QPointer<QTableView> m_view;
    TableModel const& m_model;
    QSet<QString> m_measured;
};

} // namespace mac
