#include "platform/appkit/interface/TableFiles.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QTest>
#include <gtest/gtest.h>

// The rows as files: on the clipboard and in a drag.

namespace mac::test {
namespace {

class WindowFiles : public testing::Test {
protected:
    WindowFiles() { clipboard()->clear(); }
    ~WindowFiles() override { clipboard()->clear(); }

    static QClipboard* clipboard() { return QGuiApplication::clipboard(); }
    static std::string bytes(QMimeData const* data, char const* format) { return data->data(format).toStdString(); }
    void copyByKey(QWidget* place) const { QTest::keyClick(place, Qt::Key_C, Qt::ControlModifier); }
    void show(std::initializer_list<std::string> paths) const {
        NSMutableSet const records = NSMutableSet::set();
        for (std::string const& path : paths)
            records.addObject_(makeRecord(NSString::stringWithFileSystemRepresentation_(path)));
        m_window.controller().setPaths_(records);
    }

    LoadedWindow const m_window{};
};

TEST_F(WindowFiles, AreCopiedAsTextAndAsFilesToPaste) {
    show({"/a b", "/c"});
    m_window.table()->selectAll();
    copyByKey(m_window.table());
    QMimeData const* const data = clipboard()->mimeData();
    EXPECT_EQ(bytes(data, "text/plain"), "/a b\n/c");
    EXPECT_EQ(bytes(data, "text/uri-list"), "file:///a%20b\r\nfile:///c\r\n");
    EXPECT_EQ(bytes(data, "x-special/gnome-copied-files"), "copy\nfile:///a%20b\nfile:///c");
    EXPECT_EQ(data->urls().size(), 2);
}

TEST_F(WindowFiles, KeepBytesThatAreNoText) {
    show({"/caf\xE9/%41\n\xE2\x82\xAC"});
    m_window.selectRow(0);
    copyByKey(m_window.table());
    QMimeData const* const data = clipboard()->mimeData();
    EXPECT_EQ(bytes(data, "text/plain"), "/caf\xE9/%41\\012\xE2\x82\xAC") << "no line break for a terminal";
    std::string const uri = "file:///caf%E9/%2541%0A%E2%82%AC";
    EXPECT_EQ(bytes(data, "text/uri-list"), uri + "\r\n");
    EXPECT_EQ(bytes(data, "x-special/gnome-copied-files"), "copy\n" + uri);
}

TEST_F(WindowFiles, AreCopiedWhereverTheKeyboardIsInTheWindow) {
    show({"/a"});
    m_window.selectRow(0);
    copyByKey(m_window.find<QWidget>("copyToolBar"));
    EXPECT_EQ(bytes(clipboard()->mimeData(), "text/plain"), "/a");
}

TEST_F(WindowFiles, LeaveTheTextOfAFieldToItsOwnKey) {
    show({"/a"});
    m_window.selectRow(0);
    auto* const field = m_window.find<QLineEdit>("filterField");
    field->setText("a");
    field->setFocus();
    field->selectAll();
    copyByKey(field);
    EXPECT_EQ(clipboard()->text(), "a");
    EXPECT_FALSE(clipboard()->mimeData()->hasFormat("text/uri-list"));
}

TEST_F(WindowFiles, LeaveTheClipboardAloneWithoutASelection) {
    show({"/a"});
    m_window.table()->setCurrentIndex(m_window.table()->model()->index(0, VersionColumn));
    m_window.table()->clearSelection();
    clipboard()->setText("kept");
    EXPECT_FALSE(m_window.action("copyPathsAction")->isEnabled());
    copyByKey(m_window.table());
    EXPECT_EQ(clipboard()->text(), "kept");
}

TEST_F(WindowFiles, AreDraggedOutAsCopiesOrLinksAndNeverMoved) {
    show({"/a", "/b", "/c"});
    QTableView const* const table = m_window.table();
    QAbstractItemModel const& model = *table->model();
    EXPECT_TRUE(table->dragEnabled());
    EXPECT_EQ(table->dragDropMode(), QAbstractItemView::DragOnly);
    EXPECT_EQ(model.supportedDragActions(), Qt::CopyAction | Qt::LinkAction);
    EXPECT_TRUE(model.index(0, PathColumn).flags().testFlag(Qt::ItemIsDragEnabled));
    EXPECT_FALSE(model.index(0, PathColumn).flags().testFlag(Qt::ItemIsDropEnabled));
    QModelIndexList cells;
    for (int const row : {2, 0})
        for (int column = 0; column < model.columnCount(); ++column)
            cells.append(model.index(row, column));
    std::unique_ptr<QMimeData> const data(model.mimeData(cells));
    ASSERT_TRUE(data);
    EXPECT_EQ(bytes(data.get(), "text/uri-list"), "file:///a\r\nfile:///c\r\n");
}

TEST_F(WindowFiles, LeaveOutARowWithoutAPath) {
    NSMutableDictionary const record = makeRecord("/a");
    record.removeObjectForKey_("path");
    m_window.controller().setPaths_(NSSet::setWithObject_(record));
    QAbstractItemModel const& model = *m_window.table()->model();
    EXPECT_FALSE(model.mimeData({model.index(0, 0)}));
}

} // namespace
} // namespace mac::test
