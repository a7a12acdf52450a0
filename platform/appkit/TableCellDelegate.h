#pragma once

#include <QProxyStyle>
#include <QStyledItemDelegate>

namespace mac {

// The space left and right of a cell's text, in pixels.
inline constexpr int TableCellMargin = 8;
// The width and height of an icon before the text, and the space between them, in pixels.
inline constexpr int TableIconSize = 16;
inline constexpr int TableIconSpace = 6;

// The text, its middle left out where it is longer than any screen shows and than can be measured unfelt.
QString shortenedText(QString const& text);

// Draws cells as plain text, and marks the whole row that has the keyboard where it is not selected.
class TableCellDelegate : public QStyledItemDelegate {
public:
    QString displayText(QVariant const& value, QLocale const& locale) const override;
    void paint(QPainter* painter, QStyleOptionViewItem const& option, QModelIndex const& index) const override;
};

// Gives the titles of columns the same space as their cells.
class TableHeaderStyle : public QProxyStyle {
public:
    int pixelMetric(PixelMetric metric, QStyleOption const* option, QWidget const* widget) const override;
};

} // namespace mac
