#pragma once

#include "platform/appkit/arrangement/NSArrayController.h"
#include "platform/appkit/interface/InterfaceIcons.h"
#include "platform/appkit/interface/PathElision.h"
#include "platform/appkit/interface/TableColumn.h"
#include <QAbstractTableModel>
#include <QPointer>
#include <QWidget>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace mac {

// Columns up to this one have a shortcut that sorts by them.
inline constexpr int LastShortcutColumn = 9;

// The arranged objects of an array controller as rows. Values are read when they are shown. Replacing the rows moves,
// removes and adds as little as tells views what happened, so that they keep their selection.
class TableModel : public QAbstractTableModel {
public:
    explicit TableModel(std::vector<TableColumn> columns) : m_columns(std::move(columns)) {}

    std::vector<TableColumn> const& columns() const { return m_columns; }
    id const& objectAt(int row) const { return m_rows[static_cast<std::size_t>(row)]; }
    // Cells take their colours from the widget's palette, whatever it is by then.
    void setColorSource(QWidget const* widget) { m_colorSource = widget; }

    // The key path of the file that a row stands for; nil, as at first: rows are no files and cannot be dragged.
    void setFileKeyPath(NSString const& keyPath) { m_fileKeyPath = keyPath; }
    // The files of the rows, one for each row, from the top. A row without a path that the file system can have is left
    // out.
    std::vector<std::string> pathsOf(std::vector<int> rows) const;

    // What the paths of all rows have in common in a column that leaves it out; nothing in other columns. The first
    // call after the rows have changed reads all of them.
    CommonPath commonPath(int section) const;
    // Reads at most so many rows for commonPath(), on from where the last call ended; true once it is found. Rows that
    // change meanwhile are read anew.
    bool findCommonPaths(std::size_t rows) const;
    // The common path that commonPath() found since the rows last changed; nullopt if it has not. Reads no row.
    std::optional<CommonPath> knownCommonPath(int section) const;
    // How much of their paths the cells of such a column show; at first all.
    PathExtent pathExtent(int section) const;
    void setPathExtent(int section, PathExtent extent);

    // Shows these rows from now on; previousRows says where each stood, NSNotFound for a new one.
    void replaceRows(NSArray const& rows, std::span<NSUInteger const> previousRows);
    // Shows these rows, whatever stood there before.
    void resetRows(NSArray const& rows);

    int rowCount(QModelIndex const& parent = {}) const override;
    int columnCount(QModelIndex const& parent = {}) const override;
    QVariant data(QModelIndex const& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(QModelIndex const& index) const override;
    // Files are dragged out to be copied or linked, never to be moved.
    Qt::DropActions supportedDragActions() const override { return Qt::CopyAction | Qt::LinkAction; }
    QStringList mimeTypes() const override;
    QMimeData* mimeData(QModelIndexList const& indexes) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    // How far the common paths of the rows have been found, column after column.
    struct CommonPathSearch {
        // How often the rows had changed when it began.
        std::uint64_t changes;
        std::vector<CommonPath> found;
        std::size_t section{0};
        std::size_t row{0};
        CommonPathFinder finder{};
    };

    // False while rows of the column are left.
    bool readPaths(CommonPathSearch& search, std::size_t& rows) const;
    QVariant cell(id const& object, TableColumn const& column, int role) const;
    void reorder(std::vector<int> const& newRowOf);

    std::vector<TableColumn> m_columns;
    std::vector<id> m_rows;
    // Found on first need, so that reading all rows for it is no part of the event that changed them.
    mutable std::vector<CommonPath> m_commonPaths;
    // How often the rows have changed, now and when the common paths were found.
    std::uint64_t m_changes{0};
    mutable std::optional<std::uint64_t> m_changesWhenFound;
    mutable std::optional<CommonPathSearch> m_commonPathSearch;
    mutable bool m_isFindingCommonPaths{false};
    std::vector<PathExtent> m_pathExtents = std::vector<PathExtent>(m_columns.size(), PathExtent::Whole);
    NSString m_fileKeyPath;
    QPointer<QWidget const> m_colorSource;
    // Columns whose value could not be read, so that it is logged once for each change and not for each painting.
    mutable std::vector<bool> m_isBroken;
    mutable BundleIcons m_icons;
};

} // namespace mac
