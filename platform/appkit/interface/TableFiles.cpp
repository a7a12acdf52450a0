#include "platform/appkit/interface/TableFiles.h"
#include "platform/desktop/entries/DesktopApplication.h"
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

namespace {

QByteArray lineOfPath(std::string const& path) {
    QByteArray line;
    for (char const byte : path) {
        auto const code = static_cast<unsigned char>(byte);
        bool const isControl = code < 0x20 || code == 0x7F;
        if (isControl)
            line += '\\' + QByteArray::number(code, 8).rightJustified(3, '0');
        else
            line += byte;
    }
    return line;
}

// Qt would make text and URLs of the bytes, and text again of those.
class FileBytes : public QMimeData {
public:
    explicit FileBytes(std::vector<std::string> const& paths) {
        QByteArray text;
        QByteArray uris;
        QByteArray copied = "copy";
        for (std::string const& path : paths) {
            QByteArray const uri = QByteArray::fromStdString(fileURIOfPath(path));
            if (!text.isEmpty()) text += '\n';
            text += lineOfPath(path);
            uris += uri + "\r\n";
            copied += '\n' + uri;
        }
        setData("text/plain", text);
        setData("text/uri-list", uris);
        setData("x-special/gnome-copied-files", copied);
        m_uris = uris;
    }

protected:
    QVariant retrieveData(QString const& format, QMetaType type) const override {
        bool const isBytes = type.id() == QMetaType::QByteArray;
        if (isBytes && format == "text/uri-list") return m_uris;
        return QMimeData::retrieveData(format, type);
    }

private:
    QByteArray m_uris;
};

} // namespace

std::unique_ptr<QMimeData> mimeDataOfFiles(std::vector<std::string> const& paths) {
    return std::make_unique<FileBytes>(paths);
}

} // namespace mac
