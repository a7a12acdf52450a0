#pragma once

#include "platform/appkit/interface/TableModel.h"
#include <QObject>
#include <QPointer>
#include <QTableView>

namespace mac {

// The rows of a table that stand for files: they are dragged out, to be copied or linked and never moved, and copied to
// the clipboard. The model says which file a row is.
class TableFiles : public QObject {
public:
    // Both outlive it, or the view is gone.
    TableFiles(QTableView* view, TableModel const& model);

    // Puts the selected rows on the clipboard, in their order; without any the clipboard stays as it is.
    void copySelection() const;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QPointer<QTableView> m_view;
    TableModel const& m_model;
};

} // namespace mac
