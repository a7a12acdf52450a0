#include "platform/appkit/interface/TableFiles.h"
#include "platform/appkit/interface/FileMimeData.h"
#include <QClipboard>
#include <QGuiApplication>
#include <QItemSelectionModel>
#include <QKeyEvent>

namespace mac {

TableFiles::TableFiles(QTableView* view, TableModel const& model) : m_view(view), m_model(model) {
    view->setDragEnabled(true);
    view->setDragDropMode(QAbstractItemView::DragOnly);
    view->setDefaultDropAction(Qt::CopyAction);
    view->installEventFilter(this);
}

void TableFiles::copySelection() const {
    if (!m_view) return;
    std::vector<int> rows;
    // Asking for each row whether it is selected would take the square of the time.
    for (QItemSelectionRange const& range : m_view->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.push_back(row);
    }
    std::vector<std::string> const paths = m_model.pathsOf(std::move(rows));
    // The clipboard owns it.
    if (!paths.empty()) QGuiApplication::clipboard()->setMimeData(mimeDataOfFiles(paths).release());
}

// A view copies the text of the cell with the keyboard by itself, also where no row is selected.
bool TableFiles::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QObject::eventFilter(watched, event);
    if (!static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) return QObject::eventFilter(watched, event);
    copySelection();
    return true;
}

} // namespace mac
