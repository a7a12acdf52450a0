#include "platform/appkit/interface/TableViewBody.h"
#include "platform/appkit/arrangement/ArrayControllerBody.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/running/EventLoop.h"
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>

namespace mac {

namespace {

// The selected rows of a view, ascending.
std::vector<NSUInteger> rowsOf(QItemSelection const& selection) {
    std::vector<NSUInteger> rows;
    for (QItemSelectionRange const& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.push_back(static_cast<NSUInteger>(row));
    }
    std::ranges::sort(rows);
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

QItemSelection selectionOf(std::span<NSUInteger const> rows, QAbstractItemModel const& model) {
    QItemSelection selection;
    int const lastColumn = model.columnCount() - 1;
    for (std::size_t first = 0; first < rows.size();) {
        std::size_t next = first + 1;
        while (next < rows.size() && rows[next] == rows[next - 1] + 1)
            ++next;
        selection.append(QItemSelectionRange(model.index(static_cast<int>(rows[first]), 0),
                                             model.index(static_cast<int>(rows[next - 1]), lastColumn)));
        first = next;
    }
    return selection;
}

} // namespace

NSTableView::Body::Body(QTableView* view, std::vector<TableColumn> columns, NSArrayController const& controller)
    : NSControl::Body(view), m_view(view), m_controller(controller), m_model(std::move(columns)) {
    prepareView();
    connectView();
    auto const observe = [this](NSString const& key, void (Body::*follow)()) {
        m_observers.push_back(
            std::make_unique<KeyPathObserver>(m_controller, key, [this, follow] { (this->*follow)(); }));
    };
    observe("arrangedObjects", &Body::followRows);
    observe("selectedObjects", &Body::followSelection);
    observe("sortDescriptors", &Body::followOrder);
    followRows();
    showOrder();
}

NSTableView::Body::~Body() {
    if (!m_view) return;
    m_view->setModel(nullptr);
    m_view->horizontalHeader()->setStyle(nullptr);
}

void NSTableView::Body::prepareView() {
    m_model.setColorSource(m_view);
    m_view->setModel(&m_model);
    m_view->setItemDelegate(&m_delegate);
    QHeaderView* const rows = m_view->verticalHeader();
    rows->setSectionResizeMode(QHeaderView::Fixed);
    rows->setDefaultSectionSize(std::max(rows->minimumSectionSize(), m_view->fontMetrics().height() * 8 / 5));
    QHeaderView* const header = m_view->horizontalHeader();
    header->setStyle(&m_headerStyle);
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(true);
    header->setSortIndicator(-1, Qt::AscendingOrder);
    m_widths.emplace(m_view, m_model);
}

void NSTableView::Body::connectView() {
    QObject::connect(m_view->horizontalHeader(), &QHeaderView::sectionClicked, &m_connections,
                     [this](int column) { guarded([&] { sortByColumn(column); }); });
    QObject::connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, &m_connections,
                     [this] { guarded([&] { selectAsInView(); }); });
    // The row of the keyboard is marked as a whole.
    QObject::connect(m_view->selectionModel(), &QItemSelectionModel::currentRowChanged, m_view->viewport(),
                     qOverload<>(&QWidget::update));
    makeSortActions();
}

void NSTableView::Body::makeSortActions() {
    for (int column = 0; column < m_model.columnCount(); ++column) {
        TableColumn const& described = m_model.columns()[static_cast<std::size_t>(column)];
        if (described.sortDescriptor == nil) continue;
        auto sorting = std::make_unique<QAction>(QString(described.title).replace('&', "&&"), m_view);
        sorting->setCheckable(true);
        sorting->setData(column);
        if (column < LastShortcutColumn) sorting->setShortcut(QKeySequence(QString("Ctrl+%1").arg(column + 1)));
        QObject::connect(sorting.get(), &QAction::triggered, &m_connections,
                         [this, column] { guarded([&] { sortByColumn(column); }); });
        // Keys work also in a window that has no menu of them.
        m_view->window()->addAction(sorting.get());
        m_sortActions.append(sorting.release());
    }
}

void NSTableView::Body::setFileKeyPath(NSString const& keyPath) {
    m_model.setFileKeyPath(keyPath);
    if (!m_files) m_files.emplace(m_view, m_model);
}

void NSTableView::Body::copySelection() const {
    if (m_files) m_files->copySelection();
}

void NSTableView::Body::selectAll() const {
    if (m_view) m_view->selectAll();
}

void NSTableView::Body::setSortDescriptors(NSArray const& descriptors) {
    m_controller.setSortDescriptors_(descriptors);
}

void NSTableView::Body::sortByColumn(int column) {
    TableColumn const& described = m_model.columns()[static_cast<std::size_t>(column)];
    NSSortDescriptor const wanted = described.sortDescriptor;
    if (wanted == nil) return;
    std::vector<id> descriptors{wanted};
    NSArray const present = bodyOf(m_controller)->wantedSortDescriptors();
    for (NSUInteger i = 0; i < present.count(); ++i) {
        NSSortDescriptor const older = as<NSSortDescriptor>(present.objectAtIndex_(i));
        bool const isSameCriterion = wanted.key().isEqual_(older.key()) && wanted.selector() == older.selector();
        if (isSameCriterion && i == 0)
            descriptors[0] = older.reversedSortDescriptor();
        else if (!described.sortsLike(older))
            descriptors.push_back(older);
    }
    bodyOf(m_controller)->changeInSteps({.sortDescriptors = NSArray::arrayWithVector(std::move(descriptors))});
}

void NSTableView::Body::followOrder() {
    KeyChange const change(id::retain(this), "sortDescriptors");
    showOrder();
}

void NSTableView::Body::showOrder() {
    if (!m_view) return;
    NSArray const descriptors = m_controller.sortDescriptors();
    NSSortDescriptor const first =
        descriptors.count() == 0 ? NSSortDescriptor() : as<NSSortDescriptor>(descriptors.objectAtIndex_(0));
    auto const shown =
        std::ranges::find_if(m_model.columns(), [&](TableColumn const& column) { return column.sortsLike(first); });
    int const section = shown == m_model.columns().end() ? -1 : static_cast<int>(shown - m_model.columns().begin());
    for (QAction* const sorting : m_sortActions)
        sorting->setChecked(sorting->data().toInt() == section);
    m_view->horizontalHeader()->setSortIndicator(section, first.ascending() ? Qt::AscendingOrder : Qt::DescendingOrder);
}

void NSTableView::Body::followRows() {
    NSArray const rows = m_controller.arrangedObjects();
    if (!m_view || isSame(rows, m_shown)) return;
    {
        QScopedValueRollback<bool> const following(m_isFollowing, true);
        showRows(rows);
    }
    followSelection();
}

void NSTableView::Body::showRows(NSArray const& rows) {
    NSArrayController::Body const& controller = *bodyOf(m_controller);
    std::vector<bool> const stays = stayingRows();
    Anchor const kept = anchor(stays);
    // The view would go after the row of the keyboard, wherever that is.
    bool const autoScrolls = m_view->hasAutoScroll();
    m_view->setAutoScroll(false);
    bool const wasAtRest = isKeyboardAtRest();
    moveKeyboardToStayingRow(stays);
    bool const isNextChange = m_shown != nil && isSame(controller.previouslyArranged(), m_shown);
    if (isNextChange)
        m_model.replaceRows(rows, controller.previousRows());
    else
        m_model.resetRows(rows);
    m_shown = rows;
    // Rows that come are sorted above it, too.
    if (wasAtRest && m_view->currentIndex().isValid())
        m_view->selectionModel()->setCurrentIndex(m_model.index(0, m_view->currentIndex().column()),
                                                  QItemSelectionModel::NoUpdate);
    m_widths->fitChangedContents();
    restore(kept);
    m_view->setAutoScroll(autoScrolls);
}

std::vector<bool> NSTableView::Body::stayingRows() const {
    NSArrayController::Body const& controller = *bodyOf(m_controller);
    std::vector<bool> stays(static_cast<std::size_t>(m_model.rowCount()), false);
    if (m_shown == nil || !isSame(controller.previouslyArranged(), m_shown)) return stays;
    for (NSUInteger const row : controller.previousRows()) {
        if (row != NSNotFound) stays[row] = true;
    }
    return stays;
}

bool NSTableView::Body::isKeyboardAtRest() const {
    return m_view->currentIndex().isValid() && m_view->currentIndex().row() == 0 &&
           !m_view->selectionModel()->hasSelection();
}

// Where a row goes, the next one below takes the keyboard, as the eye expects it; else the next one above.
void NSTableView::Body::moveKeyboardToStayingRow(std::vector<bool> const& stays) {
    QModelIndex const current = m_view->currentIndex();
    if (!current.isValid()) return;
    auto const place = stays.begin() + current.row();
    auto const below = std::find(place, stays.end(), true);
    auto const above = std::find(std::make_reverse_iterator(place), stays.rend(), true);
    if (below == place || (below == stays.end() && above == stays.rend())) return;
    auto const taker = below != stays.end() ? below : std::prev(above.base());
    QModelIndex const index = m_model.index(static_cast<int>(taker - stays.begin()), current.column());
    m_view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
}

void NSTableView::Body::followSelection() {
    if (!m_view || m_isFollowing || !isSame(m_shown, m_controller.arrangedObjects())) return;
    std::span<NSUInteger const> const wanted = bodyOf(m_controller)->selectedRows();
    QItemSelectionModel* const selection = m_view->selectionModel();
    if (std::ranges::equal(rowsOf(selection->selection()), wanted)) return;
    QScopedValueRollback<bool> const following(m_isFollowing, true);
    if (!wanted.empty() && !selection->currentIndex().isValid())
        selection->setCurrentIndex(m_model.index(static_cast<int>(wanted.front()), 0), QItemSelectionModel::NoUpdate);
    selection->select(selectionOf(wanted, m_model), QItemSelectionModel::ClearAndSelect);
}

void NSTableView::Body::selectAsInView() {
    if (!m_isFollowing) bodyOf(m_controller)->setSelectedRows(rowsOf(m_view->selectionModel()->selection()));
}

// The row that keeps its place on the screen: the selected one where the user is, else the first one in sight of a
// scrolled table.
NSTableView::Body::Anchor NSTableView::Body::anchor(std::vector<bool> const& stays) const {
    QModelIndex const current = m_view->currentIndex();
    bool const isSelected = current.isValid() && m_view->selectionModel()->isSelected(current);
    if (isSelected && stays[static_cast<std::size_t>(current.row())]) {
        QRect const place = m_view->visualRect(current);
        bool const isSeen = place.bottom() >= 0 && place.top() < m_view->viewport()->height();
        if (isSeen) return {current, place.top()};
    }
    if (m_view->verticalScrollBar()->value() == 0) return {};
    auto const first = std::find(stays.begin() + std::max(m_view->rowAt(0), 0), stays.end(), true);
    if (first == stays.end()) return {};
    int const row = static_cast<int>(first - stays.begin());
    return {m_model.index(row, 0), m_view->rowViewportPosition(row)};
}

void NSTableView::Body::restore(Anchor const& anchor) {
    if (!anchor.index.isValid()) return;
    m_view->doItemsLayout();
    int const moved = m_view->rowViewportPosition(anchor.index.row()) - anchor.y;
    if (moved != 0) m_view->verticalScrollBar()->setValue(m_view->verticalScrollBar()->value() + moved);
}

} // namespace mac
