#include "platform/appkit/TableColumnWidths.h"
#include "platform/appkit/TableCellDelegate.h"
#include "platform/appkit/TableModel.h"
#include "platform/foundation/Boundary.h"
#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>
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
    connect(view->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { guarded([&] { fitContents(); }); });
    connect(view->horizontalHeader(), &QHeaderView::sectionResized, this, [this] { fillWidth(); });
}

bool TableColumnWidths::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) fillWidth();
    return QObject::eventFilter(watched, event);
}

int TableColumnWidths::widthForText(QString const& text) const {
    return m_view->fontMetrics().horizontalAdvance(shortenedText(text)) + 2 * TableCellMargin + 2;
}

int TableColumnWidths::widthOfIcon(int section) const {
    bool const hasIcon = m_model.columns()[static_cast<std::size_t>(section)].iconKeyPath != nil;
    return hasIcon ? TableIconSize + TableIconSpace : 0;
}

void TableColumnWidths::setInitialWidths() {
    QHeaderView* const header = m_view->horizontalHeader();
    header->setMinimumSectionSize(NarrowestSection);
    for (int section = 0; section < m_model.columnCount(); ++section) {
        TableColumn const& column = m_model.columns()[static_cast<std::size_t>(section)];
        header->resizeSection(section, std::max(widthForText(column.title) + SortMark,
                                                widthForText(column.sample) + widthOfIcon(section)));
    }
}

void TableColumnWidths::fillWidth() {
    if (!m_view) return;
    auto const filling = std::ranges::find(m_model.columns(), true, &TableColumn::fillsWidth);
    if (filling == m_model.columns().end()) return;
    QHeaderView* const header = m_view->horizontalHeader();
    int const section = static_cast<int>(filling - m_model.columns().begin());
    int const others = header->length() - header->sectionSize(section);
    int const narrowest = NarrowestFill * m_view->fontMetrics().averageCharWidth();
    header->resizeSection(section, std::max(m_view->viewport()->width() - others, narrowest));
}

void TableColumnWidths::fitContents() {
    if (!m_view) return;
    fitRows(0, FirstRows);
    fitRows(m_view->rowAt(0), m_view->viewport()->height() / m_view->verticalHeader()->defaultSectionSize() + 1);
}

void TableColumnWidths::fitRows(int first, int count) {
    int const begin = std::max(first, 0);
    int const end = std::min(begin + count, m_model.rowCount());
    for (int section = 0; section < m_model.columnCount(); ++section) {
        if (!m_model.columns()[static_cast<std::size_t>(section)].fitsContents) continue;
        for (int row = begin; row < end; ++row)
            fitCell(row, section);
    }
}

void TableColumnWidths::fitCell(int row, int section) {
    QString const text = m_model.index(row, section).data().toString();
    QFontMetrics const metrics = m_view->fontMetrics();
    QHeaderView* const header = m_view->horizontalHeader();
    int const width = header->sectionSize(section);
    bool const fitsSurely = text.size() * metrics.maxWidth() + widthOfIcon(section) < width;
    if (fitsSurely || m_measured.contains(text)) return;
    m_measured.insert(text);
    int const wanted = std::min(widthForText(text), WidestFit * metrics.averageCharWidth()) + widthOfIcon(section);
    if (wanted > width) header->resizeSection(section, wanted);
}

} // namespace mac
