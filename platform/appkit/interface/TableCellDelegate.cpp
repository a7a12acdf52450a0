#include "platform/appkit/interface/TableCellDelegate.h"
#include "platform/appkit/interface/TableModel.h"
#include <QAbstractItemView>
#include <QApplication>
#include <QPainter>
#include <optional>
#include <utility>

namespace mac {

namespace {

constexpr qsizetype LongestText = 1000;

bool hasKeyboard(QAbstractItemView const* view, QModelIndex const& index) {
    return view && view->hasFocus() && view->currentIndex().row() == index.row();
}

} // namespace

QString shortenedText(QString const& text) {
    if (text.size() <= LongestText) return text;
    return text.first(LongestText / 2) + QChar(0x2026) + text.last(LongestText / 2);
}

QString TableCellDelegate::displayText(QVariant const& value, QLocale const&) const {
    return shortenedText(value.toString());
}

QString TableCellDelegate::textWithin(int width, QStyleOptionViewItem const& cell, QString const& text,
                                      QModelIndex const& index) const {
    bool const isPath = m_model.columns()[static_cast<std::size_t>(index.column())].elidesCommonPath;
    if (!isPath) return cell.fontMetrics.elidedText(text, cell.textElideMode, width);
    // What the paths have in common is counted in whole ones, not in shortened texts.
    QString const path = index.data().toString();
    // Painting never reads all rows; until that is done the extent is that of the rows before.
    std::optional<CommonPath> const known = m_model.knownCommonPath(index.column());
    CommonPath const common = known.value_or(CommonPath());
    PathExtent const extent = known ? m_model.pathExtent(index.column()) : PathExtent::Whole;
    if (path.size() <= LongestText) return elidedPath(path, common, extent, cell.fontMetrics, width);
    return cell.fontMetrics.elidedText(shortenedText(shownPath(path, common, extent)), Qt::ElideMiddle, width);
}

void TableCellDelegate::paint(QPainter* painter, QStyleOptionViewItem const& option, QModelIndex const& index) const {
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    auto const* const view = qobject_cast<QAbstractItemView const*>(cell.widget);
    QStyle const* const style = cell.widget ? cell.widget->style() : QApplication::style();
    bool const isSelected = cell.state.testFlag(QStyle::State_Selected);
    cell.state.setFlag(QStyle::State_HasFocus, false);

    QString const text = std::exchange(cell.text, QString());
    QIcon const icon = std::exchange(cell.icon, QIcon());
    cell.features.setFlag(QStyleOptionViewItem::HasDecoration, false);
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);
    QRect place = cell.rect.adjusted(TableCellMargin, 0, -TableCellMargin, 0);
    if (!icon.isNull()) {
        QRect const iconPlace(place.left(), place.center().y() - TableIconSize / 2 + 1, TableIconSize, TableIconSize);
        icon.paint(painter, iconPlace, Qt::AlignCenter, isSelected ? QIcon::Selected : QIcon::Normal);
        place.setLeft(iconPlace.right() + 1 + TableIconSpace);
    }
    QPalette::ColorGroup const group =
        cell.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
    painter->save();
    painter->setFont(cell.font);
    painter->setPen(cell.palette.color(group, isSelected ? QPalette::HighlightedText : QPalette::Text));
    // Paths and versions go from left to right whatever letters stand in them: else "/a" would be shown as "a/".
    Qt::Alignment const alignment = QStyle::visualAlignment(cell.direction, cell.displayAlignment);
    painter->drawText(place, static_cast<int>(alignment) | Qt::TextSingleLine | Qt::TextForceLeftToRight,
                      textWithin(place.width(), cell, text, index));
    if (!isSelected && hasKeyboard(view, index)) {
        painter->setPen(cell.palette.color(QPalette::Active, QPalette::Highlight));
        painter->drawLine(cell.rect.topLeft(), cell.rect.topRight());
        painter->drawLine(cell.rect.bottomLeft(), cell.rect.bottomRight());
    }
    painter->restore();
}

int TableHeaderStyle::pixelMetric(PixelMetric metric, QStyleOption const* option, QWidget const* widget) const {
    return metric == PM_HeaderMargin ? TableCellMargin : QProxyStyle::pixelMetric(metric, option, widget);
}

} // namespace mac
