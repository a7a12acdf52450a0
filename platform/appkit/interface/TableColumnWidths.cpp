#include "platform/appkit/interface/TableColumnWidths.h"
#include "platform/appkit/interface/TableCellDelegate.h"
#include "platform/appkit/interface/TableModel.h"
#include "platform/foundation/running/EventLoop.h"
#include <QEvent>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>
#include <algorithm>
#include <optional>
#include <utility>

namespace mac {

namespace {

// In characters of ordinary width: what a column grows to at most to fit its text, and what the filling one keeps at
// least.
constexpr int WidestFit = 40;
constexpr int NarrowestFill = 30;
constexpr int NarrowestSection = 30;
// The number of rows that count for the widths before any row is shown.
constexpr int FirstRows = 1000;
// With more rows, reading the paths of all of them would make the event that changed them noticeably longer.
constexpr int MostRowsAtOnce = 10'000;

} // namespace

TableColumnWidths::TableColumnWidths(QTableView* view, TableModel& model) : m_view(view), m_model(model) {
    setInitialWidths();
    view->viewport()->installEventFilter(this);
    view->horizontalHeader()->installEventFilter(this);
    connect(view->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { guarded([&] { fitVisible(); }); });
    connect(view->horizontalHeader(), &QHeaderView::sortIndicatorChanged, this, [this] { followOrder(); });
    connect(view->horizontalHeader(), &QHeaderView::sectionResized, this, [this](int section, int, int width) {
        takeChoice(section, width);
        choosePathExtents();
    });
}

bool TableColumnWidths::eventFilter(QObject* watched, QEvent* event) {
    bool const isOfHeader = m_view && watched == m_view->horizontalHeader();
    if (isOfHeader && (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)) {
        for (int section = 0; section < m_model.columnCount(); ++section)
            resize(section, std::max(m_view->horizontalHeader()->sectionSize(section), widthOfTitle(section)));
    }
    if (event->type() == QEvent::Resize) fillWidth();
    return QObject::eventFilter(watched, event);
}

int TableColumnWidths::widthForText(QString const& text) const {
    return m_view->fontMetrics().horizontalAdvance(shortenedText(text)) + 2 * TableCellMargin + 2;
}

int TableColumnWidths::widthOfTitle(int section) const {
    QHeaderView const* const header = m_view->horizontalHeader();
    QString const& title = m_model.columns()[static_cast<std::size_t>(section)].title;
    // The style draws the mark in a square as high as the header.
    bool const isMarked = header->isSortIndicatorShown() && header->sortIndicatorSection() == section;
    int const mark =
        std::max(header->sizeHint().height(), header->style()->pixelMetric(QStyle::PM_HeaderMarkSize, nullptr, header));
    return header->fontMetrics().horizontalAdvance(title) + 2 * TableCellMargin + 2 + (isMarked ? mark : 0);
}

int TableColumnWidths::widthOfIcon(int section) const {
    bool const hasIcon = m_model.columns()[static_cast<std::size_t>(section)].iconKeyPath != nil;
    return hasIcon ? TableIconSize + TableIconSpace : 0;
}

void TableColumnWidths::resize(int section, int width) {
    QScopedValueRollback<bool> const adjusting(m_isAdjusting, true);
    m_view->horizontalHeader()->resizeSection(section, width);
}

void TableColumnWidths::setInitialWidths() {
    m_view->horizontalHeader()->setMinimumSectionSize(NarrowestSection);
    for (int section = 0; section < m_model.columnCount(); ++section)
        resize(section, initialWidth(section));
    fillWidth();
}

int TableColumnWidths::initialWidth(int section) const {
    TableColumn const& column = m_model.columns()[static_cast<std::size_t>(section)];
    return std::max(widthOfTitle(section), widthForText(column.sample) + widthOfIcon(section));
}

// The column by which the rows are sorted needs room for the mark, which its predecessor no longer does.
void TableColumnWidths::followOrder() {
    if (!m_view) return;
    for (int section = 0; section < m_model.columnCount(); ++section) {
        TableColumn const& column = m_model.columns()[static_cast<std::size_t>(section)];
        bool const keepsWidth = m_chosen.contains(section) || column.fitsContents || column.fillsWidth;
        int const present = keepsWidth ? m_view->horizontalHeader()->sectionSize(section) : 0;
        int const least = m_chosen.contains(section) ? widthOfTitle(section) : initialWidth(section);
        resize(section, std::max(present, least));
    }
    fillWidth();
}

// The header tells of every new width; those that do not come from here are the user's.
void TableColumnWidths::takeChoice(int section, int width) {
    if (m_isAdjusting || !m_view) return;
    int const narrowest = widthOfTitle(section);
    if (width < narrowest) resize(section, narrowest);
    m_chosen.insert(section);
    fillWidth();
    if (m_whenChosen) m_whenChosen();
}

QMap<int, int> TableColumnWidths::chosenWidths() const {
    QMap<int, int> widths;
    if (!m_view) return widths;
    for (int const section : m_chosen)
        widths.insert(section, m_view->horizontalHeader()->sectionSize(section));
    return widths;
}

void TableColumnWidths::choose(QMap<int, int> const& widths) {
    if (!m_view) return;
    for (auto const& [section, width] : widths.asKeyValueRange()) {
        m_chosen.insert(section);
        resize(section, std::max(width, widthOfTitle(section)));
    }
    fillWidth();
}

void TableColumnWidths::reset() {
    if (!m_view) return;
    m_chosen.clear();
    m_measured.clear();
    setInitialWidths();
    fitContents();
}

// -1 if no column fills the width.
int TableColumnWidths::fillingSection() const {
    auto const filling = std::ranges::find(m_model.columns(), true, &TableColumn::fillsWidth);
    return filling == m_model.columns().end() ? -1 : static_cast<int>(filling - m_model.columns().begin());
}

int TableColumnWidths::narrowestFill() const {
    return std::max(NarrowestFill * m_view->fontMetrics().averageCharWidth(), widestPath(PathExtent::DifferingPart));
}

int TableColumnWidths::widthNeeded() const {
    if (!m_view) return 0;
    QHeaderView const* const header = m_view->horizontalHeader();
    int const frame = m_view->width() - m_view->viewport()->width();
    int const filling = fillingSection();
    if (filling < 0 || m_chosen.contains(filling)) return header->length() + frame;
    int const fill = header->sectionSize(filling);
    return header->length() - fill + std::min(fill, narrowestFill()) + frame;
}

void TableColumnWidths::fillWidth() {
    if (!m_view) return;
    int const section = fillingSection();
    if (section < 0 || m_chosen.contains(section)) return;
    QHeaderView* const header = m_view->horizontalHeader();
    int const others = header->length() - header->sectionSize(section);
    resize(section, std::max(m_view->viewport()->width() - others, narrowestFill()));
}

void TableColumnWidths::choosePathExtents() {
    if (!m_view) return;
    for (int section = 0; section < m_model.columnCount(); ++section) {
        if (!m_model.columns()[static_cast<std::size_t>(section)].elidesCommonPath) continue;
        int const width = m_view->horizontalHeader()->sectionSize(section);
        PathExtent extent = PathExtent::DifferingPart;
        for (PathExtent const larger : {PathExtent::WithoutCommonFolders, PathExtent::Whole})
            if (widestPath(larger) <= width) extent = larger;
        if (extent == m_model.pathExtent(section)) continue;
        m_model.setPathExtent(section, extent);
        m_view->viewport()->update();
    }
}

void TableColumnWidths::fitContents() {
    if (!m_view) return;
    m_widestPaths = {};
    m_widestDifference = 0;
    for (int section = 0; section < m_model.columnCount(); ++section) {
        if (m_model.columns()[static_cast<std::size_t>(section)].elidesCommonPath) m_model.commonPath(section);
    }
    fitRows(0, FirstRows);
    fitVisible();
}

void TableColumnWidths::fitChangedContents() {
    if (m_model.rowCount() <= MostRowsAtOnce) return fitContents();
    if (!std::exchange(m_fitsLater, true)) fitLater();
}

void TableColumnWidths::fitLater() {
    QTimer::singleShot(0, this, [this] {
        if (m_view && !m_model.findCommonPaths(MostRowsAtOnce)) return fitLater();
        m_fitsLater = false;
        guarded([this] { fitContents(); });
        // Paths were painted whole until now.
        if (m_view) m_view->viewport()->update();
    });
}

void TableColumnWidths::fitVisible() {
    if (!m_view) return;
    fitRows(m_view->rowAt(0), m_view->viewport()->height() / m_view->verticalHeader()->defaultSectionSize() + 1);
    fillWidth();
    choosePathExtents();
}

void TableColumnWidths::fitRows(int first, int count) {
    int const begin = std::max(first, 0);
    int const end = std::min(begin + count, m_model.rowCount());
    for (int section = 0; section < m_model.columnCount(); ++section) {
        TableColumn const& column = m_model.columns()[static_cast<std::size_t>(section)];
        for (int row = begin; row < end && column.fitsContents; ++row)
            fitCell(row, section);
        for (int row = begin; row < end && column.elidesCommonPath; ++row)
            fitPath(row, section);
    }
}

void TableColumnWidths::fitCell(int row, int section) {
    QString const text = m_model.index(row, section).data().toString();
    QFontMetrics const metrics = m_view->fontMetrics();
    int const width = m_view->horizontalHeader()->sectionSize(section);
    bool const fitsSurely = text.size() * metrics.maxWidth() + widthOfIcon(section) < width;
    if (fitsSurely || m_measured.contains(text) || m_chosen.contains(section)) return;
    m_measured.insert(text);
    int const wanted = std::min(widthForText(text), WidestFit * metrics.averageCharWidth()) + widthOfIcon(section);
    if (wanted > width) resize(section, wanted);
}

void TableColumnWidths::fitPath(int row, int section) {
    // Scrolling does not read all rows: those that have just changed are fitted soon.
    std::optional<CommonPath> const known = m_model.knownCommonPath(section);
    if (!known) return;
    CommonPath const common = *known;
    QString const path = m_model.index(row, section).data().toString();
    qsizetype const differing = path.size() - common.start - common.end;
    // All others have the common folders and names in common with it.
    bool const fitsSurely = differing > 0 && differing * m_view->fontMetrics().maxWidth() < m_widestDifference;
    // A single path differs from no other, and needs no width.
    if (fitsSurely || differingPart(path, common) == path) return;
    if (differing > 0)
        m_widestDifference =
            std::max(m_widestDifference, m_view->fontMetrics().horizontalAdvance(path.mid(common.start, differing)));
    for (PathExtent const extent : {PathExtent::Whole, PathExtent::WithoutCommonFolders, PathExtent::DifferingPart})
        widestPath(extent) =
            std::max(widestPath(extent), widthForText(shownPath(path, common, extent)) + widthOfIcon(section));
}

} // namespace mac
