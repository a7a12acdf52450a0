#include "platform/Registration.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/icons/IconPictures.h"
#include "platform/icons/Picture.h"
#include "platform/icons/PictureToolkit.h"
#include "platform/icons/toolkit/GenericPictures.h"
#include "platform/system/BigEndian.h"
#include <QBuffer>
#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace mac {

namespace {

constexpr int MostPages = 64;
constexpr char TargaSignature[] = "TRUEVISION-XFILE.";
constexpr std::string_view PNGSignature = "\x89PNG\r\n\x1A\n";
constexpr std::size_t LargestDrawing = std::size_t{4} << 20;

// The pixels stay the span's.
QByteArray borrowedBytes(std::span<std::byte const> bytes) {
    return QByteArray::fromRawData(reinterpret_cast<char const*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
}

// The image's pixels stay the picture's.
QImage borrowedImage(Picture const& picture) {
    return {reinterpret_cast<uchar const*>(picture.pixels.data()), picture.width, picture.height, picture.width * 4,
            QImage::Format_ARGB32};
}

// Points have 72 to the inch. The toolkit's default resolution means that the file has none.
float pointsOf(int pixels, int dotsPerMeter, int usualDotsPerMeter) {
    constexpr double inchesInAMeter = 39.37007874;
    if (dotsPerMeter <= 0 || dotsPerMeter == usualDotsPerMeter) return static_cast<float>(pixels);
    // Rounded, since a file keeps the resolution rounded.
    return static_cast<float>(std::round(pixels * 72 * inchesInAMeter / dotsPerMeter));
}

std::optional<Picture> pictureOf(QImage const& read) {
    if (read.isNull()) return std::nullopt;
    QImage const image = read.convertToFormat(QImage::Format_ARGB32);
    if (image.isNull()) return std::nullopt;
    QImage const usual(1, 1, QImage::Format_ARGB32);
    Picture picture = emptyPicture(image.width(), image.height());
    for (int row = 0; row < picture.height; ++row)
        std::memcpy(picture.pixels.data() + std::size_t(row) * std::size_t(picture.width), image.constScanLine(row),
                    std::size_t(picture.width) * sizeof(std::uint32_t));
    picture.size = {pointsOf(image.width(), read.dotsPerMeterX(), usual.dotsPerMeterX()),
                    pointsOf(image.height(), read.dotsPerMeterY(), usual.dotsPerMeterY())};
    return picture;
}

// 0 for an image that does not say its size before it is read.
std::size_t pixelsAhead(QImageReader const& reader) {
    QSize const size = reader.size();
    return size.isValid() ? std::size_t(size.width()) * std::size_t(size.height()) : 0;
}

std::uint32_t littleEndian32(std::span<std::byte const> bytes, std::size_t place) {
    if (bytes.size() < sizeof(std::uint32_t) || place > bytes.size() - sizeof(std::uint32_t)) return 0;
    std::uint32_t value = 0;
    for (std::size_t index = sizeof value; index > 0; --index)
        value = value << 8 | std::to_integer<std::uint32_t>(bytes[place + index - 1]);
    return value;
}

// The toolkit knows the sizes of an icon of Windows from the file's directory, which may contradict the image that the
// entry points to: a PNG file, or a bitmap, whose header counts where the directory says 0. 0 for what is neither.
std::size_t pixelsOfWindowsIcon(std::span<std::byte const> bytes, int page) {
    constexpr std::size_t header = 6;
    constexpr std::size_t entry = 16;
    std::size_t const place = littleEndian32(bytes, header + entry * static_cast<std::size_t>(page) + 12);
    if (place > bytes.size()) return 0;
    std::span<std::byte const> const image = bytes.subspan(place);
    bool const isPNG =
        image.size() >= PNGSignature.size() && std::memcmp(image.data(), PNGSignature.data(), PNGSignature.size()) == 0;
    if (isPNG) {
        // Behind the signature and the length and name of the first chunk.
        if (image.size() < 24) return 0;
        return std::size_t{bigEndian32(image, 16)} * std::size_t{bigEndian32(image, 20)};
    }
    // Twice the height, for the colours and the mask; upside down it is negative.
    auto const width = static_cast<std::int32_t>(littleEndian32(image, 4));
    auto const height = static_cast<std::int32_t>(littleEndian32(image, 8));
    return static_cast<std::size_t>(std::abs(std::int64_t{width}) * (std::abs(std::int64_t{height}) / 2));
}

// The toolkit ends a program that asks it for fonts without a connection to a display, offscreen ones included.
bool hasFonts() {
    if (isMainThread()) requireEventLoop();
    return qobject_cast<QGuiApplication const*>(QCoreApplication::instance()) != nullptr;
}

// Names that only elements with text have.
bool needsFonts(std::string_view drawing) {
    return drawing.find("<text") != std::string_view::npos || drawing.find(":text") != std::string_view::npos;
}

std::vector<Picture> readImageFile(std::span<std::byte const> bytes) {
    QByteArray contents = borrowedBytes(bytes);
    QBuffer buffer(&contents);
    buffer.open(QIODevice::ReadOnly);
    // Targa has its signature at the end; at the beginning it looks like a pointer of Windows.
    QByteArray const format = contents.endsWith(QByteArrayView(TargaSignature, sizeof(TargaSignature)))
                                  ? "tga"
                                  : QImageReader::imageFormat(&buffer);
    // Drawings are shown at any size, and the family of an icon has a reader of its own.
    if (format.isEmpty() || format.startsWith("svg") || format == "icns") return {};
    QImageReader reader(&buffer, format);
    int const pages = format == "tiff" || format == "ico" ? std::min(reader.imageCount(), MostPages) : 1;
    std::vector<Picture> pictures;
    std::size_t total = 0;
    for (int page = 0; page < pages; ++page) {
        if (page > 0 && !reader.jumpToImage(page)) break;
        std::size_t const ahead = pixelsAhead(reader);
        std::size_t const inside = format == "ico" ? pixelsOfWindowsIcon(bytes, page) : 0;
        if (ahead == 0 || std::max(ahead, inside) > MostImagePixels - total) return {};
        std::optional<Picture> picture = pictureOf(reader.read());
        if (!picture) break;
        total += std::max(ahead, picture->pixels.size());
        // Whatever the headers said.
        if (total > MostImagePixels) return {};
        pictures.push_back(std::move(*picture));
    }
    return pictures;
}

std::optional<Picture> readPNG(std::span<std::byte const> bytes, int largestSide) {
    // The library logs what has another signature.
    if (bytes.size() < PNGSignature.size() || std::memcmp(bytes.data(), PNGSignature.data(), PNGSignature.size()) != 0)
        return std::nullopt;
    QByteArray contents = borrowedBytes(bytes);
    QBuffer buffer(&contents);
    QImageReader reader(&buffer, "png");
    QSize const size = reader.size();
    if (!size.isValid() || size.width() > largestSide || size.height() > largestSide) return std::nullopt;
    return pictureOf(reader.read());
}

Picture scale(Picture const& picture, int width, int height) {
    if (picture.width == width && picture.height == height) return picture;
    QImage const scaled = borrowedImage(picture).scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    Picture result = pictureOf(scaled).value_or(emptyPicture(width, height));
    result.size = {static_cast<float>(width), static_cast<float>(height)};
    return result;
}

void drawOnto(Picture& onto, NSRect const& place, Picture const& picture) {
    QImage const lower = borrowedImage(onto);
    QImage canvas = lower.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&canvas);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    double const top = onto.height - double{place.origin.y} - double{place.size.height};
    QRectF const target(place.origin.x, top, place.size.width, place.size.height);
    // A painter takes single pixels of what it makes smaller; scaling ahead takes all.
    int const width = std::clamp(qRound(target.width()), 1, LargestIconSide * 4);
    int const height = std::clamp(qRound(target.height()), 1, LargestIconSide * 4);
    Picture const fitting = scale(picture, width, height);
    painter.drawImage(target, borrowedImage(fitting));
    painter.end();
    NSSize const size = onto.size;
    onto = pictureOf(canvas).value_or(onto);
    onto.size = size;
}

std::optional<Picture> readDrawing(std::span<std::byte const> bytes, int side) {
    if (side <= 0 || side > LargestIconSide || bytes.size() > LargestDrawing) return std::nullopt;
    std::string_view const drawing(reinterpret_cast<char const*>(bytes.data()), bytes.size());
    if (!isSelfContainedDrawing(drawing)) return std::nullopt;
    if (needsFonts(drawing) && !hasFonts()) return std::nullopt;
    QByteArray contents = borrowedBytes(bytes);
    QBuffer buffer(&contents);
    QImageReader reader(&buffer, "svg");
    QSize const size = reader.size();
    if (!size.isValid() || size.isEmpty()) return std::nullopt;
    QSize const scaled = size.scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1});
    reader.setScaledSize(scaled);
    std::optional<Picture> const drawn = pictureOf(reader.read());
    if (!drawn) return std::nullopt;
    Picture picture = emptyPicture(side, side);
    NSRect const place =
        NSMakeRect(static_cast<float>((side - drawn->width) / 2), static_cast<float>((side - drawn->height) / 2),
                   static_cast<float>(drawn->width), static_cast<float>(drawn->height));
    drawOnto(picture, place, *drawn);
    return picture;
}

