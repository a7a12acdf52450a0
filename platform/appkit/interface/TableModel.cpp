#include "platform/appkit/interface/TableModel.h"
#include "platform/appkit/arrangement/KeptOrder.h"
#include "platform/appkit/interface/TableFiles.h"
#include "platform/appkit/interface/ThemeColors.h"
#include "platform/appkit/interface/VisibleText.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/system/BytePath.h"
#include <QCoreApplication>
#include <QScopedValueRollback>
#include <algorithm>

namespace mac {

namespace {

constexpr int Gone = -1;

} // namespace

int TableModel::rowCount(QModelIndex const& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int TableModel::columnCount(QModelIndex const& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant TableModel::data(QModelIndex const& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    std::size_t const number = static_cast<std::size_t>(index.column());
    m_isBroken.resize(m_columns.size());
    if (m_isBroken[number]) return {};
    QVariant result;
    m_isBroken[number] = true;
    guarded([&] {
        result = cell(objectAt(index.row()), m_columns[number], role);
        m_isBroken[number] = false;
    });
    return result;
}

QVariant TableModel::cell(id const& object, TableColumn const& column, int role) const {
    switch (role) {
    case Qt::DisplayRole:
        return column.textOf(object);
    case Qt::DecorationRole:
        return column.iconKeyPath == nil ? QVariant() : m_icons.iconOfBundle(column.iconPathOf(object));
    case Qt::ToolTipRole:
        return column.fillsWidth || column.fitsContents ? plainToolTip(column.textOf(object)) : QVariant();
    case Qt::ForegroundRole: {
        NSColor const color = column.colorOf(object);
        if (color == nil) return {};
        return colorInTheme(color, m_colorSource ? m_colorSource->palette() : QPalette());
    }
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(
            Qt::Alignment(Qt::AlignVCenter | (column.isCentered ? Qt::AlignHCenter : Qt::AlignLeft)));
    default:
        return {};
    }
}

Qt::ItemFlags TableModel::flags(QModelIndex const& index) const {
    Qt::ItemFlags const flags = QAbstractTableModel::flags(index);
    return m_fileKeyPath == nil || !index.isValid() ? flags : flags | Qt::ItemIsDragEnabled;
}

std::vector<std::string> TableModel::pathsOf(std::vector<int> rows) const {
    std::ranges::sort(rows);
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    std::vector<std::string> paths;
    if (m_fileKeyPath == nil) return paths;
    guarded([&] {
        for (int const row : rows) {
            NSString const path = as<NSString>(valueOfKeyPath(objectAt(row), m_fileKeyPath));
            if (std::optional<std::string> const bytes = path.fileSystemRepresentation())
                paths.emplace_back(BytePath(*bytes).bytes());
        }
    });
    return paths;
}

QStringList TableModel::mimeTypes() const { return mimeDataOfFiles({})->formats(); }

QMimeData* TableModel::mimeData(QModelIndexList const& indexes) const {
    std::vector<int> rows;
    for (QModelIndex const& index : indexes)
        rows.push_back(index.row());
    std::vector<std::string> const paths = pathsOf(std::move(rows));
    // The drag owns it.
    return paths.empty() ? nullptr : mimeDataOfFiles(paths).release();
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
    TableColumn const& column = m_columns[static_cast<std::size_t>(section)];
    switch (role) {
    case Qt::DisplayRole:
        return column.title;
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(
            Qt::Alignment(Qt::AlignVCenter | (column.isCentered ? Qt::AlignHCenter : Qt::AlignLeft)));
    case Qt::ToolTipRole: {
        if (column.sortDescriptor == nil) return {};
        QString const tip = QCoreApplication::translate("Framekeeper", "Sort by %1").arg(column.title);
        return section < LastShortcutColumn ? plainToolTip(QString("%1 (Ctrl+%2)").arg(tip).arg(section + 1)) : tip;
    }
    default:
        return {};
    }
}

CommonPath TableModel::commonPath(int section) const {
    findCommonPaths(SIZE_MAX);
    return knownCommonPath(section).value_or(CommonPath());
}

std::optional<CommonPath> TableModel::knownCommonPath(int section) const {
    if (m_changesWhenFound != m_changes) return std::nullopt;
    std::size_t const number = static_cast<std::size_t>(section);
    return number < m_commonPaths.size() ? m_commonPaths[number] : CommonPath();
}

PathExtent TableModel::pathExtent(int section) const {
    std::size_t const number = static_cast<std::size_t>(section);
    return number < m_pathExtents.size() ? m_pathExtents[number] : PathExtent::Whole;
}

void TableModel::setPathExtent(int section, PathExtent extent) {
    m_pathExtents[static_cast<std::size_t>(section)] = extent;
}

// Reading a value may do anything, and what rows that have changed meanwhile have in common is another.
bool TableModel::findCommonPaths(std::size_t rows) const {
    if (m_changesWhenFound == m_changes) return true;
    if (m_isFindingCommonPaths) return false;
    QScopedValueRollback<bool> const finding(m_isFindingCommonPaths, true);
    bool const isBegun = m_commonPathSearch && m_commonPathSearch->changes == m_changes;
    if (!isBegun)
        m_commonPathSearch = CommonPathSearch{.changes = m_changes, .found = std::vector<CommonPath>(m_columns.size())};
    CommonPathSearch& search = *m_commonPathSearch;
    for (; search.section < m_columns.size(); ++search.section) {
        if (m_columns[search.section].elidesCommonPath && !readPaths(search, rows)) return false;
    }
    m_commonPaths = std::move(search.found);
    m_changesWhenFound = search.changes;
    m_commonPathSearch.reset();
    return true;
}

// A text for the screen has as many code units as the path.
bool TableModel::readPaths(CommonPathSearch& search, std::size_t& rows) const {
    bool isInterrupted = false;
    guarded([&] {
        for (; search.changes == m_changes && search.row < m_rows.size() && !search.finder.isEmpty(); ++search.row) {
            isInterrupted = rows == 0;
            if (isInterrupted) return;
            --rows;
            id const object = m_rows[search.row];
            search.finder.add(as<NSString>(valueOfKeyPath(object, m_columns[search.section].keyPath)).codeUnits());
        }
        isInterrupted = search.changes != m_changes;
        search.found[search.section] = search.finder.result();
    });
    if (isInterrupted) return false;
    search.finder = {};
    search.row = 0;
    return true;
}

void TableModel::resetRows(NSArray const& rows) {
    beginResetModel();
    m_isBroken.clear();
    m_rows.assign(rows.begin(), rows.end());
    ++m_changes;
    endResetModel();
}

// The steps: those that go are moved to the end and removed, the new ones are added at the end, and all move to their
// places.
void TableModel::replaceRows(NSArray const& rows, std::span<NSUInteger const> previousRows) {
    std::size_t const count = previousRows.size();
    m_isBroken.clear();
    std::vector<int> newRowOf(m_rows.size(), Gone);
    for (std::size_t row = 0; row < count; ++row) {
        if (previousRows[row] != NSNotFound) newRowOf[previousRows[row]] = static_cast<int>(row);
    }

    int const stayingCount =
        static_cast<int>(newRowOf.size() - static_cast<std::size_t>(std::ranges::count(newRowOf, Gone)));
    std::vector<int> staying;
    std::vector<int> step(newRowOf.size());
    int firstGone = stayingCount;
    for (std::size_t row = 0; row < newRowOf.size(); ++row) {
        step[row] = newRowOf[row] == Gone ? firstGone++ : static_cast<int>(staying.size());
        if (newRowOf[row] != Gone) staying.push_back(newRowOf[row]);
    }
    reorder(step);
    if (firstGone > stayingCount) {
        beginRemoveRows({}, stayingCount, firstGone - 1);
        m_rows.resize(staying.size());
        ++m_changes;
        endRemoveRows();
    }

    bool isChanged = false;
    id const* const objects = rows.begin();
    for (std::size_t row = 0; row < staying.size(); ++row) {
        id const& object = objects[staying[row]];
        isChanged = isChanged || !isSame(object, m_rows[row]);
        m_rows[row] = object;
    }
    ++m_changes;
    if (count > staying.size()) {
        beginInsertRows({}, stayingCount, static_cast<int>(count) - 1);
        for (std::size_t row = 0; row < count; ++row) {
            if (previousRows[row] != NSNotFound) continue;
            m_rows.push_back(objects[row]);
            staying.push_back(static_cast<int>(row));
        }
        ++m_changes;
        endInsertRows();
    }
    reorder(staying);
    if (isChanged) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

void TableModel::reorder(std::vector<int> const& newRowOf) {
    if (std::ranges::is_sorted(newRowOf)) return;
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    std::vector<id> moved(m_rows.size());
    for (std::size_t row = 0; row < m_rows.size(); ++row)
        moved[static_cast<std::size_t>(newRowOf[row])] = std::move(m_rows[row]);
    m_rows = std::move(moved);
    QModelIndexList const from = persistentIndexList();
    QModelIndexList to;
    to.reserve(from.size());
    for (QModelIndex const& old : from)
        to.append(index(newRowOf[static_cast<std::size_t>(old.row())], old.column()));
    changePersistentIndexList(from, to);
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

} // namespace mac
