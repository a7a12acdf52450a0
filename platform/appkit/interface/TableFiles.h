#pragma once

#include "platform/appkit/interface/TableModel.h"
#include <QMimeData>
#include <QObject>
#include <QPointer>
#include <QTableView>
#include <memory>
#include <string>
#include <vector>

namespace mac {

// The rows of a table that stand for files: they are dragged out, to be copied or linked and never moved, and copied to
// the clipboard. The model says which file a row is.
class TableFiles : public QObject {
public:
    // REQUIRES: view and model outlive this object, or the view is destroyed first.
    TableFiles(QTableView* view, TableModel const& model);

    // Puts the selected rows on the clipboard, in their order; without any the clipboard stays as it is.
    void copySelection() const;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QPointer<QTableView> m_view;
    TableModel const& m_model;
};

// Files as other programs take them from the clipboard or from a drag: text/uri-list, x-special/gnome-copied-files (to
// be copied) and, for editors and terminals, the paths as text, one a line. Paths are bytes and stay what they are,
// also where they are no UTF-8; in the text alone a control character is a backslash and three octal digits, since a
// terminal would take a line break in a name for the end of a command.
std::unique_ptr<QMimeData> mimeDataOfFiles(std::vector<std::string> const& paths);

} // namespace mac