std::vector<std::byte> writePNG(Picture const& picture) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    borrowedImage(picture).save(&buffer, "png");
    QByteArray const& data = buffer.data();
    auto const* const first = reinterpret_cast<std::byte const*>(data.constData());
    return {first, first + data.size()};
}

std::vector<std::string> readableMIMETypes() {
    std::vector<std::string> types;
    for (QByteArray const& type : QImageReader::supportedMimeTypes())
        types.push_back(type.toStdString());
    return types;
}

// The toolkit knows no theme without an application object.
std::string iconThemeName() {
    bool const isOnDisplay = qobject_cast<QGuiApplication const*>(QCoreApplication::instance()) != nullptr;
    return isOnDisplay ? QIcon::themeName().toStdString() : std::string();
}

constexpr PictureToolkit QtToolkit{
    .picturesInImageFile = readImageFile,
    .pictureInPNG = readPNG,
    .pictureOfDrawing = readDrawing,
    .contentsOfPNG = writePNG,
    .scaledPicture = scale,
    .drawPicture = drawOnto,
    .genericPicture = drawGenericPicture,
    .readableMIMETypes = readableMIMETypes,
    .iconThemeName = iconThemeName,
};

} // namespace

void registerPictures() { setPictureToolkit(QtToolkit); }

} // namespace mac
