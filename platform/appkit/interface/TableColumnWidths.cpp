#include "platform/appkit/interface/TableColumnWidths.h"
#include "platform/appkit/interface/TableCellDelegate.h"
#include "platform/appkit/interface/TableModel.h"
#include "platform/foundation/objects/Boundary.h"
#include <QEvent>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyle>
#include <algorithm>

namespace mac {

namespace {

// In characters of ordinary width: what a column grows to at most to fit its text, and what the filling one keeps at
// least.
constexpr int WidestFit = 40;
constexpr int NarrowestFill = 30;
constexpr int NarrowestSection = 30;
// The space beside a title for the mark of the order, in pixels.
constexpr int SortMark = 16;
// So many rows count for the widths before anybody looks at them.
constexpr int FirstRows = 1000;

} // namespace

TableColumnWidths::TableColumnWidths(QTableView* view, TableModel const& model) : m_view(view), m_model(model) {
    setInitialWidths();
    view->viewport()->installEventFilter(this);
    view->horizontalHeader()->installEventFilter(this);
    connect(view->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { guarded([&] { fitVisible(); }); });
    connect(view->horizontalHeader(), &QHeaderView::sectionResized, this,
            [this](int section, int, int width) { takeChoice(section, width); });
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
    int const mark = std::max(SortMark, header->style()->pixelMetric(QStyle::PM_HeaderMarkSize, nullptr, header));
    return header->fontMetrics().horizontalAdvance(title) + 2 * TableCellMargin + 2 + mark;
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
    for (int section = 0; section < m_model.columnCount(); ++section) {
        TableColumn const& column = m_model.columns()[static_cast<std::size_t>(section)];
        resize(section, std::max(widthOfTitle(section), widthForText(column.sample) + widthOfIcon(section)));
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

void TableColumnWidths::fillWidth() {
    if (!m_view) return;
    auto const filling = std::ranges::find(m_model.columns(), true, &TableColumn::fillsWidth);
    if (filling == m_model.columns().end()) return;
    QHeaderView* const header = m_view->horizontalHeader();
    int const section = static_cast<int>(filling - m_model.columns().begin());
    if (m_chosen.contains(section)) return;
    int const others = header->length() - header->sectionSize(section);
    int const narrowest = std::max(NarrowestFill * m_view->fontMetrics().averageCharWidth(), m_widestPath);
    resize(section, std::max(m_view->viewport()->width() - others, narrowest));
}

void TableColumnWidths::fitContents() {
    if (!m_view) return;
    m_widestPath = 0;
    fitRows(0, FirstRows);
    fitVisible();
}

void TableColumnWidths::fitVisible() {
    if (!m_view) return;
    fitRows(m_view->rowAt(0), m_view->viewport()->height() / m_view->verticalHeader()->defaultSectionSize() + 1);
    fillWidth();
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
    QString const path = m_model.index(row, section).data().toString();
    QString const differing = differingPart(path, m_model.commonPath(section));
    bool const fitsSurely = differing.size() * m_view->fontMetrics().maxWidth() < m_widestPath;
    // A single path differs from no other, and needs no width.
    if (fitsSurely || differing == path) return;
    m_widestPath = std::max(m_widestPath, widthForText(differing) + widthOfIcon(section));
}

} // namespace mac
