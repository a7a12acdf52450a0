// Draws a page of icons of many kinds of items, as the library makes them: icon_page SAMPLES PICTURE. The home is one
// of its own.
#include "tests/pictures/IconPageItems.h"
#include "tests/support/Environment.h"
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <array>
#include <cstdio>

namespace {

constexpr std::array Sides{16, 32, 48, 128};
constexpr int RowsInColumn = 8;
constexpr int RowHeight = 140;
constexpr int ColumnWidth = 470;
constexpr int LabelWidth = 170;
constexpr int Gap = 14;

QImage pictureOf(mac::NSImage const& image) {
    mac::NSArray const forms = image.representations();
    if (forms.count() != 1) return {};
    mac::NSData const png = mac::as<mac::NSBitmapImageRep>(forms.objectAtIndex_(0))
                                .representationUsingType_properties_(mac::NSPNGFileType, mac::nil);
    return QImage::fromData(reinterpret_cast<uchar const*>(png.bytes()), static_cast<int>(png.length()), "png");
}

// Whether all sides could be drawn.
bool drawRow(QPainter& painter, QPoint const& place, mac::test::PageItem const& item) {
    painter.drawText(QRect(place, QSize(LabelWidth, RowHeight)), Qt::AlignVCenter | Qt::TextWordWrap,
                     QString::fromStdString(item.label));
    int left = place.x() + LabelWidth;
    bool isWhole = true;
    for (int const side : Sides) {
        QImage const picture = pictureOf(item.icon(side));
        isWhole = isWhole && picture.width() == side && picture.height() == side;
        painter.drawImage(left, place.y() + (RowHeight - side) / 2, picture);
        left += side + Gap;
    }
    if (!isWhole) std::fprintf(stderr, "%s: not in every side\n", item.label.c_str());
    return isWhole;
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) return 2;
    mac::test::TemporaryFolder const home;
    mac::test::EnvironmentVariable const homeVariable("HOME", home.path());
    QGuiApplication const application(argumentCount, arguments);
    std::vector<mac::test::PageItem> const items = mac::test::makePageItems(home, arguments[1]);
    int const columns = (static_cast<int>(items.size()) + RowsInColumn - 1) / RowsInColumn;
    QImage page(columns * ColumnWidth + Gap, RowsInColumn * RowHeight + 2 * Gap, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter painter(&page);
    painter.setPen(Qt::black);
    bool isWhole = true;
    for (int index = 0; index < static_cast<int>(items.size()); ++index) {
        QPoint const place(Gap + index / RowsInColumn * ColumnWidth, Gap + index % RowsInColumn * RowHeight);
        isWhole = drawRow(painter, place, items[static_cast<std::size_t>(index)]) && isWhole;
    }
    painter.end();
    return page.save(arguments[2]) && isWhole ? 0 : 1;
}
