#pragma once

#include <QProxyStyle>
#include <QStyledItemDelegate>

namespace mac {

class TableModel;

// The space left and right of a cell's text, in pixels.
inline constexpr int TableCellMargin = 8;
// The width and height of an icon before the text, and the space between them, in pixels.
inline constexpr int TableIconSize = 16;
inline constexpr int TableIconSpace = 6;

// The text, its middle left out where it is longer than any screen shows and than can be measured unfelt.
QString shortenedText(QString const& text);

// Draws cells as plain text, paths without what they have in common where there is no room for it, and marks the whole
// row that has the keyboard where it is not selected.
class TableCellDelegate : public QStyledItemDelegate {
public:
    // The model of the cells, which outlives it.
    explicit TableCellDelegate(TableModel const& model) : m_model(model) {}

    QString displayText(QVariant const& value, QLocale const& locale) const override;
    void paint(QPainter* painter, QStyleOptionViewItem const& option, QModelIndex const& index) const override;

private:
    QString textWithin(int width, QStyleOptionViewItem const& cell, QString const& text,
                       QModelIndex const& index) const;

    TableModel const& m_model;
};

// Gives the titles of columns the same space as their cells.
class TableHeaderStyle : public QProxyStyle {
public:
    int pixelMetric(PixelMetric metric, QStyleOption const* option, QWidget const* widget) const override;
};

} // namespace mac
