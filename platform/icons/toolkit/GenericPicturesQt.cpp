#include "platform/icons/toolkit/GenericPictures.h"
#include <QImage>
#include <QPainter>
#include <QPainterPath>

namespace mac {

namespace {

// Drawn in a box of 16 units.
constexpr double DrawnBox = 16;
constexpr QRgb PaperColor = 0xFFF7F7F5;
constexpr QRgb FolderColor = 0xFF7FA7D6;
constexpr QRgb TileColor = 0xFF5B8BC4;
constexpr QRgb EdgeColor = 0xFF6E7681;

QPainterPath polygon(std::initializer_list<QPointF> corners) {
    QPainterPath path(*corners.begin());
    for (QPointF const& corner : corners)
        path.lineTo(corner);
    path.closeSubpath();
    return path;
}

void drawDocument(QPainter& painter) {
    painter.setBrush(QColor::fromRgb(PaperColor));
    painter.drawPath(polygon({{3.5, 1.5}, {9.5, 1.5}, {12.5, 4.5}, {12.5, 14.5}, {3.5, 14.5}}));
    painter.drawPath(polygon({{9.5, 1.5}, {12.5, 4.5}, {9.5, 4.5}}));
}

void drawFolder(QPainter& painter) {
    painter.setBrush(QColor::fromRgb(FolderColor));
    painter.drawPath(polygon({{1.5, 3.5}, {6, 3.5}, {7.5, 5}, {14.5, 5}, {14.5, 13.5}, {1.5, 13.5}}));
    painter.drawLine(QPointF(1.5, 6.5), QPointF(14.5, 6.5));
}

void drawApplication(QPainter& painter) {
    painter.setBrush(QColor::fromRgb(TileColor));
    painter.drawRoundedRect(QRectF(1.5, 1.5, 13, 13), 3, 3);
    painter.setBrush(QColor::fromRgb(PaperColor));
    painter.drawRect(QRectF(4, 5, 8, 6));
    painter.drawLine(QPointF(4, 6.5), QPointF(12, 6.5));
}

} // namespace

Picture drawGenericPicture(IconSource::Generic generic, int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(side / DrawnBox, side / DrawnBox);
    painter.setPen(QPen(QColor::fromRgb(EdgeColor), 0.75));
    switch (generic) {
    case IconSource::Generic::Document:
        drawDocument(painter);
        break;
    case IconSource::Generic::Folder:
        drawFolder(painter);
        break;
    case IconSource::Generic::Application:
        drawApplication(painter);
        break;
    }
    painter.end();
    Picture picture = emptyPicture(side, side);
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column)
            picture.pixels[std::size_t(row) * std::size_t(side) + std::size_t(column)] = image.pixel(column, row);
    }
    return picture;
}

} // namespace mac
